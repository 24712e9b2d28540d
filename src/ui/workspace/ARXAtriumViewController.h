#pragma once

#include "app/ARXAtriumData.h"
#include "model/ARXSpaceSquareViewMoveDirection.h"
#include "ui/ARXViewController.h"
#include "ui/layout/ARXAtriumLayout.h"
#include "ui/layout/ARXAtriumLayoutBuilder.h"
#include "ui/spaceviews/ARXSpaceSquareView.h"

#include <QPointer>
#include <QSystemTrayIcon>
#include <QWidget>

#include <array>
#include <memory>
#include <optional>
#include <vector>

class ARXAtriumViewController;
class ARXHandySplitView;

// What a workspace tells the window that shows it, and asks of it. Every call has a do-nothing
// answer, so a window implements only what it shows.
class ARXAtriumViewControllerDelegate {
public:
    virtual ~ARXAtriumViewControllerDelegate() = default;
    // Asked first for every action of a pane: true when the window took it (window-wide actions
    // such as hidden files, search, the sidebar).
    virtual bool workspacePerform(ARXAtriumViewController& /*workspace*/,
                                  ARXSpaceSquareView& /*pane*/, ARXActionType /*action*/,
                                  const ARXFileEntryList& /*entries*/) {
        return false;
    }
    // The pane became the active one; the toolbar follows it.
    virtual void workspacePaneActivated(ARXAtriumViewController& /*workspace*/,
                                        ARXSpaceSquareView& /*pane*/) {}
    // The pane shows another folder, or the same one with another status.
    virtual void workspacePaneRootChanged(ARXAtriumViewController& /*workspace*/,
                                          ARXSpaceSquareView& /*pane*/) {}
    // A key that neither the pane nor the workspace used (the window's own keys).
    virtual bool workspaceKey(ARXAtriumViewController& /*workspace*/, ARXSpaceSquareView& /*pane*/,
                              QKeyEvent* /*event*/) {
        return false;
    }
    // The name changed: the window title and the toolbar's name item follow.
    virtual void workspaceNameChanged(ARXAtriumViewController& /*workspace*/) {}
    // The workspace's tray entry was clicked: its window comes forward. Without a delegate the
    // workspace raises its own top-level window.
    virtual void workspaceStatusItemClicked(ARXAtriumViewController& /*workspace*/) {}
};

// The content of one workspace window: a sidebar beside the content area, where four panes are
// placed by one of the twelve layouts. The four panes are made once and live as long as the
// workspace; a layout with fewer places keeps the others out of sight, their folder cleared but
// their history and views kept. The order of `squares()` is the order of the saved pane records
// and of the layouts' trees, and it changes when panes are swapped.
//
// At most one pane is active at a time; the window sends actions to it.
class ARXAtriumViewController : public ARXViewController, public ARXSpaceSquareViewDelegate {
    Q_OBJECT

public:
    using Squares = std::array<ARXSpaceSquareView*, 4>;

    // The sidebar's width is held between these.
    static constexpr int kSidebarMinimumWidth = 150;
    static constexpr int kSidebarMaximumWidth = 300;

    explicit ARXAtriumViewController(QWidget* parent = nullptr);
    ~ARXAtriumViewController() override;

    void setDelegate(ARXAtriumViewControllerDelegate* delegate) { _delegate = delegate; }
    // The presenter of the panes' file operations (the window's sheet).
    void setPresenter(ARXOperationPresenter* presenter);

    // Fills the workspace from its record: the sidebar when the record has a width above 0, the
    // saved layout (or the default layout; an unknown id is layout_0) with its saved factors, and
    // the panes from the pane records. Runs once.
    void build(std::optional<QString> name, const ARXAtriumData& data);

    // ----- layouts

    // The member of the twelve offered layouts with this id; they keep the sizes a swap stored in
    // them for as long as the workspace is open.
    ARXAtriumLayout& layoutMember(ARXAtriumLayoutId id);
    // The layout in use; null before build.
    const ARXAtriumLayout* layout() const { return _layout; }

    // Changes to `layout` and fills the panes: the active pane is kept among the placed ones,
    // panes that leave lose their folder, panes that arrive take the next saved record of `data`
    // or start fresh, with the active pane's hidden-files flag; then the first pane is active.
    // The layout already in use changes nothing (and `data` is dropped).
    void setLayout(ARXAtriumLayout& layout, const std::optional<ARXAtriumData>& data = {});
    // Places the panes for the layout in use (also after a swap).
    void rebuildLayout();
    // The sizes of the current frames as the layout's factors; nullopt without a layout.
    std::optional<QList<double>> currentFactors() const;
    // The chooser's choice: the offered member with that id.
    void onLayoutClicked(ARXAtriumLayoutId id);

    // ----- panes

    const Squares& squares() const { return _squares; }
    // The placed panes in `squares()` order.
    std::vector<ARXSpaceSquareView*> placedPanes() const;
    // The first active pane, if any.
    ARXSpaceSquareView* activePane() const;
    // Makes the pane the active one: its content takes the keyboard after the current event,
    // every other pane lets it go.
    void activate(ARXSpaceSquareView* pane);
    // Exchanges two panes' places; the sizes of the places stay, and `first` stays active.
    void swap(ARXSpaceSquareView* first, ARXSpaceSquareView* second);
    // Finds the pane in `direction` by probing a point just outside (or, at a window edge, just
    // inside) the pane's frame, and activates it or swaps the pane with it. A probe outside every
    // pane does nothing.
    void moveFocus(ARXSpaceSquareView* pane, ARXSpaceSquareViewMoveDirection direction, bool swap);
    // The "Move to" menu's item: swaps the pane with its neighbour in the direction of `tag` (a
    // raw direction); tags of 8 or more are ignored.
    void moveTo(ARXSpaceSquareView* pane, qint64 tag);
    // Tab: the next (or previous) placed pane after the active one, wrapping at both ends.
    void cyclePanes(bool forward);

    // Opens one folder per path in the placed panes in order (one path: in the active pane),
    // first changing to a layout with room for them when the placed panes are too few and the
    // caller permits. Paths beyond the placed panes are dropped.
    void openPaths(const std::vector<Path>& paths, bool allowLayoutChange);
    // Shows each item in the folder that holds it, one placed pane per folder in the same way.
    void revealPaths(const std::vector<Path>& paths, bool allowLayoutChange);

    // ----- sidebar, name, tray

    bool isSidebarVisible() const { return _hasSideView; }
    void setSidebarVisible(bool visible);
    // The stand-in for the sidebar, until the sidebar has a view of its own.
    QWidget* sidebarView() const { return _sidebar; }
    QWidget* contentView() const { return _contentView; }
    ARXHandySplitView* mainSplitView() const { return _mainSplit; }

    const std::optional<QString>& name() const { return _name; }
    const std::optional<QString>& hotkey() const { return _hotkey; }
    void setName(std::optional<QString> name, std::optional<QString> hotkey);

    // A tray entry for this workspace, where the desktop has a tray.
    void setStatusItemVisible(bool visible);
    QSystemTrayIcon* statusItem() const { return _statusItem; }

    // The record of the workspace as it stands: the window's frame and state, the layout with the
    // sizes read from the frames, the sidebar's width (0 when hidden), every pane's record.
    ARXAtriumData makeData() const;

    // ----- ARXSpaceSquareViewDelegate

    bool squareViewPerform(ARXSpaceSquareView& pane, ARXActionType action,
                           const ARXFileEntryList& entries) override;
    void squareViewActivated(ARXSpaceSquareView& pane) override;
    void squareViewRootChanged(ARXSpaceSquareView& pane) override;
    bool squareViewKey(ARXSpaceSquareView& pane, QKeyEvent* event) override;

Q_SIGNALS:
    // The panes were placed for `id`; the toolbar's chooser shows it.
    void layoutRebuilt(ARXAtriumLayoutId id);

protected:
    void showEvent(QShowEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    // Pane keys that reach the workspace from outside a content view (the path field).
    void keyPressEvent(QKeyEvent* event) override;
    // Tab and Shift+Tab anywhere in the workspace move between panes, not between widgets.
    bool focusNextPrevChild(bool next) override;

private:
    ARXAtriumLayoutBuilder::Panes builderPanes() const;
    void fillPanes(const std::optional<ARXAtriumData>& data);
    // The placed panes after changing, if they are fewer than `count` and the caller permits, to
    // a layout with room: three panes for three, two for two, four otherwise.
    std::vector<ARXSpaceSquareView*> makeRoomFor(size_t count, bool allowLayoutChange);
    // Ctrl+Alt+arrow (with Meta: swap) and Tab; true when used.
    bool handleWorkspaceKey(ARXSpaceSquareView* pane, QKeyEvent* event);
    void updateMinimumSize();
    void onStatusItemClicked();
    // The pane found at a point of the workspace: walks up from the widget there, stopping at the
    // content area.
    ARXSpaceSquareView* paneAt(const QPoint& point) const;

    ARXAtriumViewControllerDelegate* _delegate = nullptr;
    std::vector<ARXAtriumLayout> _layouts;
    // The layout a workspace is built with is its own object, not one of the offered twelve.
    std::unique_ptr<ARXAtriumLayout> _builtLayout;
    ARXAtriumLayout* _layout = nullptr;
    std::optional<QString> _name;
    std::optional<QString> _hotkey;
    ARXHandySplitView* _mainSplit = nullptr;
    QWidget* _sidebar = nullptr;
    QWidget* _contentView = nullptr;
    Squares _squares{};
    bool _hasSideView = false;
    bool _built = false;
    bool _shownOnce = false;
    int _sidebarWidth = 0;
    QPointer<QSystemTrayIcon> _statusItem;
};
