#pragma once

#include "model/ARXFileEntry.h"
#include "model/ARXSpaceViewTypes.h"
#include "ui/spaceviews/ARXSpaceView.h"

#include <QMap>
#include <QPersistentModelIndex>
#include <QStringList>
#include <QTimer>
#include <QWidget>

#include <optional>
#include <vector>

class ARXDateColumnDelegate;
class ARXSpaceListModel;
class ARXSpaceListOutlineView;
class QLabel;
class QMenu;
class QDropEvent;

// The outline form of a pane's folder: a name column whose folders unfold in place, the further
// columns the user picked, a header menu to pick them, and a status line at the bottom. A thin
// widget: the rows are ARXSpaceListModel's, the order and the listings are the entries'.
//
// The columns shown are the pane's own list once the user changed them through the header menu,
// and the saved default (settings_spaceview_columns) until then; "Save as Default" makes the
// pane's list the default of every list view that follows it, "Restore from Default" drops it.
class ARXSpaceListView : public ARXSpaceView {
    Q_OBJECT

public:
    // The columns the header menu offers, in its order.
    static const std::vector<ARXSpaceViewColumnId>& extraColumns();
    // The width a column starts with when none is stored.
    static double initialWidth(ARXSpaceViewColumnId column);
    // The least width of the name column.
    static constexpr double kNameMinimumWidth = 124;

    explicit ARXSpaceListView(QWidget* parent = nullptr);
    ~ARXSpaceListView() override;

    ARXSpaceViewType viewType() const override { return ARXSpaceViewType::list; }

    // Shows the children of `root`, listing it first (again with `force`).
    void bindRoot(const ARXFileEntryRef& root, bool force = false) override;

    // ----- columns

    void setVisibleColumns(std::optional<QStringList> columns) override;
    // Widths by the columns' stored strings, as the user left them.
    void setColumnWidths(const QMap<QString, double>& widths) override;
    QMap<QString, double> storedColumnWidths() const { return _columnWidths; }

    // The menu of the header: the extra columns to tick, "Restore from Default", "Save as
    // Default". Also the "Visible Columns" submenu of the View menu.
    QMenu* headerMenu() const { return _headerMenu; }
    void columnsSaveAsDefault();
    void columnsRestore();

    // ----- sorting, level of detail, unfolded folders

    // Sorts the root (nested folders follow it) and moves the rows; the selection stays.
    void applySort(ARXSpaceViewColumnId column, bool ascending, bool foldersOnTop) override;
    void applySort(ARXSpaceViewColumnId column, bool ascending);
    int lod() const override;
    void setLod(int lod) override;
    // The paths of the unfolded folders, parents before their children.
    std::vector<Path> expandedPaths() const override;
    // Unfolds every row that is one of the paths or holds one of them, at any depth.
    void setExpandedPaths(const std::vector<Path>& paths) override;
    // Unfolds one folder shown as a row; answers whether it is unfolded (the root always is).
    bool expandEntry(const ARXFileEntryRef& entry) override;

    // ----- selection and editing

    // The selected rows' entries, top to bottom.
    ARXFileEntryList selectedEntries() const;
    // Selects exactly these entries (those shown as rows) and scrolls the first into view.
    void selectEntries(const ARXFileEntryList& entries);
    bool beginEditingName(const ARXFileEntryRef& entry) override;
    void focusContent() override;
    bool hasContentFocus() const override;
    void setActiveLook(bool active) override;
    void reloadContent() override;
    // Selects the row after the trashed ones first, so that the selection stays in place.
    void trashEntries(const ARXFileEntryList& entries) override;

    // ----- the update protocol

    void entryRefreshed(const ARXFileEntryRef& entry) override;
    void entryInserted(const ARXFileEntryRef& entry) override;
    void entriesInserted(const ARXFileEntryList& entries) override;
    void entryRemoved(const ARXFileEntryRef& entry, size_t index) override;
    void entriesRemoved(const ARXFileEntryRemovals& removals) override;

    // ----- status line

    void setBottomStatusVisible(bool visible) override;
    bool isBottomStatusVisible() const;
    void setStatusText(const QString& text);
    QString bottomStatusText() const;

    ARXSpaceListOutlineView* outlineView() const { return _outlineView; }
    ARXSpaceListModel* model() const { return _model; }
    // Fires at the next midnight, when day names ("Today") move on.
    const QTimer& dayChangeTimer() const { return _dayChangeTimer; }

Q_SIGNALS:
    // A double click: the whole selection when the clicked row is part of it, else that row.
    void entriesActivated(const ARXFileEntryList& entries);
    // The selection changed (by the user or by `selectEntries`).
    void selectionChanged();

protected:
    ARXFileEntryList widgetSelection() const override { return selectedEntries(); }
    void syncSelection(bool notify) override;
    int shownItemCount() const override;
    // Until the user sizes the name column, it takes the room the other columns leave.
    void resizeEvent(QResizeEvent* event) override;

private:
    void fitNameColumn();
    // Rows left the widget, and their entries the selection: the pane and the status hear it.
    void selectionLost();

    void applyColumns();
    void toggleColumn(ARXSpaceViewColumnId column);
    void rebuildHeaderMenu();
    void showSortIndicator();
    void onSortIndicatorChanged(int section, Qt::SortOrder order);
    void onSectionResized(int section, int oldSize, int newSize);
    void onSectionMoved();
    void onDoubleClicked(const QModelIndex& index);
    void onRenameRequested(const ARXFileEntryRef& entry, const QString& name);
    void onFetchFailed(const ARXFileEntryRef& entry);
    void scheduleDayChange();
    void onDayChanged();
    QStringList effectiveColumns() const;
    void collectExpanded(const QModelIndex& parent, std::vector<Path>& paths) const;
    void expandPath(const QModelIndex& parent, const Path& path);
    void expandIndex(const QModelIndex& index);
    // Drops: where a drop at the event's position goes (a folder row, else the root), and
    // whether it may; `perform` carries it out.
    Qt::DropAction handleDrop(QDropEvent* event, bool perform);
    void dragStarted(const ARXFileEntryList& entries);
    void dragEnded();

    ARXSpaceListModel* _model = nullptr;
    ARXSpaceListOutlineView* _outlineView = nullptr;
    QLabel* _bottomLabel = nullptr;
    QMenu* _headerMenu = nullptr;
    ARXDateColumnDelegate* _dateDelegate = nullptr;
    QTimer _dayChangeTimer;
    // The entries of a drag from this view while it runs.
    ARXFileEntryList _draggingItems;
    // Rows unfolded at some time; a count of the rows shown looks only at these.
    std::vector<QPersistentModelIndex> _openRows;
    // The entry whose name is being edited.
    ARXFileEntryRef _editingEntry;
    // Set while the view itself lays out the header, so that its signals are not taken as the
    // user's doing.
    bool _applying = false;
    // Set while the view puts the selection into the widget.
    bool _syncing = false;
};
