#include "ui/spaceviews/ARXSpaceListOutlineView.h"

#include <QDrag>
#include <QDropEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMimeData>
#include <QStyledItemDelegate>

#include <algorithm>

namespace {

// The delegate of the plain columns: Qt's own painting, with rows at least as high as the level
// asks. With uniform row heights the first row's hint sets every row's height.
class ARXSpaceListRowDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    int minimumHeight = 0;

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        QSize size = QStyledItemDelegate::sizeHint(option, index);
        size.setHeight(std::max(size.height(), minimumHeight));
        return size;
    }

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
        QStyledItemDelegate::initStyleOption(option, index);
        // Names keep their start and their extension; the other texts read from the left.
        if (index.column() != 0) {
            option->textElideMode = Qt::ElideRight;
        }
    }
};

} // namespace

ARXSpaceListOutlineView::ARXSpaceListOutlineView(QWidget* parent) : QTreeView(parent) {
    setItemDelegate(new ARXSpaceListRowDelegate(this));
    setUniformRowHeights(true);
    setAlternatingRowColors(false);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setAllColumnsShowFocus(true);
    setRootIsDecorated(true);
    setItemsExpandable(true);
    // A double click opens the item; folders unfold by their arrow or the keyboard.
    setExpandsOnDoubleClick(false);
    setTextElideMode(Qt::ElideMiddle);
    setSortingEnabled(false); // the entries sort themselves; the header only shows the order
    setDragEnabled(true);
    setAcceptDrops(true);
    setDropIndicatorShown(true);
    setDragDropMode(QAbstractItemView::DragDrop);

    QHeaderView* header = this->header();
    header->setSectionsClickable(true);
    header->setSortIndicatorShown(true);
    header->setSectionsMovable(true);
    header->setFirstSectionMovable(false);
    header->setStretchLastSection(false);
    header->setHighlightSections(false);
    header->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    setLod(0);
}

ARXSpaceListOutlineView::~ARXSpaceListOutlineView() = default;

const std::array<ARXSpaceListViewLevelData, 2>& ARXSpaceListOutlineView::levels() {
    static const std::array<ARXSpaceListViewLevelData, 2> table{{
        {16, 5, 17},
        {32, 15, 34},
    }};
    return table;
}

void ARXSpaceListOutlineView::setLod(int lod) {
    _lod = std::clamp(lod, 0, int(levels().size()) - 1);
    const ARXSpaceListViewLevelData& level = levels()[size_t(_lod)];
    const int side = int(level.iconSize);
    static_cast<ARXSpaceListRowDelegate*>(itemDelegate())->minimumHeight = int(level.itemHeight);
    setIconSize(QSize(side, side));
    // Every row is laid out again at its new height.
    doItemsLayout();
}

int ARXSpaceListOutlineView::rowHeight() const {
    if (!model() || model()->rowCount() == 0) {
        return int(levels()[size_t(_lod)].itemHeight);
    }
    return QTreeView::rowHeight(model()->index(0, 0));
}

bool ARXSpaceListOutlineView::beginEditingName(const QModelIndex& index) {
    setFocus(Qt::OtherFocusReason);
    if (!index.isValid()) {
        return false;
    }
    const QModelIndex name = index.siblingAtColumn(0);
    // The row renamed is the row selected. setCurrentIndex would read the modifiers held at this
    // moment: Ctrl still down from the key that asked for the rename would toggle the row out of
    // the selection.
    const QItemSelectionModel::SelectionFlags keep =
        selectionModel()->isSelected(name)
            ? QItemSelectionModel::NoUpdate
            : QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows;
    selectionModel()->setCurrentIndex(name, keep);
    scrollTo(name);
    // `edit` with every trigger allowed: the view has none of its own.
    return edit(name, QAbstractItemView::AllEditTriggers, nullptr);
}

void ARXSpaceListOutlineView::setModel(QAbstractItemModel* model) {
    QTreeView::setModel(model);
    fixNameSection();
}

void ARXSpaceListOutlineView::fixNameSection() {
    // Qt hides any section on request; the name column is never among the ones the header menu
    // offers, so it only has to stay first.
    if (header()->count() > 0 && header()->visualIndex(0) != 0) {
        header()->moveSection(header()->visualIndex(0), 0);
    }
}

void ARXSpaceListOutlineView::keyPressEvent(QKeyEvent* event) {
    // Keys the name editor leaves (its Return, its Escape) belong to the edit, not to the pane.
    if (state() == QAbstractItemView::EditingState) {
        QTreeView::keyPressEvent(event);
        return;
    }
    if (_keyHandler && _keyHandler(event)) {
        return;
    }
    // Right on a row that cannot unfold moves on to the next row of the same folder.
    if (event->key() == Qt::Key_Right && event->modifiers() == Qt::NoModifier) {
        const QModelIndex current = currentIndex().siblingAtColumn(0);
        if (current.isValid() && !model()->hasChildren(current)) {
            const QModelIndex next = current.siblingAtRow(current.row() + 1);
            if (next.isValid()) {
                setCurrentIndex(next);
                return;
            }
        }
    }
    QTreeView::keyPressEvent(event);
}

void ARXSpaceListOutlineView::focusInEvent(QFocusEvent* event) {
    QTreeView::focusInEvent(event);
    Q_EMIT focusReceived();
}

void ARXSpaceListOutlineView::closeEditor(QWidget* editor,
                                          QAbstractItemDelegate::EndEditHint hint) {
    QTreeView::closeEditor(editor, hint);
    Q_EMIT editingEnded();
}

void ARXSpaceListOutlineView::startDrag(Qt::DropActions supportedActions) {
    // Not Qt's own: after a move it takes the rows out of the model, whereas here rows only go
    // when the files have gone, which the change notices tell.
    const QModelIndexList rows = selectionModel()->selectedRows(0);
    if (rows.isEmpty()) {
        return;
    }
    QMimeData* data = model()->mimeData(rows);
    if (!data) {
        return;
    }
    if (_dragHandler) {
        _dragHandler(true);
    }
    auto* drag = new QDrag(this);
    drag->setMimeData(data);
    const QIcon icon = rows.first().data(Qt::DecorationRole).value<QIcon>();
    if (!icon.isNull()) {
        drag->setPixmap(icon.pixmap(iconSize()));
    }
    drag->exec(supportedActions, Qt::MoveAction);
    if (_dragHandler) {
        _dragHandler(false);
    }
}

void ARXSpaceListOutlineView::dragEnterEvent(QDragEnterEvent* event) {
    // Whether the payload is welcome at all is decided at each move, over the row it is on.
    if (_dropHandler) {
        event->acceptProposedAction();
        return;
    }
    QTreeView::dragEnterEvent(event);
}

void ARXSpaceListOutlineView::dragMoveEvent(QDragMoveEvent* event) {
    if (!_dropHandler) {
        QTreeView::dragMoveEvent(event);
        return;
    }
    // Qt's own move handling scrolls near the edges and draws the indicator.
    QTreeView::dragMoveEvent(event);
    const Qt::DropAction action = _dropHandler(event, false);
    if (action == Qt::IgnoreAction) {
        event->ignore();
    } else {
        event->setDropAction(action);
        event->accept();
    }
}

void ARXSpaceListOutlineView::dropEvent(QDropEvent* event) {
    if (!_dropHandler) {
        QTreeView::dropEvent(event);
        return;
    }
    const Qt::DropAction action = _dropHandler(event, true);
    if (action == Qt::IgnoreAction) {
        event->ignore();
    } else {
        event->setDropAction(action);
        event->accept();
    }
    stopAutoScroll();
    setState(QAbstractItemView::NoState);
    viewport()->update();
}
