#pragma once

#include "ui/layout/ARXAtriumLayout.h"

#include <QList>

#include <array>

class ARXHandySplitView;
class QWidget;

// Places a workspace's four panes in a container (the workspace's content area) following a
// layout's split tree, and reads the sizes back as factors.
//
// The container belongs to the builder from the first build on: its layout, its splits and a
// hidden holder widget among its children. The panes become the container's children too and are
// never left without a parent: a pane the layout does not place is hidden inside the holder,
// keeping all its state, and `isPlaced` answers false for it. Old splits are taken out of the
// container at once and deleted on the next turn of the event loop.
class ARXAtriumLayoutBuilder {
public:
    // The panes in the workspace's order: p0 to p3 of the layouts' trees.
    using Panes = std::array<QWidget*, 4>;

    // Builds the tree of `layout` in `container` from nothing: rows are vertical splits, columns
    // horizontal ones; the root split fills the container, and layout_7 puts p0 directly in the
    // container. Sizes follow layout.effectiveFactors(), in proportion, so they hold whether the
    // container is already shown or shown later. Null widgets are a programming error.
    static void build(QWidget* container, const Panes& panes, const ARXAtriumLayout& layout);

    // The factors of the current frames, in the order ARXAtriumLayout describes: each pane's (or
    // inner split's) width or height over its parent split's, the inner splits' over the
    // container's. Empty for layout_7. When a split the layout needs is missing, or has no size
    // yet, the factors gathered up to that point are answered, so that a later build ignores them.
    static QList<double> currentFactors(const QWidget* container, const Panes& panes,
                                        ARXAtriumLayoutId id);

    // Whether the last build placed the pane (in a split, or alone in the container).
    static bool isPlaced(const QWidget* pane);

    // The root split of the container; null before a build and for layout_7.
    static ARXHandySplitView* rootSplit(const QWidget* container);
};
