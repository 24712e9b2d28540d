#include "ui/workspace/ARXLayoutsToolbarItem.h"

#include "ui/layout/ARXLayoutPicture.h"
#include "ui/workspace/ARXAtriumViewController.h"

#include <QActionGroup>
#include <QCoreApplication>
#include <QEvent>
#include <QMenu>

ARXLayoutsToolbarItem::ARXLayoutsToolbarItem(QWidget* parent) : QToolButton(parent) {
    setPopupMode(QToolButton::InstantPopup);
    setAutoRaise(true);
    setIconSize(ARXLayoutPicture::kSize);
    setToolTip(QCoreApplication::translate("Atrium", "Layouts"));
    auto* menu = new QMenu(this);
    _group = new QActionGroup(this);
    _group->setExclusive(true);
    for (ARXAtriumLayoutId id : ARXAtriumLayout::all()) {
        // Pictures only: the menu shows what each layout looks like rather than naming it.
        QAction* action = menu->addAction(QString());
        action->setData(int(id));
        action->setCheckable(true);
        _group->addAction(action);
    }
    setMenu(menu);
    updatePictures();
    connect(menu, &QMenu::triggered, this, [this](QAction* action) {
        const auto id = ARXAtriumLayout::fromRaw(action->data().toInt());
        if (!id) {
            return;
        }
        if (_controller) {
            // The workspace's rebuild marks the choice; a choice of the layout in use changes
            // nothing, and the mark stays where it was.
            _controller->onLayoutClicked(*id);
        }
        if (_controller && _controller->layout()) {
            select(_controller->layout()->id);
        }
    });
}

void ARXLayoutsToolbarItem::setController(ARXAtriumViewController* controller) {
    disconnect(_rebuilt);
    _controller = controller;
    if (!controller) {
        return;
    }
    _rebuilt = connect(controller, &ARXAtriumViewController::layoutRebuilt, this,
                       &ARXLayoutsToolbarItem::select);
    if (controller->layout()) {
        select(controller->layout()->id);
    }
}

QAction* ARXLayoutsToolbarItem::actionFor(ARXAtriumLayoutId id) const {
    return _group->actions().value(int(id));
}

std::optional<ARXAtriumLayoutId> ARXLayoutsToolbarItem::selectedId() const {
    const QAction* checked = _group->checkedAction();
    return checked ? ARXAtriumLayout::fromRaw(checked->data().toInt()) : std::nullopt;
}

void ARXLayoutsToolbarItem::select(ARXAtriumLayoutId id) {
    if (QAction* action = actionFor(id)) {
        action->setChecked(true);
        setIcon(action->icon());
    }
}

void ARXLayoutsToolbarItem::changeEvent(QEvent* event) {
    QToolButton::changeEvent(event);
    // The pictures are drawn in the text colour, so a new theme needs new ones.
    if (event->type() == QEvent::PaletteChange) {
        updatePictures();
    }
}

void ARXLayoutsToolbarItem::updatePictures() {
    for (QAction* action : _group->actions()) {
        action->setIcon(
            ARXLayoutPicture::icon(ARXAtriumLayoutId(action->data().toInt()), palette()));
    }
    if (const auto id = selectedId()) {
        setIcon(actionFor(*id)->icon());
    }
}
