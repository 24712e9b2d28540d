#pragma once

#include "model/ARXFileEntry.h"
#include "model/ARXFileEntryRemovals.h"
#include "model/ARXSpaceViewTypes.h"

#include <QAbstractItemModel>
#include <QIcon>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

class ARXDateText;

// The rows of the list view: an item model over one pane's tree of ARXFileEntry. The tree is the
// one source of truth and the model only reads it: the rows under an index are that entry's
// `children()`, the name column comes first and a settable list of further columns follows.
//
// The tree changes first and the model is told afterwards, through the same calls every content
// view receives (`entryRefreshed`, `entryInserted`, `entriesInserted`, `entryRemoved`,
// `entriesRemoved`). Qt wants the opposite order: a view must hear `rowsAboutToBeRemoved` while
// the rows are still there. So the model keeps its own copy of the rows of every folder it has
// shown (the entries in the order it last reported them) and answers every question from that
// copy; the calls then move the copy to the tree's new state with one precise begin/end pair per
// contiguous range. A removed entry is still in the copy when `beginRemoveRows` fires, an
// inserted one is not yet in it when `beginInsertRows` fires, and no call ever needs a reset.
// The copy also holds the entries strongly, so that an index never outlives its entry.
// `isConsistent()` checks that the copy equals the tree again after every call.
//
// A folder's rows are read when a view first asks for them (`fetchMore`), which lists the folder
// (`prepare`, not forced); a folder that cannot be listed shows no rows and `fetchFailed` tells
// the view, which offers to authorise it. Main thread only.
class ARXSpaceListModel : public QAbstractItemModel {
    Q_OBJECT

public:
    enum Role {
        // Date columns: the date shown, in seconds since 1970 (double); invalid for no date. A
        // delegate fits the text to its cell with `dateText().fitting`.
        DateRole = Qt::UserRole + 1,
        // True for an entry shown at half strength: hidden, or not (yet) on disk.
        DimmedRole,
        // Header sections: the column's ARXSpaceViewColumnId as an int.
        ColumnIdRole,
    };

    // The size text of a folder: a computed size when one is known, none for the "--".
    using FolderSizeProvider = std::function<std::optional<uint64_t>(const ARXFileEntry&)>;
    // The icon of an entry in the name column.
    using IconProvider = std::function<QIcon(const ARXFileEntry&)>;

    explicit ARXSpaceListModel(QObject* parent = nullptr);
    ~ARXSpaceListModel() override;

    // ----- what is shown

    // Shows the children of `root` (resetting the model). The caller has listed the root
    // already (`prepare`), as binding a pane's folder does; the model does not list it.
    void setRoot(ARXFileEntryRef root);
    const ARXFileEntryRef& root() const { return _root; }

    // The columns after the name column, in order. "Name" itself and repeated columns are left
    // out. Only the difference is applied: columns that stay keep their sections.
    void setColumns(const std::vector<ARXSpaceViewColumnId>& columns);
    const std::vector<ARXSpaceViewColumnId>& columns() const { return _columns; }
    // The column shown in a section (`name` for section 0), and the section of a column (-1 when
    // it is not shown).
    ARXSpaceViewColumnId columnId(int section) const;
    int section(ARXSpaceViewColumnId column) const;

    // The entry of a row; null for an invalid index.
    ARXFileEntryRef entryAt(const QModelIndex& index) const;
    // The index of an entry shown as a row; invalid for the root and for entries not shown.
    QModelIndex indexOf(const ARXFileEntry* entry, int column = 0) const;
    QModelIndex indexOf(const ARXFileEntryRef& entry, int column = 0) const {
        return indexOf(entry.get(), column);
    }

    // ----- hooks for what other parts compute

    // Where folders get a size (the size calculator and its cache); without one folders show
    // "--". `folderSizeChanged` re-shows the size cell when a result arrives.
    void setFolderSizeProvider(FolderSizeProvider provider);
    void folderSizeChanged(const ARXFileEntryRef& entry);
    // Where icons come from (thumbnails); the default is the icon theme, and for a placeholder
    // the icon of the item it copies.
    void setIconProvider(IconProvider provider);
    static QIcon defaultIcon(const ARXFileEntry& entry);
    // The date texts of the date columns; one per model, shared with the view's delegate.
    ARXDateText& dateText() const { return *_dateText; }
    void setDateText(std::unique_ptr<ARXDateText> dateText);

    // ----- the update protocol: the tree has already changed when these are called

    // The entry's attributes changed: its row shows them again.
    void entryRefreshed(const ARXFileEntryRef& entry);
    // The entry was added to its parent's children (at its sorted place).
    void entryInserted(const ARXFileEntryRef& entry);
    // The entries were added to their parent's children; one insertion per contiguous range.
    void entriesInserted(const ARXFileEntryList& entries);
    // The entry was taken out of its parent's children, where it stood at `index`.
    void entryRemoved(const ARXFileEntryRef& entry, size_t index);
    // The recorded entries were taken out of their folders; one removal per contiguous range.
    void entriesRemoved(const ARXFileEntryRemovals& removals);

    // The tree was re-sorted: rows move to the new order (a layout change that keeps persistent
    // indexes, and so the selection and the expanded folders, on their entries).
    void reorder();
    // Everything is read again from the tree: a model reset, for the real reloads (settings,
    // hidden items shown or not). Folders already read keep their rows, taken afresh from the
    // tree, so that the view can expand them again at once.
    void reload();
    // Every row shows its texts again (the day changed, so "Today" moved on); no row moves.
    void refreshAll();

    // The rows the model reports are exactly the tree's children, in the same order, for every
    // folder shown, and the model's bookkeeping agrees with itself. `inconsistency` describes
    // the first difference found (empty when there is none).
    bool isConsistent() const { return inconsistency().isEmpty(); }
    QString inconsistency() const;

    // ----- QAbstractItemModel

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    bool hasChildren(const QModelIndex& parent = {}) const override;
    bool canFetchMore(const QModelIndex& parent) const override;
    void fetchMore(const QModelIndex& parent) override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    // Renames are not done here: a new name goes out through `renameRequested` and the answer is
    // false; the view renames on disk and calls `entryRefreshed`.
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    // Drags carry the rows' paths as file URIs (see ARXFileClipboard).
    QStringList mimeTypes() const override;
    QMimeData* mimeData(const QModelIndexList& indexes) const override;
    Qt::DropActions supportedDragActions() const override;
    Qt::DropActions supportedDropActions() const override;

Q_SIGNALS:
    void renameRequested(const ARXFileEntryRef& entry, const QString& newName);
    // A folder could not be listed when its rows were asked for; it shows none.
    void fetchFailed(const ARXFileEntryRef& entry);

private:
    // What facts of a row cost to find out (a type lookup), kept once the row was shown.
    struct RowFacts {
        std::optional<QIcon> icon;
        std::optional<QString> kind;
    };
    // One row as last reported.
    struct Row {
        ARXFileEntryRef entry;
        mutable std::unique_ptr<RowFacts> facts; // a cache, made when the row is first shown
    };
    // A folder whose rows were read: its entry, the folder it is a row of, and the rows and
    // columns it last reported. Nodes exist only for folders a view has opened, so their number
    // is small even when a folder holds 100,000 entries.
    struct Node {
        ARXFileEntryRef entry;
        Node* parent = nullptr;
        std::vector<Row> rows;
        std::vector<ARXSpaceViewColumnId> columns;
        mutable size_t rowHint = 0; // where the entry last stood in the parent's rows
    };

    // Can the entry unfold in place?
    static bool isExpandable(const ARXFileEntry& entry);

    Node* nodeOf(const ARXFileEntry* entry) const;
    // The folder whose rows an index belongs to (its internal pointer).
    static Node* parentNodeOf(const QModelIndex& index);
    // The node of the folder an index shows, if it was fetched; the root's for an invalid index.
    Node* nodeAt(const QModelIndex& index) const;
    const Row* rowAt(const QModelIndex& index) const;
    // The row of the node's entry in its parent's rows.
    int rowOfNode(const Node& node) const;
    static int rowIn(const Node& node, const ARXFileEntry* entry, size_t hint = 0);
    QModelIndex indexOfNode(const Node& node) const;
    ARXSpaceViewColumnId columnIdIn(const Node& node, int section) const;

    Node& makeNode(const ARXFileEntryRef& entry, Node* parent);
    void dropNode(Node* node);
    void insertInto(Node& node, const ARXFileEntryList& entries);
    void removeRowsFrom(Node& node, std::vector<int> rows);
    // Brings the order of the node's rows to the order of its children (same members only).
    void followOrder(const std::vector<Node*>& nodes);
    void applyColumns(Node& node);
    QString text(const Row& row, ARXSpaceViewColumnId column) const;
    QString sizeText(const ARXFileEntry& entry) const;
    const QIcon& icon(const Row& row) const;
    const QString& kindText(const Row& row) const;

    ARXFileEntryRef _root;
    Node* _rootNode = nullptr;
    // Every folder whose rows were read, by its entry; the root's included.
    std::unordered_map<const ARXFileEntry*, std::unique_ptr<Node>> _nodes;
    std::vector<ARXSpaceViewColumnId> _columns;
    FolderSizeProvider _folderSize;
    IconProvider _icon;
    std::unique_ptr<ARXDateText> _dateText;
};
