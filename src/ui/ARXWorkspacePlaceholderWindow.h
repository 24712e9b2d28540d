#pragma once

#include "app/ARXAtriumData.h"
#include "ui/spaceviews/ARXSpaceSquareView.h"

#include <QWidget>

class ARXWidgetOperationPresenter;

// Stands in for a workspace window until layouts arrive: one pane at the workspace's saved frame,
// restored from its first pane record or opened on the default folder.
class ARXWorkspacePlaceholderWindow : public QWidget, public ARXSpaceSquareViewDelegate {
    Q_OBJECT
public:
    ARXWorkspacePlaceholderWindow(const QString& name, const ARXAtriumData& data,
                                  QWidget* parent = nullptr);

    ARXSpaceSquareView* pane() const { return _pane; }

    bool squareViewPerform(ARXSpaceSquareView& pane, ARXActionType action,
                           const ARXFileEntryList& entries) override;
    void squareViewActivated(ARXSpaceSquareView& pane) override;
    void squareViewRootChanged(ARXSpaceSquareView& pane) override;
    bool squareViewKey(ARXSpaceSquareView& pane, QKeyEvent* event) override;

private:
    ARXSpaceSquareView* _pane = nullptr;
    ARXWidgetOperationPresenter* _presenter = nullptr;
    QString _name;
};
