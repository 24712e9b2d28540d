// What a row of the list model shows: texts per column, icon, dimming, tool tips, header titles,
// flags, and the hooks through which sizes, icons and date texts come in.

#include "model/ARXFileFormat.h"
#include "ui/ARXFileClipboard.h"
#include "ui/ARXFileIcon.h"
#include "ui/spaceviews/ARXDateText.h"
#include "ui/spaceviews/ARXSpaceListModel.h"

#include <QColor>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QMimeData>
#include <QPalette>

namespace {

// The opacity of the texts of hidden items and of items not on disk (yet).
constexpr double kDimmedAlpha = 0.5;

bool isDateColumn(ARXSpaceViewColumnId column) {
    switch (column) {
    case ARXSpaceViewColumnId::modified:
    case ARXSpaceViewColumnId::lastOpened:
    case ARXSpaceViewColumnId::added:
    case ARXSpaceViewColumnId::created:
        return true;
    default:
        return false;
    }
}

// The date a date column shows, with the same fallbacks as the order of those columns.
std::optional<double> dateOf(const ARXFileEntry& entry, ARXSpaceViewColumnId column) {
    const std::optional<double> created = entry.creationDate;
    switch (column) {
    case ARXSpaceViewColumnId::modified:
        return entry.modifiedDate() ? entry.modifiedDate() : created;
    case ARXSpaceViewColumnId::lastOpened:
        if (entry.accessDate()) {
            return entry.accessDate();
        }
        return entry.modifiedDate() ? entry.modifiedDate() : created;
    case ARXSpaceViewColumnId::added:
        return entry.addedDate() ? entry.addedDate() : created;
    case ARXSpaceViewColumnId::created:
        return created;
    default:
        return std::nullopt;
    }
}

bool isDimmed(const ARXFileEntry& entry) {
    return entry.isHidden || !entry.isExists;
}

// A placeholder of a copy, move or duplicate in progress: shown with the look of its source.
bool isPlaceholder(const ARXFileEntry& entry) {
    if (entry.isExists || !entry.operation) {
        return false;
    }
    const ARXFileOperationType type = entry.operation->type;
    return type == ARXFileOperationType::duplicate || type == ARXFileOperationType::copy ||
           type == ARXFileOperationType::move;
}

} // namespace

// ----- hooks

void ARXSpaceListModel::setFolderSizeProvider(FolderSizeProvider provider) {
    _folderSize = std::move(provider);
}

void ARXSpaceListModel::setIconProvider(IconProvider provider) {
    _icon = std::move(provider);
    refreshAll();
}

void ARXSpaceListModel::setDateText(std::unique_ptr<ARXDateText> dateText) {
    if (dateText) {
        _dateText = std::move(dateText);
        refreshAll();
    }
}

QIcon ARXSpaceListModel::defaultIcon(const ARXFileEntry& entry) {
    if (isPlaceholder(entry)) {
        return ARXFileIcon::forPath(entry.operation->from);
    }
    return ARXFileIcon::forPath(entry.path());
}

// ----- texts

const QIcon& ARXSpaceListModel::icon(const Row& row) const {
    auto& facts = row.facts;
    if (!facts) {
        facts = std::make_unique<RowFacts>();
    }
    if (!facts->icon) {
        facts->icon = _icon ? _icon(*row.entry) : defaultIcon(*row.entry);
    }
    return *facts->icon;
}

const QString& ARXSpaceListModel::kindText(const Row& row) const {
    auto& facts = row.facts;
    if (!facts) {
        facts = std::make_unique<RowFacts>();
    }
    if (!facts->kind) {
        // A type lookup, which may read the file's first bytes: once per row, not per paint.
        facts->kind = row.entry->kind();
    }
    return *facts->kind;
}

QString ARXSpaceListModel::sizeText(const ARXFileEntry& entry) const {
    // A folder's own size says nothing about its contents; it shows a computed total or "--".
    // A link shows its own size, even when it leads to a folder.
    if (entry.isFolder()) {
        const std::optional<uint64_t> total = _folderSize ? _folderSize(entry) : std::nullopt;
        return total ? ARXFileFormat::formatSize(*total) : QStringLiteral("--");
    }
    return ARXFileFormat::formatSize(entry.size);
}

QString ARXSpaceListModel::text(const Row& row, ARXSpaceViewColumnId column) const {
    ARXFileEntry& entry = *row.entry;
    switch (column) {
    case ARXSpaceViewColumnId::name:
        return entry.displayName();
    case ARXSpaceViewColumnId::size:
        return sizeText(entry);
    case ARXSpaceViewColumnId::kind:
        return kindText(row);
    case ARXSpaceViewColumnId::tags:
        return entry.tags ? entry.tags->join(QStringLiteral(", ")) : QString();
    case ARXSpaceViewColumnId::dimensions:
        return entry.infoDimensions().value_or(QString());
    case ARXSpaceViewColumnId::duration:
        return entry.infoDuration().value_or(QString());
    case ARXSpaceViewColumnId::modified:
    case ARXSpaceViewColumnId::lastOpened:
    case ARXSpaceViewColumnId::added:
    case ARXSpaceViewColumnId::created:
        break;
    }
    // Without a cell width the longest style stands; the delegate fits it to the cell.
    const std::optional<double> date = dateOf(entry, column);
    return date ? _dateText->format(*date, ARXDateText::levelStyles().front())
                : ARXDateText::noDate();
}

// ----- QAbstractItemModel data

QVariant ARXSpaceListModel::data(const QModelIndex& index, int role) const {
    const Row* row = rowAt(index);
    if (!row) {
        return {};
    }
    const ARXFileEntry& entry = *row->entry;
    const ARXSpaceViewColumnId column = columnIdIn(*parentNodeOf(index), index.column());
    switch (role) {
    case Qt::DisplayRole:
        return text(*row, column);
    case Qt::EditRole:
        // The real name is edited, never the name the desktop shows in its place.
        return column == ARXSpaceViewColumnId::name ? ARXPath::display(entry.name())
                                                    : text(*row, column);
    case Qt::ToolTipRole:
        if (column == ARXSpaceViewColumnId::name || column == ARXSpaceViewColumnId::tags) {
            return text(*row, column);
        }
        if (isDateColumn(column)) {
            return text(*row, column); // the full text, whatever style the cell fits
        }
        return {};
    case Qt::DecorationRole:
        if (column == ARXSpaceViewColumnId::name) {
            return icon(*row);
        }
        return {};
    case Qt::ForegroundRole:
        if (isDimmed(entry)) {
            QColor color = QGuiApplication::palette().color(QPalette::Text);
            color.setAlphaF(float(kDimmedAlpha));
            return color;
        }
        return {};
    case DimmedRole:
        return isDimmed(entry);
    case DateRole:
        if (const std::optional<double> date = dateOf(entry, column)) {
            return *date;
        }
        return {};
    default:
        return {};
    }
}

QVariant ARXSpaceListModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0 || section > int(_columns.size())) {
        return {};
    }
    const ARXSpaceViewColumnId column = columnId(section);
    if (role == Qt::DisplayRole) {
        // The stored string is also the English title.
        const QByteArray key = ARXSpaceViewColumn::storedString(column).toUtf8();
        return QCoreApplication::translate("Atrium", key.constData());
    }
    if (role == ColumnIdRole) {
        return int(column);
    }
    return {};
}

Qt::ItemFlags ARXSpaceListModel::flags(const QModelIndex& index) const {
    const Row* row = rowAt(index);
    if (!row) {
        return Qt::NoItemFlags;
    }
    const ARXFileEntry& entry = *row->entry;
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    // An item of a running operation is neither renamed nor dragged until it is done.
    const bool settled = entry.isExists && !entry.operation;
    if (settled) {
        flags |= Qt::ItemIsDragEnabled;
        if (index.column() == 0) {
            flags |= Qt::ItemIsEditable;
        }
    }
    if (entry.isFolderItem()) {
        flags |= Qt::ItemIsDropEnabled;
    }
    if (index.column() != 0 || !isExpandable(entry)) {
        flags |= Qt::ItemNeverHasChildren;
    }
    return flags;
}

bool ARXSpaceListModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    const Row* row = rowAt(index);
    if (!row || role != Qt::EditRole || index.column() != 0) {
        return false;
    }
    Q_EMIT renameRequested(row->entry, value.toString());
    return false;
}

QStringList ARXSpaceListModel::mimeTypes() const {
    return {QStringLiteral("text/uri-list")};
}

QMimeData* ARXSpaceListModel::mimeData(const QModelIndexList& indexes) const {
    std::vector<Path> paths;
    for (const QModelIndex& index : indexes) {
        const Row* row = rowAt(index);
        if (row && index.column() == 0 && row->entry->isExists && !row->entry->operation) {
            paths.push_back(row->entry->path());
        }
    }
    return paths.empty() ? nullptr : ARXFileClipboard::makeMimeData(paths, false);
}

Qt::DropActions ARXSpaceListModel::supportedDragActions() const {
    return Qt::CopyAction | Qt::MoveAction | Qt::LinkAction;
}

Qt::DropActions ARXSpaceListModel::supportedDropActions() const {
    return Qt::CopyAction | Qt::MoveAction;
}
