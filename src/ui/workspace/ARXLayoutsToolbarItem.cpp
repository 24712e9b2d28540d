#include "ui/workspace/ARXLayoutsToolbarItem.h"

#include "ui/layout/ARXLayoutPicture.h"
#include "ui/workspace/ARXAtriumViewController.h"

#include <QActionGroup>
#include <QApplication>
#include <QCoreApplication>
#include <QEvent>
#include <QMenu>
#include <QPainter>
#include <QProxyStyle>
#include <QStyleFactory>
#include <QStyleOptionMenuItem>

namespace {

// The pictures in the menu are twice the button's, so each is drawn exactly on a 2x pixmap.
constexpr QSize kMenuPictureSize(ARXLayoutPicture::kSize.width() * 2,
                                 ARXLayoutPicture::kSize.height() * 2);
constexpr int kMenuPadding = 6;

// The menu's items are pictures: the style draws the row (its highlight and check mark) as it
// would for an item without text, and the picture at the row's right, in the highlighted text
// colour under the highlight. The items keep their "Layout N" texts for tooltips and screen
// readers.
class PictureMenuStyle : public QProxyStyle {
public:
    using QProxyStyle::QProxyStyle;

    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                           const QWidget* widget) const override {
        const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
        if (type != CT_MenuItem || !item || item->menuItemType != QStyleOptionMenuItem::Normal) {
            return QProxyStyle::sizeFromContents(type, option, size, widget);
        }
        const int height = kMenuPictureSize.height() + 2 * kMenuPadding;
        // Room on the left for the check mark, which styles draw in a square column.
        return {height + kMenuPictureSize.width() + 2 * kMenuPadding, height};
    }

    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override {
        const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
        if (element != CE_MenuItem || !item || item->menuItemType != QStyleOptionMenuItem::Normal) {
            QProxyStyle::drawControl(element, option, painter, widget);
            return;
        }
        QStyleOptionMenuItem row = *item;
        row.text.clear();
        row.icon = QIcon();
        QProxyStyle::drawControl(element, &row, painter, widget);
        const QRect picture(
            QPoint(item->rect.right() - kMenuPadding - kMenuPictureSize.width() + 1,
                   item->rect.top() + (item->rect.height() - kMenuPictureSize.height()) / 2),
            kMenuPictureSize);
        const bool highlighted = (item->state & State_Selected) && (item->state & State_Enabled);
        item->icon.paint(painter, picture, Qt::AlignCenter,
                         highlighted ? QIcon::Selected : QIcon::Normal);
    }
};

// A layout's picture for the menu: 2x and 4x drawings (for 1x and 2x screens), in the text colour
// and, for the highlighted row, in the highlighted text colour.
QIcon menuPicture(ARXAtriumLayoutId id, const QPalette& palette) {
    QPalette highlighted = palette;
    highlighted.setColor(QPalette::Text, palette.color(QPalette::HighlightedText));
    QIcon icon;
    for (qreal ratio : {2.0, 4.0}) {
        icon.addPixmap(ARXLayoutPicture::pixmap(id, ratio, palette), QIcon::Normal);
        icon.addPixmap(ARXLayoutPicture::pixmap(id, ratio, highlighted), QIcon::Selected);
    }
    return icon;
}

} // namespace

ARXLayoutsToolbarItem::ARXLayoutsToolbarItem(QWidget* parent) : QToolButton(parent) {
    setPopupMode(QToolButton::InstantPopup);
    setAutoRaise(true);
    setIconSize(ARXLayoutPicture::kSize);
    setToolTip(QCoreApplication::translate("Atrium", "Layouts"));
    auto* menu = new QMenu(this);
    // Made after the menu, so the menu (an earlier child) is gone before its style is.
    auto* style = new PictureMenuStyle(QStyleFactory::create(QApplication::style()->name()));
    style->setParent(this);
    menu->setStyle(style);
    menu->setToolTipsVisible(true);
    _group = new QActionGroup(this);
    _group->setExclusive(true);
    for (ARXAtriumLayoutId id : ARXAtriumLayout::all()) {
        // The menu shows what each layout looks like; the text names it for tooltips and
        // screen readers.
        const QString name = QCoreApplication::translate("Atrium", "Layout %1").arg(int(id) + 1);
        QAction* action = menu->addAction(name);
        action->setToolTip(name);
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
        setIcon(ARXLayoutPicture::icon(id, palette()));
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
        action->setIcon(menuPicture(ARXAtriumLayoutId(action->data().toInt()), menu()->palette()));
    }
    if (const auto id = selectedId()) {
        setIcon(ARXLayoutPicture::icon(*id, palette()));
    }
}
