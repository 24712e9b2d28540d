#pragma once

#include "actions/ARXActionType.h"
#include "app/ARXAtriumData.h"
#include "model/ARXSpaceHistory.h"
#include "model/ARXSpaceSquareViewMoveDirection.h"
#include "model/ARXSpaceViewTypes.h"
#include "ui/spaceviews/ARXSpaceView.h"

#include <QFileDialog>
#include <QPoint>
#include <QPointer>
#include <QWidget>

#include <map>
#include <optional>
#include <vector>

class ARXSpaceSquareView;
class ARXSpaceMessageView;

class QLineEdit;
class QStackedLayout;
class QToolButton;

// What a pane tells its workspace window, and asks of it.
class ARXSpaceSquareViewDelegate {
public:
    virtual ~ARXSpaceSquareViewDelegate() = default;
    // Asked first for every action of the pane: true when the window took it.
    virtual bool squareViewPerform(ARXSpaceSquareView& pane, ARXActionType action,
                                   const ARXFileEntryList& entries) = 0;
    virtual void squareViewActivated(ARXSpaceSquareView& pane) = 0;
    virtual void squareViewRootChanged(ARXSpaceSquareView& pane) = 0;
    // A key neither the content view nor the pane took.
    virtual bool squareViewKey(ARXSpaceSquareView& pane, QKeyEvent* event) = 0;
};

// One pane of a workspace: a title bar (back, forward, the path, favourite), one content view at
// a time, and a message in its place when the folder cannot be shown. The pane owns what belongs
// to one pane: the folder shown (`root`), the back and forward history, the view type, whether
// hidden files show, the sort of a new folder, and whether it is the active pane.
//
// Every change of folder goes through `refreshRoot`, which lists the folder, decides the status,
// records the history and hands the folder to the content view.
class ARXSpaceSquareView : public QWidget, public ARXSpaceViewDelegate {
    Q_OBJECT

public:
    // Without a path the pane is not in use until applyData or resetToDefaults gives it a folder.
    explicit ARXSpaceSquareView(QWidget* parent = nullptr, std::optional<Path> path = {});
    ~ARXSpaceSquareView() override;

    void setDelegate(ARXSpaceSquareViewDelegate* delegate) { _delegate = delegate; }
    void setPresenter(ARXOperationPresenter* presenter);

    // ----- navigation

    const ARXFileEntryRef& root() const { return _root; }
    // Clears the folder: the pane leaves use (its history and views stay).
    void clearRoot();
    // Makes `entry` the folder shown, with the sort of the folder shown so far.
    void adoptRoot(const ARXFileEntryRef& entry);
    void refreshRoot();
    void openEntry(const ARXFileEntryRef& entry, bool force);
    // Opens the folder of the first path and selects the items of `paths` in it.
    void reveal(const std::vector<Path>& paths);
    // Opens a folder (not loaded yet) as a new place in the history.
    void openPath(const Path& path);
    void goBack();
    void goForward();
    void goEnclosingFolder();
    void goHome();
    void goDocuments();
    void goDesktop();
    void goDownloads();
    void gotoLocation();
    // The path field was confirmed with this text.
    void pathEntered(const QString& text);

    const ARXSpaceHistory& history() const { return _history; }
    ARXSpaceStatus status() const { return _status; }
    QString messageText() const;
    QString chooseButtonTitle() const;
    bool isMessageShown() const;

    // ----- view state

    ARXSpaceViewType viewType() const { return _viewType; }
    void setViewType(ARXSpaceViewType type);
    ARXSpaceView* contentView() const { return _contentView; }
    bool hiddenVisible() const { return _hiddenVisible; }
    void setHiddenVisible(bool visible);
    bool isActivated() const { return _isActivated; }
    void setActivated(bool activated);
    // A lone pane (a layout of one) draws no border.
    void setLone(bool lone);
    void updateViewBorder();
    // Where the pane sits in its layout, and where it may move to.
    QPoint coord;
    std::vector<ARXSpaceSquareViewMoveDirection> canMoveDirs;

    // ----- saving

    void applyData(const ARXSpaceData& data);
    // Empty (no root) for a pane not in use.
    std::optional<ARXSpaceData> makeData() const;
    void resetToDefaults();
    const std::optional<Path>& startPath() const { return _startPath; }
    void setStartPath(std::optional<Path> path) { _startPath = std::move(path); }

    // ----- actions

    bool perform(ARXActionType action, ARXFileEntryList entries = {});
    // Whether a menu item of the pane is enabled now.
    bool isActionEnabled(ARXActionType action) const;
    // The folder chooser, one at a time; `authorize` asks for a folder that could not be read.
    void choosePath(bool authorize, std::optional<Path> path = {});
    QFileDialog* chooser() const { return _chooser; }

    // ----- ARXSpaceViewDelegate

    bool spaceViewPerform(ARXSpaceView& view, ARXActionType action,
                          const ARXFileEntryList& entries) override;
    void spaceViewStatusChanged(ARXSpaceView& view, ARXSpaceStatus status) override;
    void spaceViewSelectionChanged(ARXSpaceView& view) override;
    void spaceViewOpen(ARXSpaceView& view, const ARXFileEntryList& entries) override;
    void spaceViewFocused(ARXSpaceView& view) override;
    void spaceViewGoBack(ARXSpaceView& view) override;
    void spaceViewGoForward(ARXSpaceView& view) override;
    bool spaceViewUnhandledKey(ARXSpaceView& view, QKeyEvent* event) override;

    QLineEdit* pathField() const { return _pathField; }
    QToolButton* backButton() const { return _backButton; }
    QToolButton* forwardButton() const { return _forwardButton; }
    QToolButton* favoriteButton() const { return _favoriteButton; }

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void buildTitleBar();
    void applyStatus(ARXSpaceStatus status);
    void updateButtons();
    void updatePathField();
    void updateFavorite();
    void updateLook();
    void onChoosePath();
    void readSortDefaults();
    void observeNotifications();
    // A new entry for a place of the history or a navigation, listed or not.
    ARXFileEntryRef makeEntry(const Path& path, bool load) const;
    ARXSpaceView* makeContentView(ARXSpaceViewType type);
    void openAction(const ARXFileEntryList& entries);

    ARXSpaceSquareViewDelegate* _delegate = nullptr;
    ARXOperationPresenter* _presenter = nullptr;
    QWidget* _titleBar = nullptr;
    QToolButton* _backButton = nullptr;
    QToolButton* _forwardButton = nullptr;
    QToolButton* _favoriteButton = nullptr;
    QLineEdit* _pathField = nullptr;
    QStackedLayout* _stack = nullptr;
    ARXSpaceMessageView* _messageView = nullptr;
    ARXSpaceView* _contentView = nullptr;
    std::map<ARXSpaceViewType, ARXSpaceView*> _contentViews;
    QPointer<QFileDialog> _chooser;

    ARXSpaceHistory _history;
    ARXFileEntryRef _root;
    std::optional<Path> _startPath;
    ARXSpaceViewType _viewType = ARXSpaceViewType::none;
    ARXSpaceStatus _status = ARXSpaceStatus::empty;
    bool _hiddenVisible = false;
    bool _isActivated = false;
    bool _lone = false;
    bool sortFoldersOnTop = false;
    ARXSpaceViewColumnId sortColumn = ARXSpaceViewColumnId::modified;
    bool sortAscend = false;
};
