#include "ui/workspace/ARXAtriumViewController.h"

#include "app/ARXConf.h"
#include "app/ARXNotificationNames.h"
#include "platform/ARXNotificationCenter.h"
#include "ui/layout/ARXHandySplitView.h"

#include <QAction>
#include <QApplication>
#include <QHBoxLayout>
#include <QMenu>
#include <QResizeEvent>
#include <QStyle>
#include <QSystemTrayIcon>
#include <QTimer>
#include <QWindow>

#include <algorithm>

namespace {

QString localized(const char* text) {
    return QCoreApplication::translate("Atrium", text);
}

// The narrowest the content area is let down to, and the room a sidebar adds to that floor (its
// minimum and the divider). Beyond those, a window may be made smaller than its panes would like.
constexpr int kContentFloorWidth = 400;
constexpr int kContentFloorHeight = 120;
constexpr int kSidebarFloor = ARXAtriumViewController::kSidebarMinimumWidth + 1;
constexpr int kNoSidebarFloor = 1;
// Below this much room beyond the panes' own minimum, the sidebar gives up its extra width.
constexpr int kContentSlack = 100;

int clampedSidebarWidth(double width) {
    return std::clamp(int(width), ARXAtriumViewController::kSidebarMinimumWidth,
                      ARXAtriumViewController::kSidebarMaximumWidth);
}

} // namespace

ARXAtriumViewController::ARXAtriumViewController(QWidget* parent) : ARXViewController(parent) {
    for (ARXAtriumLayoutId id : ARXAtriumLayout::all()) {
        _layouts.emplace_back(id);
    }

    auto* box = new QHBoxLayout(this);
    box->setContentsMargins(0, 0, 0, 0);
    box->setSpacing(0);
    _mainSplit = new ARXHandySplitView(Qt::Horizontal, this);
    // The sidebar keeps its width as the window grows; only the content area takes the change.
    _mainSplit->setHandy(false);
    box->addWidget(_mainSplit);

    _sidebar = new QWidget(_mainSplit);
    _sidebar->setObjectName(QStringLiteral("atriumSidebar"));
    _sidebar->setMinimumWidth(kSidebarMinimumWidth);
    _sidebar->setMaximumWidth(kSidebarMaximumWidth);
    _contentView = new QWidget(_mainSplit);
    _contentView->setObjectName(QStringLiteral("atriumContent"));
    _mainSplit->addWidget(_sidebar);
    _mainSplit->addWidget(_contentView);
    _mainSplit->setStretchFactor(0, 0);
    _mainSplit->setStretchFactor(1, 1);
    _sidebar->hide();
    connect(_mainSplit, &QSplitter::splitterMoved, this, [this] {
        if (_hasSideView) {
            _sidebarWidth = _sidebar->width();
        }
    });

    for (ARXSpaceSquareView*& pane : _squares) {
        pane = new ARXSpaceSquareView(_contentView);
        pane->setDelegate(this);
        pane->hide();
    }
}

ARXAtriumViewController::~ARXAtriumViewController() {
    // The panes may still tell us of focus changes while they are torn down.
    for (ARXSpaceSquareView* pane : _squares) {
        pane->setDelegate(nullptr);
    }
}

void ARXAtriumViewController::setPresenter(ARXOperationPresenter* presenter) {
    for (ARXSpaceSquareView* pane : _squares) {
        pane->setPresenter(presenter);
    }
}

void ARXAtriumViewController::build(std::optional<QString> name, const ARXAtriumData& data) {
    if (_built) {
        qFatal("ARXAtriumViewController::build: a workspace is built once");
    }
    _built = true;
    _name = std::move(name);
    _hotkey = data.hotkey;
    // A workspace saved without a sidebar, or with a width of 0, opens without one.
    if (data.sidebarWidth && *data.sidebarWidth > 0) {
        _sidebarWidth = clampedSidebarWidth(*data.sidebarWidth);
        setSidebarVisible(true);
    }
    const qint64 raw = data.layoutId.value_or(ARXConf::settings_default_layout().value());
    const ARXAtriumLayoutId id =
        ARXAtriumLayout::fromRaw(raw).value_or(ARXAtriumLayoutId::layout_0);
    // The saved factors are kept as they are, even of the wrong length: the build then uses the
    // defaults, and the next swap or save replaces them.
    _builtLayout = std::make_unique<ARXAtriumLayout>(id, data.layoutFactors);
    setLayout(*_builtLayout, data);
}

// ----- layouts

ARXAtriumLayout& ARXAtriumViewController::layoutMember(ARXAtriumLayoutId id) {
    return _layouts[size_t(id)];
}

void ARXAtriumViewController::onLayoutClicked(ARXAtriumLayoutId id) {
    setLayout(layoutMember(id));
}

ARXAtriumLayoutBuilder::Panes ARXAtriumViewController::builderPanes() const {
    return {_squares[0], _squares[1], _squares[2], _squares[3]};
}

void ARXAtriumViewController::setLayout(ARXAtriumLayout& layout,
                                        const std::optional<ARXAtriumData>& data) {
    if (_layout && _layout->id == layout.id) {
        return;
    }
    _layout = &layout;
    rebuildLayout();
    activate(_squares[0]);
    const bool firstWasEmpty = !_squares[0]->root();
    fillPanes(data);
    // A first pane that only now shows a folder takes the keyboard, and the window learns of it.
    if (firstWasEmpty && _squares[0]->isActivated()) {
        activate(_squares[0]);
    }
}

void ARXAtriumViewController::fillPanes(const std::optional<ARXAtriumData>& data) {
    std::vector<ARXSpaceData> records;
    if (data) {
        for (const std::optional<ARXSpaceData>& record : data->spaces) {
            if (record) {
                records.push_back(*record);
            }
        }
    }
    for (size_t i = 0; i < _squares.size(); ++i) {
        ARXSpaceSquareView* pane = _squares[i];
        if (!ARXAtriumLayoutBuilder::isPlaced(pane)) {
            // Out of sight: the folder goes, the history and the views stay.
            pane->clearRoot();
            continue;
        }
        if (pane->root()) {
            continue;
        }
        // A pane that has just come into use sees hidden files as the active one does.
        const ARXSpaceSquareView* active = activePane();
        pane->setHiddenVisible(active ? active->hiddenVisible() : false);
        if (i < records.size()) {
            pane->applyData(records[i]);
        } else {
            pane->resetToDefaults();
        }
    }
}

void ARXAtriumViewController::rebuildLayout() {
    if (!_layout) {
        return;
    }
    const ARXAtriumLayoutId id = _layout->id;
    Q_EMIT layoutRebuilt(id);

    // The active pane stays in sight: past the layout's last place it takes that place, and the
    // panes between move up one.
    const int last = ARXAtriumLayout::lastIndex(id);
    for (int i = 0; i < int(_squares.size()); ++i) {
        if (_squares[size_t(i)]->isActivated()) {
            if (i > last) {
                std::rotate(_squares.begin() + last, _squares.begin() + i,
                            _squares.begin() + i + 1);
            }
            break;
        }
    }

    for (ARXSpaceSquareView* pane : _squares) {
        pane->setActivated(false);
        pane->canMoveDirs.clear();
        pane->coord = QPoint(0, 0);
    }
    ARXAtriumLayoutBuilder::build(_contentView, builderPanes(), *_layout);
    for (int i = 0; i < int(_squares.size()); ++i) {
        ARXSpaceSquareView* pane = _squares[size_t(i)];
        pane->setLone(id == ARXAtriumLayoutId::layout_7 && i == 0);
        if (i <= last) {
            pane->canMoveDirs = ARXAtriumLayout::canMoveDirs(id, i);
            pane->coord = ARXAtriumLayout::coord(id, i);
        }
    }
    updateMinimumSize();
}

std::optional<QList<double>> ARXAtriumViewController::currentFactors() const {
    if (!_layout) {
        return std::nullopt;
    }
    return ARXAtriumLayoutBuilder::currentFactors(_contentView, builderPanes(), _layout->id);
}

// ----- sidebar and sizes

void ARXAtriumViewController::setSidebarVisible(bool visible) {
    if (visible == _hasSideView) {
        return;
    }
    _hasSideView = visible;
    if (!visible) {
        _sidebarWidth = _sidebar->width();
        _sidebar->hide();
        updateMinimumSize();
        return;
    }
    if (_sidebarWidth <= 0) {
        _sidebarWidth = int(ARXConf::sidebarDefaultWidth);
    }
    _sidebar->show();
    // The content area takes whatever the sidebar leaves; before the first layout the split
    // knows no width yet, and the content's stretch makes up the difference then.
    const int total = std::max(_mainSplit->width() - _mainSplit->handleWidth(), _sidebarWidth + 1);
    _mainSplit->setSizes({_sidebarWidth, total - _sidebarWidth});
    updateMinimumSize();
}

void ARXAtriumViewController::updateMinimumSize() {
    const QSize fitting = _contentView->minimumSizeHint();
    const int width = std::clamp(fitting.width(), 0, kContentFloorWidth);
    const int height = std::clamp(fitting.height(), 0, kContentFloorHeight);
    setMinimumSize(width + (_hasSideView ? kSidebarFloor : kNoSidebarFloor), height);
}

void ARXAtriumViewController::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    // Sizes given before the window is up, or to a tab in the background, are a layout's
    // guesses, not the user's window: they must not cost the sidebar its width.
    if (!_hasSideView || _sidebarWidth <= kSidebarMinimumWidth || !isVisible()) {
        return;
    }
    // A window made narrow takes the room from the sidebar first, down to its minimum.
    const int content = event->size().width() - _sidebarWidth - _mainSplit->handleWidth();
    if (content < _contentView->minimumSizeHint().width() + kContentSlack) {
        _sidebarWidth = kSidebarMinimumWidth;
        const int total =
            std::max(event->size().width() - _mainSplit->handleWidth(), kSidebarMinimumWidth + 1);
        _mainSplit->setSizes({kSidebarMinimumWidth, total - kSidebarMinimumWidth});
    }
}

void ARXAtriumViewController::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (_shownOnce) {
        return;
    }
    _shownOnce = true;
    // Once the window is up: the first pane takes the keyboard, and the tray entry follows the
    // setting from now on.
    QTimer::singleShot(0, this, [this] {
        activate(_squares[0]);
        setStatusItemVisible(ARXConf::settings_workspace_statusbar_entry().value());
    });
    ARXNotificationCenter::shared().addObserver(
        ARXNotificationName::rv_settings_workspace_status_bar_entry_changed, this,
        [this](const ARXNotification&) {
            setStatusItemVisible(ARXConf::settings_workspace_statusbar_entry().value());
        });
}

// ----- name and tray

void ARXAtriumViewController::setName(std::optional<QString> name, std::optional<QString> hotkey) {
    _name = std::move(name);
    _hotkey = std::move(hotkey);
    if (_statusItem) {
        _statusItem->setToolTip(_name.value_or(QString()));
        if (QMenu* menu = _statusItem->contextMenu(); menu && !menu->actions().isEmpty()) {
            menu->actions().front()->setText(_name.value_or(QString()));
        }
    }
    if (_delegate) {
        _delegate->workspaceNameChanged(*this);
    }
}

void ARXAtriumViewController::setStatusItemVisible(bool visible) {
    if (!visible) {
        delete _statusItem;
        return;
    }
    // Desktops without a tray get no entry; the setting stays for the day they have one.
    if (_statusItem || !QSystemTrayIcon::isSystemTrayAvailable()) {
        return;
    }
    QIcon icon = QApplication::windowIcon();
    if (icon.isNull()) {
        icon = QIcon::fromTheme(QStringLiteral("system-file-manager"),
                                style()->standardIcon(QStyle::SP_DirIcon));
    }
    _statusItem = new QSystemTrayIcon(icon, this);
    _statusItem->setToolTip(_name.value_or(QString()));
    // Some trays only open a menu on a click, so the workspace is in one as well.
    auto* menu = new QMenu(this);
    connect(menu->addAction(_name.value_or(localized("Workspace"))), &QAction::triggered, this,
            &ARXAtriumViewController::onStatusItemClicked);
    connect(_statusItem, &QObject::destroyed, menu, &QObject::deleteLater);
    _statusItem->setContextMenu(menu);
    connect(_statusItem, &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason reason) {
                if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::DoubleClick) {
                    onStatusItemClicked();
                }
            });
    _statusItem->show();
}

void ARXAtriumViewController::onStatusItemClicked() {
    if (_delegate) {
        _delegate->workspaceStatusItemClicked(*this);
        return;
    }
    QWidget* top = window();
    top->show();
    top->raise();
    top->activateWindow();
}

// ----- the record

ARXAtriumData ARXAtriumViewController::makeData() const {
    ARXAtriumData data;
    const QWidget* top = window();
    // A window that never reached the screen has no frame to remember, nor a state.
    if (top->windowHandle()) {
        data.frame = QRectF(top->geometry());
        data.fullscreen = top->isFullScreen();
        data.pinTop = top->windowFlags().testFlag(Qt::WindowStaysOnTopHint);
    }
    data.hotkey = _hotkey;
    data.sidebarWidth =
        _hasSideView ? double(_sidebar->isVisible() ? _sidebar->width() : _sidebarWidth) : 0.0;
    if (_layout) {
        data.layoutId = qint64(_layout->id);
        data.layoutFactors = currentFactors();
    }
    for (size_t i = 0; i < _squares.size(); ++i) {
        data.spaces[i] = _squares[i]->makeData();
    }
    return data;
}

// ----- what the panes tell the workspace

bool ARXAtriumViewController::squareViewPerform(ARXSpaceSquareView& pane, ARXActionType action,
                                                const ARXFileEntryList& entries) {
    return _delegate && _delegate->workspacePerform(*this, pane, action, entries);
}

void ARXAtriumViewController::squareViewActivated(ARXSpaceSquareView& pane) {
    // A pane that activates itself (a click, its path field) takes over from the others.
    for (ARXSpaceSquareView* other : _squares) {
        if (other != &pane) {
            other->setActivated(false);
        }
    }
    if (_delegate) {
        _delegate->workspacePaneActivated(*this, pane);
    }
}

void ARXAtriumViewController::squareViewRootChanged(ARXSpaceSquareView& pane) {
    if (_delegate) {
        _delegate->workspacePaneRootChanged(*this, pane);
    }
}
