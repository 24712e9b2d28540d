#pragma once

#include "model/ARXFileEntry.h"
#include "model/ARXSpaceViewTypes.h"

#include <QMap>
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

// The outline form of a pane's folder: a name column whose folders unfold in place, the further
// columns the user picked, a header menu to pick them, and a status line at the bottom. A thin
// widget: the rows are ARXSpaceListModel's, the order and the listings are the entries'.
//
// The columns shown are the pane's own list once the user changed them through the header menu,
// and the saved default (settings_spaceview_columns) until then; "Save as Default" makes the
// pane's list the default of every list view that follows it, "Restore from Default" drops it.
class ARXSpaceListView : public QWidget {
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

    // Shows the children of `root`, which the caller has listed (`prepare`). Null shows nothing.
    void bindRoot(const ARXFileEntryRef& root);
    const ARXFileEntryRef& root() const { return _root; }

    // ----- columns

    // The pane's own column list as stored strings, or none to follow the saved default.
    std::optional<QStringList> visibleColumns() const { return _visibleColumns; }
    void setVisibleColumns(std::optional<QStringList> columns);
    // Widths by the columns' stored strings, as the user left them.
    QMap<QString, double> columnWidths() const { return _columnWidths; }
    void setColumnWidths(const QMap<QString, double>& widths);

    // The menu of the header: the extra columns to tick, "Restore from Default", "Save as
    // Default". Also the "Visible Columns" submenu of the View menu.
    QMenu* headerMenu() const { return _headerMenu; }
    void columnsSaveAsDefault();
    void columnsRestore();

    // ----- sorting, level of detail, unfolded folders

    // Sorts the root (nested folders follow it) and moves the rows; the selection stays.
    void applySort(ARXSpaceViewColumnId column, bool ascending);
    int lod() const;
    void setLod(int lod);
    // The paths of the unfolded folders, parents before their children.
    std::vector<Path> expandedPaths() const;
    // Unfolds every row that is one of the paths or holds one of them, at any depth.
    void setExpandedPaths(const std::vector<Path>& paths);
    // Unfolds one folder shown as a row; answers whether it is unfolded (the root always is).
    bool expandEntry(const ARXFileEntryRef& entry);

    // ----- selection and editing

    // The selected entries, top to bottom.
    ARXFileEntryList selectedEntries() const;
    // Selects exactly these entries (those shown as rows) and scrolls the first into view.
    void selectEntries(const ARXFileEntryList& entries);
    bool beginEditingName(const ARXFileEntryRef& entry);

    // ----- status line

    void setBottomStatusVisible(bool visible);
    bool isBottomStatusVisible() const;
    void setStatusText(const QString& text);

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
    // Until the user sizes the name column, it takes the room the other columns leave.
    void resizeEvent(QResizeEvent* event) override;

private:
    void fitNameColumn();

    void applyColumns();
    void toggleColumn(ARXSpaceViewColumnId column);
    void rebuildHeaderMenu();
    void showSortIndicator();
    void onSortIndicatorChanged(int section, Qt::SortOrder order);
    void onSectionResized(int section, int oldSize, int newSize);
    void onSectionMoved();
    void onDoubleClicked(const QModelIndex& index);
    void scheduleDayChange();
    void onDayChanged();
    QStringList effectiveColumns() const;
    void collectExpanded(const QModelIndex& parent, std::vector<Path>& paths) const;
    void expandPath(const QModelIndex& parent, const Path& path);
    void expandIndex(const QModelIndex& index);

    ARXFileEntryRef _root;
    ARXSpaceListModel* _model = nullptr;
    ARXSpaceListOutlineView* _outlineView = nullptr;
    QLabel* _bottomLabel = nullptr;
    QMenu* _headerMenu = nullptr;
    ARXDateColumnDelegate* _dateDelegate = nullptr;
    std::optional<QStringList> _visibleColumns;
    QMap<QString, double> _columnWidths;
    QTimer _dayChangeTimer;
    // Set while the view itself lays out the header, so that its signals are not taken as the
    // user's doing.
    bool _applying = false;
};
