#include "ui/spaceviews/ARXSpaceListView.h"

#include "app/ARXConf.h"
#include "app/ARXNotificationNames.h"
#include "platform/ARXNotificationCenter.h"
#include "ui/spaceviews/ARXDateColumnDelegate.h"
#include "ui/spaceviews/ARXDateText.h"
#include "ui/spaceviews/ARXSpaceListModel.h"
#include "ui/spaceviews/ARXSpaceListOutlineView.h"

#include <QApplication>
#include <QCoreApplication>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLabel>
#include <QMenu>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

using Column = ARXSpaceViewColumnId;

constexpr int kStatusHeight = 24;
// What the name column leaves free on the right when it fills the view.
constexpr int kNameSlack = 12;

QString columnTitle(Column column) {
    const QByteArray key = ARXSpaceViewColumn::storedString(column).toUtf8();
    return QCoreApplication::translate("Atrium", key.constData());
}

bool isDateColumn(Column column) {
    return column == Column::modified || column == Column::added || column == Column::created;
}

} // namespace

const std::vector<ARXSpaceViewColumnId>& ARXSpaceListView::extraColumns() {
    static const std::vector<Column> columns{Column::modified,   Column::size,    Column::kind,
                                             Column::added,      Column::created, Column::tags,
                                             Column::dimensions, Column::duration};
    return columns;
}

double ARXSpaceListView::initialWidth(ARXSpaceViewColumnId column) {
    switch (column) {
    case Column::size:
    case Column::dimensions:
    case Column::duration:
        return 80;
    case Column::tags:
        return 160;
    case Column::name:
        return kNameMinimumWidth;
    case Column::modified:
    case Column::kind:
    case Column::lastOpened:
    case Column::added:
    case Column::created:
        break;
    }
    return 124;
}

ARXSpaceListView::ARXSpaceListView(QWidget* parent)
    : ARXSpaceView(parent), _model(new ARXSpaceListModel(this)),
      _outlineView(new ARXSpaceListOutlineView(this)), _bottomLabel(new QLabel(this)),
      _headerMenu(new QMenu(this)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(_outlineView, 1);
    layout->addWidget(_bottomLabel);
    _bottomLabel->setFixedHeight(kStatusHeight);
    _bottomLabel->setAlignment(Qt::AlignCenter);
    _bottomLabel->setContentsMargins(8, 0, 8, 0);
    _bottomLabel->hide();

    _outlineView->setModel(_model);
    // One delegate for every date section; sections change as columns come and go, so it is
    // assigned to them in applyColumns.
    _dateDelegate = new ARXDateColumnDelegate(this);

    QHeaderView* header = _outlineView->header();
    header->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(header, &QWidget::customContextMenuRequested, this,
            [this, header](const QPoint& at) { _headerMenu->popup(header->mapToGlobal(at)); });
    connect(header, &QHeaderView::sortIndicatorChanged, this,
            &ARXSpaceListView::onSortIndicatorChanged);
    connect(header, &QHeaderView::sectionResized, this, &ARXSpaceListView::onSectionResized);
    connect(header, &QHeaderView::sectionMoved, this, &ARXSpaceListView::onSectionMoved);
    connect(_outlineView, &QAbstractItemView::doubleClicked, this,
            &ARXSpaceListView::onDoubleClicked);
    connect(_outlineView->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
        if (!_syncing) {
            widgetSelectionChanged();
        }
        Q_EMIT selectionChanged();
    });
    connect(_outlineView, &QTreeView::expanded, this, [this](const QModelIndex& index) {
        watchFolder(_model->entryAt(index));
        _openRows.erase(std::remove_if(_openRows.begin(), _openRows.end(),
                                       [&](const QPersistentModelIndex& row) {
                                           return !row.isValid() || row == index;
                                       }),
                        _openRows.end());
        _openRows.emplace_back(index);
        refreshStatusText();
    });
    connect(_outlineView, &QTreeView::collapsed, this, [this] { refreshStatusText(); });
    connect(_outlineView, &ARXSpaceListOutlineView::editingEnded, this, [this] {
        _editingEntry.reset();
        setEditingFilename(false);
        // The keyboard comes back from the name editor, unless the user took it elsewhere: a
        // click in another pane ends the edit too, and that pane must keep the keyboard.
        const QWidget* focused = QApplication::focusWidget();
        if (!focused || focused == _outlineView || _outlineView->isAncestorOf(focused)) {
            _outlineView->setFocus(Qt::OtherFocusReason);
        }
    });
    connect(_outlineView, &ARXSpaceListOutlineView::focusReceived, this, [this] {
        if (delegate()) {
            delegate()->spaceViewFocused(*this);
        }
    });
    connect(_model, &ARXSpaceListModel::renameRequested, this,
            &ARXSpaceListView::onRenameRequested);
    connect(_model, &ARXSpaceListModel::fetchFailed, this, &ARXSpaceListView::onFetchFailed);
    connect(this, &ARXSpaceView::statusTextChanged, this, &ARXSpaceListView::setStatusText);
    _outlineView->setKeyHandler([this](QKeyEvent* event) { return handleKey(event); });
    _outlineView->setDropHandler(
        [this](QDropEvent* event, bool perform) { return handleDrop(event, perform); });
    _outlineView->setDragHandler([this](bool started) {
        if (started) {
            dragStarted(selectedEntries());
        } else {
            dragEnded();
        }
    });
    setBottomStatusVisible(ARXConf::settings_space_bottom_statusbar_visible().value());

    _dayChangeTimer.setSingleShot(true);
    connect(&_dayChangeTimer, &QTimer::timeout, this, &ARXSpaceListView::onDayChanged);

    ARXNotificationCenter::shared().addObserver(
        ARXNotificationName::rv_settings_spaceview_columns_changed, this,
        [this](const ARXNotification&) {
            if (!_visibleColumns) {
                applyColumns();
            }
        });
    rebuildHeaderMenu();
}

ARXSpaceListView::~ARXSpaceListView() {
    // The outline view and the model are children: they would outlive this part of the object.
    // An open name editor commits as the outline view goes (a rename request), its selection
    // empties and its header shrinks, and none of that may reach a view whose members are gone:
    // it once released a folder entry twice. Silenced first, the outline view goes now.
    for (QObject* sender : {static_cast<QObject*>(_model), static_cast<QObject*>(_outlineView),
                            static_cast<QObject*>(_outlineView->selectionModel()),
                            static_cast<QObject*>(_outlineView->header())}) {
        if (sender) {
            disconnect(sender, nullptr, this, nullptr);
        }
    }
    delete _outlineView;
}

void ARXSpaceListView::bindRoot(const ARXFileEntryRef& root, bool force) {
    _dayChangeTimer.stop();
    _editingEntry.reset();
    _draggingItems.clear();
    ARXSpaceView::bindRoot(root, force);
    _model->setRoot(spaceStatus() == ARXSpaceStatus::normal ? _root : nullptr);
    applyColumns();
    scheduleDayChange();
    refreshStatusText();
}

void ARXSpaceListView::setActiveLook(bool active) {
    ARXSpaceView::setActiveLook(active);
    if (active) {
        _outlineView->setPalette(QPalette()); // the inherited colours again
        return;
    }
    QPalette colors = palette();
    QColor highlight = colors.color(QPalette::Inactive, QPalette::Highlight);
    QColor highlightedText = colors.color(QPalette::Inactive, QPalette::HighlightedText);
    if (highlight == colors.color(QPalette::Active, QPalette::Highlight)) {
        // Styles that draw both alike (Fusion): the highlight faded into the background.
        const QColor base = colors.color(QPalette::Active, QPalette::Base);
        const QColor strong = colors.color(QPalette::Active, QPalette::Highlight);
        constexpr double kStrength = 0.35;
        highlight =
            QColor::fromRgbF(float(strong.redF() * kStrength + base.redF() * (1 - kStrength)),
                             float(strong.greenF() * kStrength + base.greenF() * (1 - kStrength)),
                             float(strong.blueF() * kStrength + base.blueF() * (1 - kStrength)));
        highlightedText = colors.color(QPalette::Active, QPalette::Text);
    }
    // Both groups: the selection must look inactive whether or not the window is the active one.
    for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive}) {
        colors.setColor(group, QPalette::Highlight, highlight);
        colors.setColor(group, QPalette::HighlightedText, highlightedText);
    }
    _outlineView->setPalette(colors);
}

// ----- columns

QStringList ARXSpaceListView::effectiveColumns() const {
    return _visibleColumns ? *_visibleColumns : ARXConf::settings_spaceview_columns().value();
}

void ARXSpaceListView::setVisibleColumns(std::optional<QStringList> columns) {
    ARXSpaceView::setVisibleColumns(std::move(columns));
    applyColumns();
}

void ARXSpaceListView::setColumnWidths(const QMap<QString, double>& widths) {
    ARXSpaceView::setColumnWidths(widths);
    applyColumns();
}

void ARXSpaceListView::applyColumns() {
    _applying = true;
    std::vector<Column> columns;
    for (const QString& text : effectiveColumns()) {
        const std::optional<Column> column = ARXSpaceViewColumn::parse(text);
        // The list has no column of its own for the name or the last opening.
        if (column && *column != Column::name && *column != Column::lastOpened) {
            columns.push_back(*column);
        }
    }
    _model->setColumns(columns);

    QHeaderView* header = _outlineView->header();
    // The sections follow the list's order again, whatever the user dragged before.
    for (int section = 0; section < header->count(); ++section) {
        if (header->visualIndex(section) != section) {
            header->moveSection(header->visualIndex(section), section);
        }
    }
    int others = 0;
    for (int section = 1; section < header->count(); ++section) {
        const Column column = _model->columnId(section);
        const QString key = ARXSpaceViewColumn::storedString(column);
        const int width = int(std::lround(_columnWidths.value(key, initialWidth(column))));
        header->resizeSection(section, width);
        _outlineView->setItemDelegateForColumn(section,
                                               isDateColumn(column) ? _dateDelegate : nullptr);
        others += width;
    }
    // Sections that went away leave no delegate behind for a column that comes later.
    for (int section = std::max(header->count(), 1); section <= int(extraColumns().size());
         ++section) {
        _outlineView->setItemDelegateForColumn(section, nullptr);
    }
    const QString nameKey = ARXSpaceViewColumn::storedString(Column::name);
    if (_columnWidths.contains(nameKey)) {
        header->resizeSection(
            0, std::max(int(std::lround(_columnWidths.value(nameKey))), int(kNameMinimumWidth)));
    } else {
        fitNameColumn();
    }
    showSortIndicator();
    rebuildHeaderMenu();
    _applying = false;
}

void ARXSpaceListView::fitNameColumn() {
    QHeaderView* header = _outlineView->header();
    int others = 0;
    for (int section = 1; section < header->count(); ++section) {
        others += header->sectionSize(section);
    }
    const int width = _outlineView->viewport()->width() - others - kNameSlack;
    header->resizeSection(0, std::max(width, int(kNameMinimumWidth)));
}

void ARXSpaceListView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    // After the layout has sized the tree's viewport, which happens once this event is done.
    QTimer::singleShot(0, this, [this] {
        if (!_columnWidths.contains(ARXSpaceViewColumn::storedString(Column::name)) &&
            _outlineView->header()->count() > 0) {
            const bool wasApplying = std::exchange(_applying, true);
            fitNameColumn();
            _applying = wasApplying;
        }
    });
}

void ARXSpaceListView::rebuildHeaderMenu() {
    _headerMenu->clear();
    const QStringList visible = effectiveColumns();
    for (const Column column : extraColumns()) {
        QAction* action = _headerMenu->addAction(columnTitle(column));
        action->setCheckable(true);
        action->setChecked(visible.contains(ARXSpaceViewColumn::storedString(column)));
        action->setData(int(column));
        connect(action, &QAction::triggered, this, [this, column] { toggleColumn(column); });
    }
    _headerMenu->addSeparator();
    _headerMenu->addAction(QCoreApplication::translate("Atrium", "Restore from Default"), this,
                           &ARXSpaceListView::columnsRestore);
    _headerMenu->addAction(QCoreApplication::translate("Atrium", "Save as Default"), this,
                           &ARXSpaceListView::columnsSaveAsDefault);
}

void ARXSpaceListView::toggleColumn(ARXSpaceViewColumnId column) {
    QStringList columns = effectiveColumns();
    const QString key = ARXSpaceViewColumn::storedString(column);
    if (!columns.removeAll(key)) {
        columns.append(key);
    }
    // The menu is rebuilt while one of its actions is still being handled: later.
    QMetaObject::invokeMethod(
        this, [this, columns] { setVisibleColumns(columns); }, Qt::QueuedConnection);
}

void ARXSpaceListView::columnsSaveAsDefault() {
    if (!_visibleColumns) {
        return;
    }
    const QStringList columns = *_visibleColumns;
    _visibleColumns.reset();
    ARXConf::settings_spaceview_columns().setValue(columns);
    // Every list view that follows the default, this one included, applies it.
    ARXNotificationCenter::shared().post(
        ARXNotificationName::rv_settings_spaceview_columns_changed);
}

void ARXSpaceListView::columnsRestore() {
    setVisibleColumns(std::nullopt);
}

void ARXSpaceListView::onSectionResized(int section, int /*oldSize*/, int newSize) {
    if (_applying) {
        return;
    }
    if (section == 0 && newSize < int(kNameMinimumWidth)) {
        _outlineView->header()->resizeSection(0, int(kNameMinimumWidth));
        return;
    }
    _columnWidths.insert(ARXSpaceViewColumn::storedString(_model->columnId(section)), newSize);
}

void ARXSpaceListView::onSectionMoved() {
    if (_applying) {
        return;
    }
    // The pane's list takes the order the user dragged the columns into.
    QHeaderView* header = _outlineView->header();
    QStringList columns;
    for (int visual = 0; visual < header->count(); ++visual) {
        const Column column = _model->columnId(header->logicalIndex(visual));
        if (column != Column::name) {
            columns.append(ARXSpaceViewColumn::storedString(column));
        }
    }
    _visibleColumns = columns;
}

// ----- sorting

void ARXSpaceListView::showSortIndicator() {
    if (!_root) {
        return;
    }
    const bool applying = std::exchange(_applying, true);
    const int section = _model->section(_root->sortColumn);
    _outlineView->header()->setSortIndicator(section, _root->sortAscend ? Qt::AscendingOrder
                                                                        : Qt::DescendingOrder);
    _applying = applying;
}

void ARXSpaceListView::onSortIndicatorChanged(int section, Qt::SortOrder order) {
    if (_applying || !_root || section < 0) {
        return;
    }
    applySort(_model->columnId(section), order == Qt::AscendingOrder);
}

void ARXSpaceListView::applySort(ARXSpaceViewColumnId column, bool ascending) {
    if (_root) {
        applySort(column, ascending, _root->sortFoldersOnTop);
    }
}

void ARXSpaceListView::applySort(ARXSpaceViewColumnId column, bool ascending, bool foldersOnTop) {
    if (!_root) {
        return;
    }
    // Only the root's order is set; unfolded folders take it from their parent as they sort.
    _root->sort(column, ascending, foldersOnTop);
    // A layout change: the selection and the unfolded rows stay on their entries.
    _model->reorder();
    showSortIndicator();
}

// ----- level of detail and unfolded folders

int ARXSpaceListView::lod() const {
    return _outlineView->lod();
}

void ARXSpaceListView::setLod(int lod) {
    _outlineView->setLod(lod);
}

std::vector<Path> ARXSpaceListView::expandedPaths() const {
    std::vector<Path> paths;
    collectExpanded({}, paths);
    return paths;
}

void ARXSpaceListView::collectExpanded(const QModelIndex& parent, std::vector<Path>& paths) const {
    for (int row = 0; row < _model->rowCount(parent); ++row) {
        const QModelIndex index = _model->index(row, 0, parent);
        if (_outlineView->isExpanded(index)) {
            paths.push_back(_model->entryAt(index)->path());
            collectExpanded(index, paths);
        }
    }
}

void ARXSpaceListView::setExpandedPaths(const std::vector<Path>& paths) {
    for (const Path& path : paths) {
        expandPath({}, path);
    }
}

void ARXSpaceListView::expandPath(const QModelIndex& parent, const Path& path) {
    for (int row = 0; row < _model->rowCount(parent); ++row) {
        const QModelIndex index = _model->index(row, 0, parent);
        const ARXFileEntryRef entry = _model->entryAt(index);
        if (entry->isSamePath(path) || entry->contains(path, true)) {
            expandIndex(index);
            expandPath(index, path);
        }
    }
}

bool ARXSpaceListView::expandEntry(const ARXFileEntryRef& entry) {
    if (entry == _root) {
        return true;
    }
    const QModelIndex index = _model->indexOf(entry);
    if (!index.isValid()) {
        return false;
    }
    expandIndex(index);
    return _outlineView->isExpanded(index);
}

void ARXSpaceListView::expandIndex(const QModelIndex& index) {
    // The tree view lists the folder (the model's fetchMore) only when it lays itself out, which
    // a hidden view puts off; the rows are read here so that they are there at once.
    if (_model->canFetchMore(index)) {
        _model->fetchMore(index);
    }
    _outlineView->expand(index);
}

// ----- selection and editing

ARXFileEntryList ARXSpaceListView::selectedEntries() const {
    // Top to bottom is the order of the rows' positions from the root down. Asking the widget
    // where each row is drawn would lay out every row of the folder first.
    std::vector<std::pair<std::vector<int>, QModelIndex>> rows;
    for (const QModelIndex& index : _outlineView->selectionModel()->selectedRows(0)) {
        std::vector<int> place;
        for (QModelIndex up = index; up.isValid(); up = up.parent()) {
            place.push_back(up.row());
        }
        std::reverse(place.begin(), place.end());
        rows.emplace_back(std::move(place), index);
    }
    std::sort(rows.begin(), rows.end(),
              [](const auto& a, const auto& b) { return a.first < b.first; });
    ARXFileEntryList entries;
    entries.reserve(rows.size());
    for (const auto& [place, index] : rows) {
        if (ARXFileEntryRef entry = _model->entryAt(index)) {
            entries.push_back(std::move(entry));
        }
    }
    return entries;
}

void ARXSpaceListView::selectEntries(const ARXFileEntryList& entries) {
    // One range per run of neighbouring rows: the widget keeps two persistent indexes per range
    // and walks them all at every row removal, so a folder selected whole is one range, not
    // thousands.
    QModelIndex first;
    std::vector<QModelIndex> rows;
    rows.reserve(entries.size());
    for (const ARXFileEntryRef& entry : entries) {
        const QModelIndex index = _model->indexOf(entry);
        if (!index.isValid()) {
            continue;
        }
        if (!first.isValid()) {
            first = index;
        }
        rows.push_back(index);
    }
    std::sort(rows.begin(), rows.end(), [](const QModelIndex& a, const QModelIndex& b) {
        const QModelIndex folderA = a.parent();
        const QModelIndex folderB = b.parent();
        return folderA != folderB ? folderA < folderB : a.row() < b.row();
    });
    QItemSelection selection;
    for (size_t i = 0; i < rows.size();) {
        size_t end = i + 1;
        while (end < rows.size() && rows[end].parent() == rows[i].parent() &&
               rows[end].row() <= rows[end - 1].row() + 1) {
            ++end;
        }
        const QModelIndex last = rows[end - 1];
        selection.select(rows[i], last.siblingAtColumn(_model->columnCount(last.parent()) - 1));
        i = end;
    }
    _outlineView->selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect |
                                                          QItemSelectionModel::Rows);
    if (first.isValid()) {
        _outlineView->selectionModel()->setCurrentIndex(first, QItemSelectionModel::NoUpdate);
        _outlineView->scrollTo(first);
    }
}

bool ARXSpaceListView::beginEditingName(const ARXFileEntryRef& entry) {
    const QModelIndex index = _model->indexOf(entry);
    if (!index.isValid() || !(_model->flags(index) & Qt::ItemIsEditable)) {
        return false;
    }
    setEditingFilename(true);
    _editingEntry = entry;
    if (!_outlineView->beginEditingName(index)) {
        _editingEntry.reset();
        setEditingFilename(false);
        return false;
    }
    return true;
}

void ARXSpaceListView::onDoubleClicked(const QModelIndex& index) {
    const ARXFileEntryRef clicked = _model->entryAt(index);
    if (!clicked) {
        return;
    }
    const ARXFileEntryList selected = selectedEntries();
    const bool inSelection = std::find(selected.begin(), selected.end(), clicked) != selected.end();
    const ARXFileEntryList entries = inSelection ? selected : ARXFileEntryList{clicked};
    if (delegate()) {
        delegate()->spaceViewOpen(*this, entries);
    }
    Q_EMIT entriesActivated(entries);
}

// ----- status line and the day change

void ARXSpaceListView::setBottomStatusVisible(bool visible) {
    _bottomLabel->setVisible(visible);
}

bool ARXSpaceListView::isBottomStatusVisible() const {
    return !_bottomLabel->isHidden();
}

void ARXSpaceListView::setStatusText(const QString& text) {
    _bottomLabel->setText(text);
}

void ARXSpaceListView::scheduleDayChange() {
    const ARXDateText& dates = _model->dateText();
    const double seconds = dates.nextDayChange() - dates.now();
    // A second past midnight, so that "now" is surely on the new day when the texts are made.
    const double ms = std::clamp(seconds * 1000.0 + 1000.0, 1000.0, 86400.0 * 1000.0 + 1000.0);
    _dayChangeTimer.start(int(ms));
}

void ARXSpaceListView::onDayChanged() {
    _model->refreshAll();
    scheduleDayChange();
}
