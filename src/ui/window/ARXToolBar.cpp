#include "ui/window/ARXToolBar.h"

#include "app/ARXToolbarConfiguration.h"
#include "platform/ARXNotificationCenter.h"
#include "ui/window/ARXToolbarIcon.h"
#include "ui/workspace/ARXAtriumViewController.h"
#include "ui/workspace/ARXLayoutsToolbarItem.h"

#include <QActionGroup>
#include <QContextMenuEvent>
#include <QCoreApplication>
#include <QHBoxLayout>
#include <QMenu>
#include <QSet>
#include <QStyle>
#include <QToolButton>
#include <QWidgetAction>

namespace {

using T = ARXActionType;
namespace Configuration = ARXToolbarConfiguration;

QString localized(const char* text) {
    return QCoreApplication::translate("Atrium", text);
}

// The actions whose buttons the bar shows, with their pictures, in the order they are made.
struct ButtonAction {
    ARXActionType type;
    ARXToolbarIcon::Kind icon;
    bool checkable;
};
constexpr ButtonAction kButtonActions[] = {
    {T::GoBack, ARXToolbarIcon::Kind::back, false},
    {T::GoForward, ARXToolbarIcon::Kind::forward, false},
    {T::Sidebar, ARXToolbarIcon::Kind::sidebar, true},
    {T::asIconsView, ARXToolbarIcon::Kind::iconsView, true},
    {T::asListView, ARXToolbarIcon::Kind::listView, true},
    {T::asColumnsView, ARXToolbarIcon::Kind::columnsView, true},
    {T::HiddenFiles, ARXToolbarIcon::Kind::hiddenFiles, true},
    {T::PinTop, ARXToolbarIcon::Kind::pin, true},
    {T::NewFolder, ARXToolbarIcon::Kind::newFolder, false},
    {T::Trash, ARXToolbarIcon::Kind::trash, false},
    {T::GetInfo, ARXToolbarIcon::Kind::getInfo, false},
};

// Items that act on the folder of the active pane: they wait until it is shown.
constexpr ARXActionType kFolderActions[] = {T::asIconsView, T::asListView, T::asColumnsView,
                                            T::HiddenFiles, T::NewFolder,  T::Trash,
                                            T::GetInfo};

// The longest a workspace name is shown on its button; a longer one is shortened in the middle.
constexpr int kNameWidth = 240;

} // namespace

const QString ARXToolBar::kIdentifier = QStringLiteral("com.brightmoor.atrium.AtriumWindowToolBar");

ARXToolBar::ARXToolBar(QWidget* parent) : QToolBar(parent) {
    setObjectName(kIdentifier);
    setWindowTitle(localized("Toolbar"));
    setMovable(false);
    setFloatable(false);
    // The bar's own menu is the customisation; a window's list of bars to hide would offer a
    // second, different way to lose it.
    toggleViewAction()->setVisible(false);
    makeActions();
    updateIcons();
    _small = Configuration::usesSmallIcons();
    rebuild(Configuration::items());
    ARXNotificationCenter::shared().addObserver(Configuration::changedNotification, this,
                                                [this](const ARXNotification&) { follow(); });
}

ARXToolBar::~ARXToolBar() {
    ARXNotificationCenter::shared().removeObservers(this);
}

void ARXToolBar::makeActions() {
    _viewTypes = new QActionGroup(this);
    // Optional, so that a window without a pane can show no view type at all.
    _viewTypes->setExclusionPolicy(QActionGroup::ExclusionPolicy::ExclusiveOptional);
    for (const ButtonAction& button : kButtonActions) {
        makeAction(button.type, button.checkable);
    }
    for (T type : {T::asIconsView, T::asListView, T::asColumnsView}) {
        _viewTypes->addAction(_actions.at(type));
    }
}

QAction* ARXToolBar::makeAction(ARXActionType type, bool checkable) {
    auto* action = new QAction(ARXAction::title(type), this);
    action->setToolTip(ARXAction::title(type));
    action->setCheckable(checkable);
    connect(action, &QAction::triggered, this, [this, action, type] {
        // The group lets a mark go (a window without a pane shows no type), so a click on the
        // type in use would take its mark away: it stays.
        if (action->actionGroup()) {
            action->setChecked(true);
        }
        Q_EMIT actionTriggered(type);
    });
    _actions[type] = action;
    return action;
}

void ARXToolBar::updateIcons() {
    for (const ButtonAction& button : kButtonActions) {
        _actions.at(button.type)->setIcon(ARXToolbarIcon::icon(button.icon, palette(), style()));
    }
}

void ARXToolBar::setController(ARXAtriumViewController* controller) {
    _controller = controller;
    if (_layouts) {
        _layouts->setController(controller);
    }
}

void ARXToolBar::update(const ARXWindowState& state) {
    _state = state;
    _actions.at(T::GoBack)->setEnabled(state.canGoBack);
    _actions.at(T::GoForward)->setEnabled(state.canGoForward);
    _actions.at(T::Sidebar)->setChecked(state.sidebarVisible);
    const bool folderShown = state.hasPane && state.paneNormal;
    for (T type : kFolderActions) {
        _actions.at(type)->setEnabled(folderShown);
    }
    QAction* viewType = nullptr;
    switch (state.viewType) {
    case ARXSpaceViewType::icons:
        viewType = _actions.at(T::asIconsView);
        break;
    case ARXSpaceViewType::list:
        viewType = _actions.at(T::asListView);
        break;
    case ARXSpaceViewType::columns:
        viewType = _actions.at(T::asColumnsView);
        break;
    case ARXSpaceViewType::none:
        break;
    }
    if (viewType) {
        viewType->setChecked(true);
    } else if (QAction* checked = _viewTypes->checkedAction()) {
        checked->setChecked(false);
    }
    _actions.at(T::HiddenFiles)->setChecked(state.hiddenFiles);
    _actions.at(T::PinTop)->setChecked(state.pinned);
    showWorkspaceName();
}

void ARXToolBar::showWorkspaceName() {
    if (!_nameButton) {
        return;
    }
    const QString name = _state.workspaceName;
    const QString shown = _nameButton->fontMetrics().elidedText(name, Qt::ElideMiddle, kNameWidth);
    if (_nameButton->text() != shown) {
        _nameButton->setText(shown);
        _nameButton->setToolTip(shown == name ? QString() : name);
    }
}

QWidget* ARXToolBar::itemWidget(ARXActionType type) const {
    const QString identifier = ARXAction::identifier(type);
    for (const Placed& placed : _placed) {
        if (placed.identifier == identifier) {
            return placed.action->defaultWidget();
        }
    }
    return nullptr;
}

QStringList ARXToolBar::shownItems() const {
    QStringList items;
    for (const Placed& placed : _placed) {
        items.append(placed.identifier);
    }
    return items;
}

void ARXToolBar::setUsesSmallIcons(bool small) {
    Configuration::setUsesSmallIcons(small);
}

void ARXToolBar::follow() {
    const QStringList items = Configuration::items();
    if (items != _configured) {
        rebuild(items);
    }
    const bool small = Configuration::usesSmallIcons();
    if (small != _small) {
        _small = small;
        applyIconSize();
    }
}

void ARXToolBar::rebuild(const QStringList& items) {
    for (const Placed& placed : _placed) {
        removeAction(placed.action);
        delete placed.action; // and its widget
    }
    _placed.clear();
    _configured = items;
    for (const QString& identifier : items) {
        if (!canShow(identifier)) {
            continue; // an item of a later Atrium, kept in the list for it
        }
        auto* action = new QWidgetAction(this);
        action->setText(label(identifier));
        action->setDefaultWidget(makeItem(identifier));
        addAction(action);
        _placed.push_back({identifier, action});
    }
    update(_state);
    applyIconSize();
}

QWidget* ARXToolBar::makeItem(const QString& identifier) {
    QWidget* widget = nullptr;
    if (Configuration::isSpace(identifier)) {
        widget = new QWidget(this);
        const bool flexible = identifier == Configuration::flexibleSpace;
        widget->setSizePolicy(flexible ? QSizePolicy::Expanding : QSizePolicy::Fixed,
                              QSizePolicy::Preferred);
    } else {
        switch (const T type = ARXAction::type(identifier)) {
        case T::BackForward: {
            widget = new QWidget(this);
            auto* pair = new QHBoxLayout(widget);
            pair->setContentsMargins(0, 0, 0, 0);
            pair->setSpacing(0);
            pair->addWidget(makeButton(_actions.at(T::GoBack), widget));
            pair->addWidget(makeButton(_actions.at(T::GoForward), widget));
            break;
        }
        case T::ViewTypes:
            widget = makeViewTypes();
            break;
        case T::WorkspaceName:
            widget = makeWorkspaceName();
            break;
        case T::Layouts:
            _layouts = new ARXLayoutsToolbarItem(this);
            _layouts->setController(_controller);
            _layouts->setFocusPolicy(Qt::NoFocus);
            widget = _layouts;
            break;
        default:
            widget = makeButton(_actions.at(type), this);
            break;
        }
    }
    widget->setObjectName(identifier);
    return widget;
}

QToolButton* ARXToolBar::makeButton(QAction* action, QWidget* parent) {
    auto* button = new QToolButton(parent);
    button->setDefaultAction(action);
    button->setAutoRaise(true);
    button->setToolButtonStyle(Qt::ToolButtonIconOnly);
    // The bar is clicked, never tabbed through: the keyboard stays in the panes.
    button->setFocusPolicy(Qt::NoFocus);
    for (const auto& [type, made] : _actions) {
        if (made == action) {
            button->setObjectName(ARXAction::identifier(type));
        }
    }
    return button;
}

QWidget* ARXToolBar::makeViewTypes() {
    // One control of three joined buttons, the type in use pressed in.
    auto* control = new QWidget(this);
    auto* row = new QHBoxLayout(control);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    for (T type : {T::asIconsView, T::asListView, T::asColumnsView}) {
        QToolButton* segment = makeButton(_actions.at(type), control);
        segment->setAutoRaise(false);
        row->addWidget(segment);
    }
    return control;
}

QWidget* ARXToolBar::makeWorkspaceName() {
    _nameButton = new QToolButton(this);
    _nameButton->setAutoRaise(true);
    _nameButton->setToolButtonStyle(Qt::ToolButtonTextOnly);
    _nameButton->setFocusPolicy(Qt::NoFocus);
    _nameButton->setAccessibleName(label(ARXAction::identifier(T::WorkspaceName)));
    QToolButton* button = _nameButton;
    connect(button, &QToolButton::clicked, this,
            [this, button] { Q_EMIT workspaceNameClicked(button); });
    return button;
}

void ARXToolBar::applyIconSize() {
    const int side = style()->pixelMetric(
        _small ? QStyle::PM_SmallIconSize : QStyle::PM_ToolBarIconSize, nullptr, this);
    setIconSize(QSize(side, side));
    for (QToolButton* button : findChildren<QToolButton*>()) {
        if (button->defaultAction()) {
            button->setIconSize(QSize(side, side));
        }
    }
    for (const Placed& placed : _placed) {
        if (placed.identifier == Configuration::space) {
            placed.action->defaultWidget()->setFixedWidth(side * 2 / 3);
        }
    }
}

void ARXToolBar::customize() {
    QMenu* menu = makeCustomizeMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->popup(mapToGlobal(QPoint(0, height())));
}

QMenu* ARXToolBar::makeCustomizeMenu(QWidget* parent) {
    auto* menu = new QMenu(parent);
    const QStringList configured = Configuration::items();
    for (const QString& identifier : Configuration::allowed()) {
        if (Configuration::isSpace(identifier) || !canShow(identifier)) {
            continue;
        }
        QAction* item = menu->addAction(label(identifier));
        item->setData(identifier);
        item->setCheckable(true);
        item->setChecked(configured.contains(identifier));
        // The list is read again at the click: another window may have changed it meanwhile.
        connect(item, &QAction::triggered, menu, [identifier](bool shown) {
            const QStringList now = Configuration::items();
            Configuration::setItems(shown ? Configuration::withItem(now, identifier)
                                          : Configuration::withoutItem(now, identifier));
        });
    }
    menu->addSeparator();
    QAction* small = menu->addAction(localized("Use Small Icons"));
    small->setCheckable(true);
    small->setChecked(_small);
    connect(small, &QAction::triggered, menu,
            [](bool on) { Configuration::setUsesSmallIcons(on); });
    menu->addSeparator();
    QAction* reset = menu->addAction(localized("Reset Toolbar"));
    connect(reset, &QAction::triggered, menu, [] { Configuration::reset(); });
    return menu;
}

bool ARXToolBar::canShow(const QString& identifier) {
    static const QSet<QString> shown = [] {
        QSet<QString> set{Configuration::space, Configuration::flexibleSpace};
        for (T type : {T::BackForward, T::Sidebar, T::ViewTypes, T::WorkspaceName, T::Layouts,
                       T::GetInfo, T::Trash, T::NewFolder, T::HiddenFiles, T::PinTop}) {
            set.insert(ARXAction::identifier(type));
        }
        return set;
    }();
    return shown.contains(identifier);
}

QString ARXToolBar::label(const QString& identifier) {
    if (identifier == Configuration::quickLauncher) {
        return localized("Quick Launchers");
    }
    if (identifier == Configuration::space) {
        return localized("Space");
    }
    if (identifier == Configuration::flexibleSpace) {
        return localized("Flexible Space");
    }
    const T type = ARXAction::type(identifier);
    if (type == T::WorkspaceName) {
        // The catalogue has no title for it: on the bar it shows the name itself.
        return localized("Workspace Name");
    }
    return ARXAction::title(type);
}

void ARXToolBar::contextMenuEvent(QContextMenuEvent* event) {
    QMenu* menu = makeCustomizeMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->popup(event->globalPos());
    event->accept();
}

void ARXToolBar::changeEvent(QEvent* event) {
    QToolBar::changeEvent(event);
    if (_actions.empty()) {
        return; // still being made
    }
    // Symbolic and drawn pictures take the text colour, and the sizes are the style's.
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange) {
        updateIcons();
        applyIconSize();
    }
}
