#include "ui/spaceviews/ARXSpaceListOutlineView.h"

#include <QHeaderView>
#include <QKeyEvent>
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
    setCurrentIndex(name);
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
