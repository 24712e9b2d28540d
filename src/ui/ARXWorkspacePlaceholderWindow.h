#pragma once

#include "app/ARXAtriumData.h"

#include <QWidget>

// Stands in for a workspace window until panes and layouts arrive: one list of the default
// folder, at the workspace's saved frame.
class ARXWorkspacePlaceholderWindow : public QWidget {
    Q_OBJECT
public:
    ARXWorkspacePlaceholderWindow(const QString& name, const ARXAtriumData& data,
                                  QWidget* parent = nullptr);
};
