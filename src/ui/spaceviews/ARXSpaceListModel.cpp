// The structure of the list model: its nodes and rows, fetching, columns and the update protocol.
// What a row shows is in ARXSpaceListModelData.cpp.

#include "ui/spaceviews/ARXSpaceListModel.h"

#include "platform/ARXConsole.h"
#include "ui/spaceviews/ARXDateText.h"

#include <algorithm>
#include <unordered_set>

namespace {

// The columns a model shows: "Name" is always the first section and never in the list, and a
// column is shown once.
std::vector<ARXSpaceViewColumnId> normalizedColumns(const std::vector<ARXSpaceViewColumnId>& in) {
    std::vector<ARXSpaceViewColumnId> out;
    for (const ARXSpaceViewColumnId column : in) {
        if (column != ARXSpaceViewColumnId::name &&
            std::find(out.begin(), out.end(), column) == out.end()) {
            out.push_back(column);
        }
    }
    return out;
}

// Consecutive runs of sorted, distinct row numbers, as [first, last] pairs.
std::vector<std::pair<int, int>> runsOf(const std::vector<int>& sortedRows) {
    std::vector<std::pair<int, int>> runs;
    for (const int row : sortedRows) {
        if (!runs.empty() && runs.back().second + 1 == row) {
            runs.back().second = row;
        } else {
            runs.emplace_back(row, row);
        }
    }
    return runs;
}

QString displayPath(const ARXFileEntry& entry) {
    return ARXPath::display(entry.path());
}

} // namespace

ARXSpaceListModel::ARXSpaceListModel(QObject* parent)
    : QAbstractItemModel(parent), _dateText(std::make_unique<ARXDateText>()) {}

ARXSpaceListModel::~ARXSpaceListModel() = default;

// ----- nodes and rows

bool ARXSpaceListModel::isExpandable(const ARXFileEntry& entry) {
    // A link to a folder does not unfold in place: it opens as its folder instead, so that a link
    // to one of its own ancestors cannot nest the tree without end.
    return entry.isFolderItem() && !entry.link();
}

ARXSpaceListModel::Node* ARXSpaceListModel::nodeOf(const ARXFileEntry* entry) const {
    const auto found = _nodes.find(entry);
    return found == _nodes.end() ? nullptr : found->second.get();
}

ARXSpaceListModel::Node* ARXSpaceListModel::parentNodeOf(const QModelIndex& index) {
    return static_cast<Node*>(index.internalPointer());
}

ARXSpaceListModel::Node* ARXSpaceListModel::nodeAt(const QModelIndex& index) const {
    if (!index.isValid()) {
        return _rootNode;
    }
    const Row* row = rowAt(index);
    return row ? nodeOf(row->entry.get()) : nullptr;
}

const ARXSpaceListModel::Row* ARXSpaceListModel::rowAt(const QModelIndex& index) const {
    if (!index.isValid() || index.model() != this) {
        return nullptr;
    }
    const Node* node = parentNodeOf(index);
    if (!node || index.row() < 0 || size_t(index.row()) >= node->rows.size()) {
        return nullptr;
    }
    return &node->rows[size_t(index.row())];
}

int ARXSpaceListModel::rowIn(const Node& node, const ARXFileEntry* entry, size_t hint) {
    if (hint < node.rows.size() && node.rows[hint].entry.get() == entry) {
        return int(hint);
    }
    for (size_t i = 0; i < node.rows.size(); ++i) {
        if (node.rows[i].entry.get() == entry) {
            return int(i);
        }
    }
    return -1;
}

int ARXSpaceListModel::rowOfNode(const Node& node) const {
    if (!node.parent) {
        return -1;
    }
    // Rows move on inserts and removals above them; the hint makes the usual case one compare.
    const int row = rowIn(*node.parent, node.entry.get(), node.rowHint);
    if (row >= 0) {
        node.rowHint = size_t(row);
    }
    return row;
}

QModelIndex ARXSpaceListModel::indexOfNode(const Node& node) const {
    if (&node == _rootNode || !node.parent) {
        return {};
    }
    const int row = rowOfNode(node);
    return row < 0 ? QModelIndex() : createIndex(row, 0, node.parent);
}

ARXSpaceListModel::Node& ARXSpaceListModel::makeNode(const ARXFileEntryRef& entry, Node* parent) {
    auto node = std::make_unique<Node>();
    node->entry = entry;
    node->parent = parent;
    node->columns = _columns;
    Node& made = *node;
    _nodes[entry.get()] = std::move(node);
    return made;
}

void ARXSpaceListModel::dropNode(Node* node) {
    if (!node) {
        return;
    }
    for (const Row& row : node->rows) {
        dropNode(nodeOf(row.entry.get()));
    }
    _nodes.erase(node->entry.get());
}

ARXFileEntryRef ARXSpaceListModel::entryAt(const QModelIndex& index) const {
    const Row* row = rowAt(index);
    return row ? row->entry : nullptr;
}

QModelIndex ARXSpaceListModel::indexOf(const ARXFileEntry* entry, int column) const {
    if (!entry || entry == _root.get()) {
        return {};
    }
    const ARXFileEntryRef parent = entry->parent();
    Node* node = nodeOf(parent.get());
    if (!node || column < 0 || column > int(node->columns.size())) {
        return {};
    }
    const int row = rowIn(*node, entry);
    return row < 0 ? QModelIndex() : createIndex(row, column, node);
}

// ----- root and columns

void ARXSpaceListModel::setRoot(ARXFileEntryRef root) {
    beginResetModel();
    _nodes.clear();
    _rootNode = nullptr;
    _root = std::move(root);
    if (_root) {
        _rootNode = &makeNode(_root, nullptr);
        _rootNode->rows.reserve(_root->children().size());
        for (const ARXFileEntryRef& child : _root->children()) {
            _rootNode->rows.push_back(Row{child, nullptr});
        }
    }
    endResetModel();
}

void ARXSpaceListModel::reload() {
    if (!_rootNode) {
        setRoot(_root);
        return;
    }
    beginResetModel();
    // Folders already read stay read: their rows are taken from the tree again, so that a view
    // restoring its expanded folders after the reset finds their rows without a new listing.
    // Folders that left the tree go with their nodes.
    auto previous = std::move(_nodes);
    _nodes.clear();
    const std::function<void(const ARXFileEntryRef&, Node*)> keep =
        [&](const ARXFileEntryRef& entry, Node* parent) {
            const auto found = previous.find(entry.get());
            if (found == previous.end()) {
                return;
            }
            Node* node = found->second.get();
            _nodes.emplace(entry.get(), std::move(found->second));
            node->parent = parent;
            node->columns = _columns;
            node->rows.clear();
            node->rows.reserve(entry->children().size());
            for (const ARXFileEntryRef& child : entry->children()) {
                node->rows.push_back(Row{child, nullptr});
            }
            for (const ARXFileEntryRef& child : entry->children()) {
                keep(child, node);
            }
        };
    keep(_root, nullptr);
    endResetModel();
}

ARXSpaceViewColumnId ARXSpaceListModel::columnIdIn(const Node& node, int section) const {
    if (section <= 0 || size_t(section) > node.columns.size()) {
        return ARXSpaceViewColumnId::name;
    }
    return node.columns[size_t(section - 1)];
}

ARXSpaceViewColumnId ARXSpaceListModel::columnId(int section) const {
    if (section <= 0 || size_t(section) > _columns.size()) {
        return ARXSpaceViewColumnId::name;
    }
    return _columns[size_t(section - 1)];
}

int ARXSpaceListModel::section(ARXSpaceViewColumnId column) const {
    if (column == ARXSpaceViewColumnId::name) {
        return 0;
    }
    const auto found = std::find(_columns.begin(), _columns.end(), column);
    return found == _columns.end() ? -1 : int(found - _columns.begin()) + 1;
}

void ARXSpaceListModel::setColumns(const std::vector<ARXSpaceViewColumnId>& columns) {
    std::vector<ARXSpaceViewColumnId> wanted = normalizedColumns(columns);
    if (wanted == _columns) {
        return;
    }
    if (!_rootNode) {
        beginResetModel(); // nothing shown, nothing to keep
        _columns = std::move(wanted);
        endResetModel();
        return;
    }
    _columns = std::move(wanted);
    // Columns belong to each parent in Qt's model, so each shown folder is told of the change on
    // its own; until then it keeps reporting its old columns, which is what makes every begin/end
    // pair true to what the model reports at that moment.
    std::vector<Node*> nodes;
    nodes.reserve(_nodes.size());
    for (const auto& [entry, node] : _nodes) {
        nodes.push_back(node.get());
    }
    for (Node* node : nodes) {
        applyColumns(*node);
    }
}

void ARXSpaceListModel::applyColumns(Node& node) {
    // The root's columns are the header's, rows or not; a folder without rows has nothing
    // under it to tell.
    if (node.rows.empty() && &node != _rootNode) {
        node.columns = _columns;
        return;
    }
    const QModelIndex parent = indexOfNode(node);
    std::vector<ARXSpaceViewColumnId>& shown = node.columns;

    // Keep the columns that stay in the same order; remove the others, last run first.
    std::vector<bool> keep(shown.size(), false);
    long lastKept = -1;
    for (size_t i = 0; i < shown.size(); ++i) {
        const auto found = std::find(_columns.begin(), _columns.end(), shown[i]);
        const long position = found == _columns.end() ? -1 : long(found - _columns.begin());
        if (position > lastKept) {
            keep[i] = true;
            lastKept = position;
        }
    }
    for (long i = long(shown.size()) - 1; i >= 0;) {
        if (keep[size_t(i)]) {
            --i;
            continue;
        }
        const long last = i;
        while (i >= 0 && !keep[size_t(i)]) {
            --i;
        }
        const long first = i + 1;
        beginRemoveColumns(parent, int(first) + 1, int(last) + 1);
        shown.erase(shown.begin() + first, shown.begin() + last + 1);
        endRemoveColumns();
    }

    // What is left is in the wanted order: insert the missing runs where they belong.
    for (size_t i = 0; i < _columns.size();) {
        if (i < shown.size() && shown[i] == _columns[i]) {
            ++i;
            continue;
        }
        size_t end = i;
        while (end < _columns.size() && (i >= shown.size() || _columns[end] != shown[i])) {
            ++end;
        }
        beginInsertColumns(parent, int(i) + 1, int(end));
        shown.insert(shown.begin() + long(i), _columns.begin() + long(i),
                     _columns.begin() + long(end));
        endInsertColumns();
        i = end;
    }
}

// ----- QAbstractItemModel structure

QModelIndex ARXSpaceListModel::index(int row, int column, const QModelIndex& parent) const {
    Node* node = nodeAt(parent);
    if (!node || (parent.isValid() && parent.column() != 0) || row < 0 || column < 0 ||
        size_t(row) >= node->rows.size() || size_t(column) > node->columns.size()) {
        return {};
    }
    return createIndex(row, column, node);
}

QModelIndex ARXSpaceListModel::parent(const QModelIndex& child) const {
    const Node* node = child.isValid() ? parentNodeOf(child) : nullptr;
    return node ? indexOfNode(*node) : QModelIndex();
}

int ARXSpaceListModel::rowCount(const QModelIndex& parent) const {
    if (parent.column() > 0) {
        return 0;
    }
    const Node* node = nodeAt(parent);
    return node ? int(node->rows.size()) : 0;
}

int ARXSpaceListModel::columnCount(const QModelIndex& parent) const {
    const Node* node = nodeAt(parent);
    return int((node ? node->columns : _columns).size()) + 1;
}

bool ARXSpaceListModel::hasChildren(const QModelIndex& parent) const {
    if (!parent.isValid()) {
        return _rootNode && !_rootNode->rows.empty();
    }
    if (parent.column() != 0) {
        return false;
    }
    const Row* row = rowAt(parent);
    if (!row) {
        return false;
    }
    // Before its rows are read a folder offers to unfold; afterwards it has what it has.
    const Node* node = nodeOf(row->entry.get());
    return node ? !node->rows.empty() : isExpandable(*row->entry);
}

bool ARXSpaceListModel::canFetchMore(const QModelIndex& parent) const {
    const Row* row = parent.column() == 0 ? rowAt(parent) : nullptr;
    return row && !nodeOf(row->entry.get()) && isExpandable(*row->entry);
}

void ARXSpaceListModel::fetchMore(const QModelIndex& parent) {
    if (!canFetchMore(parent)) {
        return;
    }
    const ARXFileEntryRef entry = rowAt(parent)->entry;
    // The node marks the folder as read whatever the listing gives, so that a folder that cannot
    // be listed is not listed again on every paint; rows come later through the protocol.
    Node& node = makeNode(entry, parentNodeOf(parent));
    node.rowHint = size_t(parent.row());
    if (!entry->prepare(false)) {
        Q_EMIT fetchFailed(entry);
        return;
    }
    const ARXFileEntryList& children = entry->children();
    if (children.empty()) {
        return;
    }
    beginInsertRows(parent, 0, int(children.size()) - 1);
    node.rows.reserve(children.size());
    for (const ARXFileEntryRef& child : children) {
        node.rows.push_back(Row{child, nullptr});
    }
    endInsertRows();
}

// ----- the update protocol

void ARXSpaceListModel::entryRefreshed(const ARXFileEntryRef& entry) {
    if (!entry) {
        return;
    }
    ARXConsole::line(QStringLiteral("listview.refresh: ") + displayPath(*entry));
    const QModelIndex first = indexOf(entry.get());
    if (!first.isValid()) {
        return;
    }
    Node* node = parentNodeOf(first);
    node->rows[size_t(first.row())].facts.reset();
    Q_EMIT dataChanged(first, first.siblingAtColumn(int(node->columns.size())));
}

void ARXSpaceListModel::folderSizeChanged(const ARXFileEntryRef& entry) {
    const int column = section(ARXSpaceViewColumnId::size);
    const QModelIndex cell = column < 0 ? QModelIndex() : indexOf(entry.get(), column);
    if (cell.isValid()) {
        Q_EMIT dataChanged(cell, cell, {Qt::DisplayRole});
    }
}

void ARXSpaceListModel::refreshAll() {
    for (const auto& [entry, node] : _nodes) {
        if (node->rows.empty()) {
            continue;
        }
        for (Row& row : node->rows) {
            row.facts.reset();
        }
        const QModelIndex parent = indexOfNode(*node);
        Q_EMIT dataChanged(index(0, 0, parent),
                           index(int(node->rows.size()) - 1, int(node->columns.size()), parent));
    }
}

void ARXSpaceListModel::entryInserted(const ARXFileEntryRef& entry) {
    const ARXFileEntryRef parent = entry ? entry->parent() : nullptr;
    if (!parent) {
        return;
    }
    const ARXFileEntryList& children = parent->children();
    const auto found = std::find(children.begin(), children.end(), entry);
    if (found == children.end()) {
        return;
    }
    ARXConsole::line(QStringLiteral("listview.inserted: [%1]%2")
                         .arg(found - children.begin())
                         .arg(displayPath(*entry)));
    if (Node* node = nodeOf(parent.get())) {
        insertInto(*node, {entry});
    }
}

void ARXSpaceListModel::entriesInserted(const ARXFileEntryList& entries) {
    // A batch belongs to one folder; should it not, each folder still gets its own insertions.
    std::vector<std::pair<Node*, ARXFileEntryList>> byFolder;
    for (const ARXFileEntryRef& entry : entries) {
        const ARXFileEntryRef parent = entry ? entry->parent() : nullptr;
        Node* node = nodeOf(parent.get());
        if (!node) {
            continue; // a folder no view has opened reads its rows when it is opened
        }
        auto group = std::find_if(byFolder.begin(), byFolder.end(),
                                  [&](const auto& g) { return g.first == node; });
        if (group == byFolder.end()) {
            byFolder.emplace_back(node, ARXFileEntryList{});
            group = std::prev(byFolder.end());
        }
        group->second.push_back(entry);
    }
    for (auto& [node, group] : byFolder) {
        insertInto(*node, group);
    }
}

void ARXSpaceListModel::insertInto(Node& node, const ARXFileEntryList& entries) {
    std::unordered_set<const ARXFileEntry*> batch;
    for (const ARXFileEntryRef& entry : entries) {
        batch.insert(entry.get());
    }
    for (const Row& row : node.rows) {
        batch.erase(row.entry.get()); // already a row: told twice
    }
    if (batch.empty()) {
        return;
    }
    // The new entries' final places, in ascending order. Inserting them in that order, each at
    // its final place, yields the tree's order as long as the other rows kept theirs.
    const ARXFileEntryList& children = node.entry->children();
    std::vector<int> places;
    for (size_t i = 0; i < children.size(); ++i) {
        if (batch.contains(children[i].get())) {
            places.push_back(int(i));
        }
    }
    const QModelIndex parent = indexOfNode(node);
    for (const auto& [first, last] : runsOf(places)) {
        const int at = std::min(first, int(node.rows.size()));
        beginInsertRows(parent, at, at + (last - first));
        std::vector<Row> added;
        added.reserve(size_t(last - first + 1));
        for (int i = first; i <= last; ++i) {
            added.push_back(Row{children[size_t(i)], nullptr});
        }
        node.rows.insert(node.rows.begin() + at, std::make_move_iterator(added.begin()),
                         std::make_move_iterator(added.end()));
        endInsertRows();
    }
    // The folder re-sorted as the entries came in, and a row whose sort key had changed since
    // (a file written to while sorted by date) may have moved with them.
    followOrder({&node});
}

void ARXSpaceListModel::entryRemoved(const ARXFileEntryRef& entry, size_t index) {
    if (!entry) {
        return;
    }
    ARXConsole::line(
        QStringLiteral("listview.removed: [%1]%2").arg(index).arg(displayPath(*entry)));
    const ARXFileEntryRef parent = entry->parent();
    Node* node = nodeOf(parent.get());
    if (!node) {
        return;
    }
    const int row = rowIn(*node, entry.get(), index);
    if (row >= 0) {
        removeRowsFrom(*node, {row});
    }
}

void ARXSpaceListModel::entriesRemoved(const ARXFileEntryRemovals& removals) {
    for (const ARXFileEntryRemoval& removal : removals.entries()) {
        Node* node = nodeOf(removal.parent.get());
        if (!node) {
            continue;
        }
        // The recorded positions are those of the rows too, unless the rows drifted; the entry
        // kept beside each position settles it.
        std::vector<int> rows;
        for (const auto& [position, entry] : removal.indexes) {
            const int row = rowIn(*node, entry.get(), position);
            if (row >= 0) {
                rows.push_back(row);
            }
        }
        removeRowsFrom(*node, std::move(rows));
    }
}

void ARXSpaceListModel::removeRowsFrom(Node& node, std::vector<int> rows) {
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    const std::vector<std::pair<int, int>> runs = runsOf(rows);
    const QModelIndex parent = indexOfNode(node);
    // Last run first, so that the row numbers of the runs still to go stay true.
    for (auto run = runs.rbegin(); run != runs.rend(); ++run) {
        const auto [first, last] = *run;
        beginRemoveRows(parent, first, last);
        // The removed rows' own folders stay alive until the views let go of their indexes.
        std::vector<Row> removed(std::make_move_iterator(node.rows.begin() + first),
                                 std::make_move_iterator(node.rows.begin() + last + 1));
        node.rows.erase(node.rows.begin() + first, node.rows.begin() + last + 1);
        endRemoveRows();
        for (const Row& row : removed) {
            dropNode(nodeOf(row.entry.get()));
        }
    }
}

// ----- order

void ARXSpaceListModel::reorder() {
    std::vector<Node*> nodes;
    nodes.reserve(_nodes.size());
    for (const auto& [entry, node] : _nodes) {
        nodes.push_back(node.get());
    }
    followOrder(nodes);
}

void ARXSpaceListModel::followOrder(const std::vector<Node*>& nodes) {
    // For each node whose order differs: where each child of the tree stands in the rows now.
    struct Move {
        Node* node;
        std::vector<size_t> from; // from[i]: the present row of the tree's i-th child
    };
    std::vector<Move> moves;
    for (Node* node : nodes) {
        const ARXFileEntryList& children = node->entry->children();
        if (children.size() != node->rows.size()) {
            // Not a new order but new members, which only the protocol's calls may bring.
            ARXConsole::line(QStringLiteral("Atrium: list rows out of step with %1")
                                 .arg(displayPath(*node->entry)));
            continue;
        }
        bool same = true;
        for (size_t i = 0; i < children.size() && same; ++i) {
            same = children[i] == node->rows[i].entry;
        }
        if (same) {
            continue;
        }
        std::unordered_map<const ARXFileEntry*, size_t> rowOf;
        rowOf.reserve(node->rows.size());
        for (size_t i = 0; i < node->rows.size(); ++i) {
            rowOf.emplace(node->rows[i].entry.get(), i);
        }
        Move move{node, {}};
        move.from.reserve(children.size());
        for (const ARXFileEntryRef& child : children) {
            const auto found = rowOf.find(child.get());
            if (found == rowOf.end()) {
                break;
            }
            move.from.push_back(found->second);
        }
        if (move.from.size() != children.size()) {
            ARXConsole::line(QStringLiteral("Atrium: list rows out of step with %1")
                                 .arg(displayPath(*node->entry)));
            continue;
        }
        moves.push_back(std::move(move));
    }
    if (moves.empty()) {
        return;
    }

    Q_EMIT layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    // Every persistent index (selection, current row, expanded folders) follows its entry.
    const QModelIndexList before = persistentIndexList();
    std::vector<const ARXFileEntry*> entriesBefore;
    entriesBefore.reserve(size_t(before.size()));
    for (const QModelIndex& index : before) {
        const Row* row = rowAt(index);
        entriesBefore.push_back(row ? row->entry.get() : nullptr);
    }
    std::unordered_map<const Node*, std::vector<size_t>> newRowOf; // old row -> new row
    for (Move& move : moves) {
        std::vector<Row> rows;
        rows.reserve(move.from.size());
        std::vector<size_t>& map = newRowOf[move.node];
        map.resize(move.from.size());
        for (size_t i = 0; i < move.from.size(); ++i) {
            rows.push_back(std::move(move.node->rows[move.from[i]]));
            map[move.from[i]] = i;
        }
        move.node->rows = std::move(rows);
    }
    QModelIndexList after;
    after.reserve(before.size());
    for (const QModelIndex& index : before) {
        const auto found = newRowOf.find(parentNodeOf(index));
        if (found == newRowOf.end() || size_t(index.row()) >= found->second.size()) {
            after.push_back(index);
            continue;
        }
        after.push_back(createIndex(int(found->second[size_t(index.row())]), index.column(),
                                    index.internalPointer()));
    }
    changePersistentIndexList(before, after);
    Q_EMIT layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

// ----- checks

QString ARXSpaceListModel::inconsistency() const {
    if (!_root) {
        return _nodes.empty() && !_rootNode ? QString() : QStringLiteral("folders without a root");
    }
    if (!_rootNode || _rootNode->entry != _root || nodeOf(_root.get()) != _rootNode) {
        return QStringLiteral("the root has no node of its own");
    }
    for (const auto& [key, node] : _nodes) {
        const QString where = displayPath(*node->entry);
        if (node->entry.get() != key) {
            return QStringLiteral("%1: filed under another entry").arg(where);
        }
        if (node.get() != _rootNode) {
            if (!node->parent || nodeOf(node->parent->entry.get()) != node->parent) {
                return QStringLiteral("%1: its parent folder is not shown").arg(where);
            }
            if (rowIn(*node->parent, key) < 0) {
                return QStringLiteral("%1: not a row of its parent folder").arg(where);
            }
        }
        if (node->columns != _columns) {
            return QStringLiteral("%1: old columns").arg(where);
        }
        const ARXFileEntryList& children = node->entry->children();
        if (children.size() != node->rows.size()) {
            return QStringLiteral("%1: %2 rows for %3 children")
                .arg(where)
                .arg(node->rows.size())
                .arg(children.size());
        }
        for (size_t i = 0; i < children.size(); ++i) {
            if (children[i] != node->rows[i].entry) {
                return QStringLiteral("%1: row %2 is %3, the child there is %4")
                    .arg(where)
                    .arg(i)
                    .arg(displayPath(*node->rows[i].entry), displayPath(*children[i]));
            }
            if (children[i]->parent() != node->entry) {
                return QStringLiteral("%1: row %2 has another parent").arg(where).arg(i);
            }
        }
    }
    return {};
}
