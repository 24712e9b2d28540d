#pragma once

#include "ui/layout/ARXAtriumLayout.h"

#include <QPointer>
#include <QToolButton>

class ARXAtriumViewController;
class QActionGroup;

// The toolbar's layout chooser: a button showing the picture of the layout in use, with a menu of
// the twelve pictures in id order. It follows the workspace it is given (a window with tabs hands
// it the workspace of the current tab), and a choice changes that workspace's layout.
class ARXLayoutsToolbarItem : public QToolButton {
    Q_OBJECT

public:
    explicit ARXLayoutsToolbarItem(QWidget* parent = nullptr);

    void setController(ARXAtriumViewController* controller);
    ARXAtriumViewController* controller() const { return _controller; }

    // The menu's item for a layout; its data is the layout's raw id.
    QAction* actionFor(ARXAtriumLayoutId id) const;
    // The layout the button shows as selected, if any.
    std::optional<ARXAtriumLayoutId> selectedId() const;

    // Marks a layout as the one in use, without choosing it.
    void select(ARXAtriumLayoutId id);

protected:
    void changeEvent(QEvent* event) override;

private:
    void updatePictures();

    QPointer<ARXAtriumViewController> _controller;
    QMetaObject::Connection _rebuilt;
    QActionGroup* _group = nullptr;
};
