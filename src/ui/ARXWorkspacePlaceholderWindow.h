#pragma once

#include "app/ARXAtriumData.h"

#include <QWidget>

// Stands in for a workspace window until panes and layouts arrive: it shows the workspace's name
// and where its panes would start, at the saved frame.
class ARXWorkspacePlaceholderWindow : public QWidget {
    Q_OBJECT
public:
    ARXWorkspacePlaceholderWindow(const QString& name, const ARXAtriumData& data,
                                  QWidget* parent = nullptr);
};
