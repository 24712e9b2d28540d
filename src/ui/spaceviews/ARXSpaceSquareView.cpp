#include "ui/spaceviews/ARXSpaceSquareView.h"

#include "app/ARXConf.h"
#include "app/ARXFavorites.h"
#include "app/ARXNotificationNames.h"
#include "app/ARXTypedPath.h"
#include "platform/ARXFileIO.h"
#include "platform/ARXNotificationCenter.h"
#include "platform/ARXSystemPaths.h"
#include "ui/spaceviews/ARXSpaceListView.h"
#include "ui/spaceviews/ARXSpaceMessageView.h"

#include <QApplication>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QStackedLayout>
#include <QStyle>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

namespace {

QString localized(const char* text) {
    return QCoreApplication::translate("Atrium", text);
}

// The home folder of the user's password record, read once.
const Path& home() {
    static const Path path = ARXSystemPaths::homeDirectory();
    return path;
}

Path defaultDirectory() {
    return ARXPath::fromStoredText(ARXConf::settings_default_directory().value());
}

} // namespace

ARXSpaceSquareView::ARXSpaceSquareView(QWidget* parent, std::optional<Path> path)
    : QWidget(parent) {
    auto* layout = new QVBoxLayout(this);
    // Room for the one-pixel border of the active pane.
    layout->setContentsMargins(1, 1, 1, 1);
    layout->setSpacing(0);
    buildTitleBar();
    layout->addWidget(_titleBar);
    _stack = new QStackedLayout;
    _stack->setStackingMode(QStackedLayout::StackOne);
    layout->addLayout(_stack, 1);
    _messageView = new ARXSpaceMessageView(this);
    _stack->addWidget(_messageView);
    connect(_messageView->chooseButton(), &QPushButton::clicked, this,
            &ARXSpaceSquareView::onChoosePath);

    readSortDefaults();
    observeNotifications();
    if (path) {
        setViewType(ARXSpaceViewType::list);
        adoptRoot(makeEntry(*path, true));
        refreshRoot();
    }
}

ARXSpaceSquareView::~ARXSpaceSquareView() {
    ARXNotificationCenter::shared().removeObservers(this);
    // The content view outlives this part of the pane and may still report focus changes and
    // finished operations while it is torn down.
    for (const auto& [type, view] : _contentViews) {
        view->setDelegate(nullptr);
    }
    if (_contentView) {
        _contentView->setDelegate(nullptr);
    }
}

void ARXSpaceSquareView::buildTitleBar() {
    _titleBar = new QWidget(this);
    _titleBar->setAutoFillBackground(true);
    auto* bar = new QHBoxLayout(_titleBar);
    bar->setContentsMargins(4, 2, 4, 2);
    bar->setSpacing(2);
    auto makeButton = [this, bar](const char* icon, QStyle::StandardPixmap fallback,
                                  const char* tip) {
        auto* button = new QToolButton(_titleBar);
        button->setAutoRaise(true);
        button->setIcon(QIcon::fromTheme(QLatin1String(icon), style()->standardIcon(fallback)));
        button->setToolTip(localized(tip));
        button->setFocusPolicy(Qt::NoFocus);
        bar->addWidget(button);
        return button;
    };
    _backButton = makeButton("go-previous", QStyle::SP_ArrowBack, "Back");
    _forwardButton = makeButton("go-next", QStyle::SP_ArrowForward, "Forward");
    connect(_backButton, &QToolButton::clicked, this, &ARXSpaceSquareView::goBack);
    connect(_forwardButton, &QToolButton::clicked, this, &ARXSpaceSquareView::goForward);

    _pathField = new QLineEdit(_titleBar);
    _pathField->setFrame(false);
    _pathField->setPlaceholderText(localized("Go to Location"));
    _pathField->installEventFilter(this);
    bar->addWidget(_pathField, 1);
    connect(_pathField, &QLineEdit::returnPressed, this,
            [this] { pathEntered(_pathField->text()); });

    _favoriteButton = makeButton("starred", QStyle::SP_DialogYesButton, "Favorite");
    _favoriteButton->setCheckable(true);
    connect(_favoriteButton, &QToolButton::clicked, this, [this] {
        if (_root) {
            _favoriteButton->setChecked(ARXFavorites::toggleFavorite(_root->fileURLString()));
        }
    });
    _backButton->setEnabled(false);
    _forwardButton->setEnabled(false);
}

void ARXSpaceSquareView::setPresenter(ARXOperationPresenter* presenter) {
    _presenter = presenter;
    for (auto& [type, view] : _contentViews) {
        view->setPresenter(presenter);
    }
}

void ARXSpaceSquareView::readSortDefaults() {
    sortFoldersOnTop = ARXConf::settings_default_sort_folders_ontop().value();
    sortColumn = ARXSpaceViewColumn::parse(ARXConf::settings_default_sort_column().value())
                     .value_or(ARXSpaceViewColumnId::modified);
    sortAscend = ARXConf::settings_default_sort_ascend().value();
}

void ARXSpaceSquareView::observeNotifications() {
    namespace N = ARXNotificationName;
    auto& center = ARXNotificationCenter::shared();
    center.addObserver(N::rv_settings_current_view_border_visible_changed, this,
                       [this](const ARXNotification&) { updateViewBorder(); });
    center.addObserver(N::rv_settings_default_viewtype_changed, this,
                       [this](const ARXNotification&) {
                           if (!_root) {
                               const qint64 type = ARXConf::settings_default_view().value();
                               setViewType(ARXSpaceViewType(type > 3 || type < 1 ? 2 : type));
                           }
                       });
    center.addObserver(N::rv_cached_favorite_urls_changed, this,
                       [this](const ARXNotification&) { updateFavorite(); });
    center.addObserver(
        N::rv_cached_security_scoped_updated, this, [this](const ARXNotification& note) {
            if (!_root) {
                return;
            }
            for (const QVariant& url : note.userInfo.value(QStringLiteral("urls")).toList()) {
                const Path path = ARXPath::fromFileURL(url.toString());
                if (!path.empty() && (_root->isSamePath(ARXPath::normalized(path)) ||
                                      _root->isInside(ARXPath::normalized(path), true))) {
                    refreshRoot();
                    return;
                }
            }
        });
}

ARXFileEntryRef ARXSpaceSquareView::makeEntry(const Path& path, bool load) const {
    return ARXFileEntry::create(ARXPath::normalized(path), nullptr, false, _hiddenVisible, load);
}

// ----- navigation

void ARXSpaceSquareView::clearRoot() {
    _root.reset();
    if (_contentView) {
        _contentView->bindRoot(nullptr);
    }
}

void ARXSpaceSquareView::adoptRoot(const ARXFileEntryRef& entry) {
    if (!entry) {
        return;
    }
    if (_root) {
        entry->sortColumn = _root->sortColumn;
        entry->sortAscend = _root->sortAscend;
        entry->sortFoldersOnTop = _root->sortFoldersOnTop;
    } else {
        entry->sortColumn =
            ARXSpaceViewColumn::parse(ARXConf::settings_default_sort_column().value())
                .value_or(ARXSpaceViewColumnId::modified);
        entry->sortAscend = ARXConf::settings_default_sort_ascend().value();
        entry->sortFoldersOnTop = ARXConf::settings_default_sort_folders_ontop().value();
    }
    _root = entry;
}

void ARXSpaceSquareView::refreshRoot() {
    if (!_root) {
        readSortDefaults();
        adoptRoot(makeEntry(defaultDirectory(), true));
    }
    if (_viewType == ARXSpaceViewType::none) {
        setViewType(ARXSpaceViewType::list);
    }
    if (_root->hiddenVisible() != _hiddenVisible) {
        if (_hiddenVisible) {
            _root->revealHidden();
        } else {
            _root->hideHidden();
        }
    }
    // The content view lists the folder and decides the status (spaceViewStatusChanged).
    _contentView->bindRoot(_root, false);
    _history.push(_root);
    // Only the active pane takes the keyboard: panes filled one after another (a new layout, a
    // restored workspace) would each take it from the one before, and the last would end up as
    // the pane every command acts on.
    if (_isActivated) {
        _contentView->focusContent();
    }
    updateButtons();
    updatePathField();
    updateFavorite();
    if (_delegate) {
        _delegate->squareViewRootChanged(*this);
    }
}

void ARXSpaceSquareView::openPath(const Path& path) {
    adoptRoot(makeEntry(path, true));
    refreshRoot();
}

void ARXSpaceSquareView::openEntry(const ARXFileEntryRef& entry, bool force) {
    if (!entry) {
        return;
    }
    const ARXFileEntry& target = entry->target();
    if (target.isFolder() && (!entry->isPackage() || force)) {
        openPath(entry->path());
        return;
    }
    if (_contentView) {
        _contentView->openEntries({entry});
    }
}

void ARXSpaceSquareView::reveal(const std::vector<Path>& paths) {
    if (paths.empty()) {
        return;
    }
    const Path folder = ARXPath::parentPath(paths.front());
    adoptRoot(makeEntry(folder, true));
    refreshRoot();
    if (_contentView) {
        _contentView->selectPaths(paths);
    }
}

void ARXSpaceSquareView::goBack() {
    if (const ARXFileEntryRef entry = _history.back()) {
        adoptRoot(entry);
        refreshRoot();
    }
}

void ARXSpaceSquareView::goForward() {
    if (const ARXFileEntryRef entry = _history.forward()) {
        adoptRoot(entry);
        refreshRoot();
    }
}

void ARXSpaceSquareView::goEnclosingFolder() {
    if (!_root) {
        return;
    }
    const Path old = _root->target().path();
    const Path parent = ARXPath::parentPath(old);
    openPath(parent);
    // The folder just left is the selection.
    if (parent != old && _contentView) {
        for (const ARXFileEntryRef& child : _root->children()) {
            if (child->path() == old) {
                _contentView->setSelectedItems({child});
                break;
            }
        }
    }
}

void ARXSpaceSquareView::goHome() {
    openPath(home());
}

void ARXSpaceSquareView::goDocuments() {
    openPath(ARXSystemPaths::userDirectory("DOCUMENTS"));
}

void ARXSpaceSquareView::goDesktop() {
    openPath(ARXSystemPaths::userDirectory("DESKTOP"));
}

void ARXSpaceSquareView::goDownloads() {
    openPath(ARXSystemPaths::userDirectory("DOWNLOAD"));
}

void ARXSpaceSquareView::gotoLocation() {
    _pathField->setFocus(Qt::ShortcutFocusReason);
    _pathField->selectAll();
}

void ARXSpaceSquareView::pathEntered(const QString& text) {
    const std::optional<Path> current =
        _root ? std::optional<Path>(_root->path()) : std::optional<Path>();
    if (const auto path = ARXTypedPath::resolve(text, home(), defaultDirectory(), current)) {
        openPath(*path);
    }
    updatePathField();
    setActivated(true);
}

// ----- status

void ARXSpaceSquareView::spaceViewStatusChanged(ARXSpaceView& view, ARXSpaceStatus status) {
    if (&view == _contentView) {
        applyStatus(status);
    }
}

void ARXSpaceSquareView::applyStatus(ARXSpaceStatus status) {
    _status = status;
    if (status == ARXSpaceStatus::normal) {
        if (_contentView) {
            _stack->setCurrentWidget(_contentView);
        }
        return;
    }
    // The keyboard stays in the pane: hidden with the content, it would go on to whatever widget
    // comes next, and make the pane beside this one the active one unasked.
    if (_contentView && _contentView->hasContentFocus()) {
        _messageView->chooseButton()->setFocus(Qt::OtherFocusReason);
    }
    _stack->setCurrentWidget(_messageView);
    _isActivated = false;
    updateLook();
    QString text;
    switch (status) {
    case ARXSpaceStatus::notfound:
        text = localized("Directory not found.");
        break;
    case ARXSpaceStatus::empty:
        text = localized("Please choose your working directory.");
        break;
    default:
        text = _root && _root->prepareError
                   ? _root->prepareError->text()
                   : localized("Access has not granted, select the directory to open.");
        break;
    }
    _messageView->messageLabel()->setText(text);
    // A folder the system refuses to list says why and waits for the button: a chooser can grant
    // nothing here, so none opens by itself.
    _messageView->chooseButton()->setText(
        status == ARXSpaceStatus::denied ? localized("Authorize") : localized("Choose directory"));
}

QString ARXSpaceSquareView::messageText() const {
    return _messageView->messageLabel()->text();
}

QString ARXSpaceSquareView::chooseButtonTitle() const {
    return _messageView->chooseButton()->text();
}

bool ARXSpaceSquareView::isMessageShown() const {
    return _stack->currentWidget() == _messageView;
}

void ARXSpaceSquareView::onChoosePath() {
    choosePath(false);
}

void ARXSpaceSquareView::choosePath(bool authorize, std::optional<Path> path) {
    if (!window() || _chooser) {
        return;
    }
    Path start = path ? *path : (_root ? _root->target().path() : home());
    if (!ARXFileIO::isDirectory(start)) {
        start = home();
    }
    auto* dialog = new QFileDialog(window());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::Directory);
    dialog->setOption(QFileDialog::ShowDirsOnly, true);
    dialog->setAcceptMode(QFileDialog::AcceptOpen);
    dialog->setDirectory(ARXPath::display(start));
    dialog->setWindowModality(Qt::WindowModal);
    if (authorize) {
        dialog->setLabelText(QFileDialog::Accept, localized("Authorize"));
        dialog->setWindowTitle(localized(
            "The current path is not authorized. To access, please click on \"Authorize\"."));
    } else {
        dialog->setLabelText(QFileDialog::Accept, localized("Choose"));
    }
    connect(dialog, &QFileDialog::fileSelected, this, [this](const QString& chosen) {
        if (!chosen.isEmpty()) {
            openPath(ARXPath::normalized(ARXPath::fromText(chosen)));
        }
    });
    _chooser = dialog;
    dialog->open();
}

// ----- look

void ARXSpaceSquareView::updateButtons() {
    _backButton->setEnabled(_history.canGoBack());
    _forwardButton->setEnabled(_history.canGoForward());
}

void ARXSpaceSquareView::updatePathField() {
    if (_root && !_pathField->hasFocus()) {
        _pathField->setText(ARXPath::display(_root->path()));
        _pathField->setCursorPosition(0);
    } else if (_root) {
        _pathField->setText(ARXPath::display(_root->path()));
    }
}

void ARXSpaceSquareView::updateFavorite() {
    _favoriteButton->setChecked(_root && ARXFavorites::isFavorite(_root->fileURLString()));
}

void ARXSpaceSquareView::setActivated(bool activated) {
    if (_viewType != ARXSpaceViewType::none && _contentView) {
        if (activated) {
            // After the current event, and not away from the pane's own path field. A pane that
            // another took over from in the meantime leaves the keyboard where it is: two panes
            // activated in one event would otherwise take it from each other for ever.
            QPointer<ARXSpaceView> view(_contentView);
            QTimer::singleShot(0, this, [this, view] {
                if (view && _isActivated && !view->hasContentFocus() &&
                    QApplication::focusWidget() != _pathField) {
                    view->focusContent();
                }
            });
            if (_delegate && !_isActivated) {
                _isActivated = true;
                _delegate->squareViewActivated(*this);
            }
        } else if (_contentView->hasContentFocus()) {
            // The keyboard leaves with the activation: keys must never act on a pane that does
            // not look active.
            if (QWidget* focused = QApplication::focusWidget()) {
                focused->clearFocus();
            }
        }
    }
    _isActivated = activated;
    updateLook();
}

void ARXSpaceSquareView::setLone(bool lone) {
    _lone = lone;
    updateViewBorder();
}

void ARXSpaceSquareView::updateLook() {
    for (const auto& [type, view] : _contentViews) {
        view->setActiveLook(_isActivated);
    }
    QPalette palette = _titleBar->palette();
    palette.setColor(QPalette::Window,
                     _isActivated ? this->palette().color(QPalette::Button) : Qt::transparent);
    _titleBar->setPalette(palette);
    updateViewBorder();
}

void ARXSpaceSquareView::updateViewBorder() {
    update();
}

void ARXSpaceSquareView::paintEvent(QPaintEvent* event) {
    QWidget::paintEvent(event);
    if (_lone || !_isActivated || !ARXConf::settings_current_view_border_visible().value()) {
        return;
    }
    QPainter painter(this);
    painter.setPen(QPen(palette().color(QPalette::Highlight), 1.0));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

void ARXSpaceSquareView::mousePressEvent(QMouseEvent* event) {
    QWidget::mousePressEvent(event);
    setActivated(true);
}

bool ARXSpaceSquareView::eventFilter(QObject* watched, QEvent* event) {
    if (watched == _pathField) {
        if (event->type() == QEvent::FocusIn) {
            setActivated(true);
        } else if (event->type() == QEvent::KeyPress &&
                   static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
            // Leaving the field gives the folder shown back to it.
            _pathField->clearFocus();
            updatePathField();
            if (_contentView) {
                _contentView->focusContent();
            }
            return true;
        } else if (event->type() == QEvent::FocusOut) {
            updatePathField();
        }
    }
    return QWidget::eventFilter(watched, event);
}
