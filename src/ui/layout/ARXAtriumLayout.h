#pragma once

#include "model/ARXSpaceSquareViewMoveDirection.h"

#include <QList>
#include <QPoint>
#include <QtGlobal>

#include <array>
#include <optional>
#include <vector>

// The twelve arrangements of a workspace's panes. The raw values are stored in workspace files
// and settings and are never renumbered.
enum class ARXAtriumLayoutId : int {
    layout_0 = 0,
    layout_1 = 1,
    layout_2 = 2,
    layout_3 = 3,
    layout_4 = 4,
    layout_5 = 5,
    layout_6 = 6,
    layout_7 = 7,
    layout_8 = 8,
    layout_9 = 9,
    layout_10 = 10,
    layout_11 = 11,
};

// The split tree of a layout, as data that the builder and the chooser's pictures both follow.
// A tree is at most two levels deep, and an inner split always runs across its parent: inside
// columns it stacks rows, inside rows it stands columns side by side.
struct ARXAtriumLayoutShape {
    // `columns`: children side by side; `rows`: children stacked; `none`: pane 0 alone.
    enum class Split { none, columns, rows };

    // A child of the root split: a pane (its index in the workspace's pane order), or an inner
    // split holding `inner` panes.
    struct Item {
        int pane = -1;
        std::vector<int> inner;
        bool isSplit() const { return pane < 0; }
    };

    Split root = Split::none;
    std::vector<Item> items;

    // The orientation of the inner splits.
    Split across() const { return root == Split::columns ? Split::rows : Split::columns; }
    bool hasInnerSplit() const;
};

// A layout in use or on offer: its id, and the sizes remembered for it, which stay unset until a
// size is remembered. Factors are fractions of the parent split's width or height, in this order:
//  - layouts with inner splits: first one factor per inner split (its share of the root split;
//    a pane beside a lone inner split takes 1 minus it), then the inner splits' panes in order;
//  - layouts with one split: one factor per pane;
//  - layout_7: none.
// A list whose length is not the layout's factorCount is kept as it is, but never used.
class ARXAtriumLayout {
public:
    explicit ARXAtriumLayout(ARXAtriumLayoutId id, std::optional<QList<double>> factors = {})
        : id(id), factors(std::move(factors)) {}

    ARXAtriumLayoutId id;
    std::optional<QList<double>> factors;

    // What a build applies: `factors` when it has exactly factorCount(id) entries, otherwise the
    // defaults. Never writes `factors`.
    QList<double> effectiveFactors() const;

    // ----- the tables of the twelve layouts

    // Every layout, in raw-value order.
    static const std::array<ARXAtriumLayoutId, 12>& all();
    // The layout of a stored raw value; nullopt for a negative value or one of 12 or more.
    static std::optional<ARXAtriumLayoutId> fromRaw(qint64 raw);

    static const ARXAtriumLayoutShape& shape(ARXAtriumLayoutId id);
    // The index of the last placed pane: 3, 1, 2, 2, 2, 2, 1, 0, 2, 3, 2, 3 in id order.
    static int lastIndex(ARXAtriumLayoutId id);
    static int paneCount(ARXAtriumLayoutId id) { return lastIndex(id) + 1; }
    static int factorCount(ARXAtriumLayoutId id);
    // Equal shares: 0.5 in the two-way splits, 1/3 and 0.25 in the three- and four-way rows and
    // columns; empty for layout_7.
    static QList<double> defaultFactors(ARXAtriumLayoutId id);

    // The neighbours a placed pane (by index) can move to; empty for panes the layout does not
    // place and for the lone pane of layout_7, which therefore has no "Move to" menu.
    static const std::vector<ARXSpaceSquareViewMoveDirection>& canMoveDirs(ARXAtriumLayoutId id,
                                                                           int pane);
    // The pane's grid cell: (1, 0), (0, 1), (1, 1) for panes 1-3 of layout_0, (1, 0) for pane 1 of
    // layout_1 and layout_2; (0, 0) for every other pane.
    static QPoint coord(ARXAtriumLayoutId id, int pane);
};
