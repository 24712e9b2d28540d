#include "ui/layout/ARXAtriumLayout.h"

namespace {

using Shape = ARXAtriumLayoutShape;
using Split = ARXAtriumLayoutShape::Split;
using Dir = ARXSpaceSquareViewMoveDirection;
using Dirs = std::vector<Dir>;

Shape::Item pane(int index) {
    return Shape::Item{index, {}};
}
Shape::Item inner(std::vector<int> panes) {
    return Shape::Item{-1, std::move(panes)};
}

const std::array<Shape, 12>& shapes() {
    static const std::array<Shape, 12> table = {
        Shape{Split::rows, {inner({0, 1}), inner({2, 3})}},
        Shape{Split::columns, {pane(0), pane(1)}},
        Shape{Split::columns, {inner({0, 2}), pane(1)}},
        Shape{Split::columns, {pane(0), inner({1, 2})}},
        Shape{Split::rows, {pane(0), inner({1, 2})}},
        Shape{Split::rows, {inner({0, 1}), pane(2)}},
        Shape{Split::rows, {pane(0), pane(1)}},
        Shape{Split::none, {pane(0)}},
        Shape{Split::columns, {pane(0), pane(1), pane(2)}},
        Shape{Split::columns, {pane(0), pane(1), pane(2), pane(3)}},
        Shape{Split::rows, {pane(0), pane(1), pane(2)}},
        Shape{Split::rows, {pane(0), pane(1), pane(2), pane(3)}},
    };
    return table;
}

// Indexed by layout, then by pane; panes the layout does not place have no entry.
const std::array<std::vector<Dirs>, 12>& moveTable() {
    static const std::array<std::vector<Dirs>, 12> table = {{
        {{Dir::right, Dir::rightDown, Dir::down},
         {Dir::left, Dir::leftDown, Dir::down},
         {Dir::right, Dir::rightUp, Dir::up},
         {Dir::left, Dir::leftUp, Dir::up}},
        {{Dir::right}, {Dir::left}},
        {{Dir::right, Dir::down}, {Dir::leftUp, Dir::leftDown}, {Dir::right, Dir::up}},
        {{Dir::rightUp, Dir::rightDown}, {Dir::left, Dir::down}, {Dir::left, Dir::up}},
        {{Dir::leftDown, Dir::rightDown}, {Dir::right, Dir::up}, {Dir::left, Dir::up}},
        {{Dir::right, Dir::down}, {Dir::left, Dir::down}, {Dir::leftUp, Dir::rightUp}},
        {{Dir::down}, {Dir::up}},
        {{}},
        {{Dir::right}, {Dir::left, Dir::right}, {Dir::left}},
        {{Dir::right}, {Dir::left, Dir::right}, {Dir::left, Dir::right}, {Dir::left}},
        {{Dir::down}, {Dir::up, Dir::down}, {Dir::up}},
        {{Dir::down}, {Dir::up, Dir::down}, {Dir::up, Dir::down}, {Dir::up}},
    }};
    return table;
}

size_t indexOf(ARXAtriumLayoutId id) {
    return size_t(id);
}

} // namespace

bool ARXAtriumLayoutShape::hasInnerSplit() const {
    for (const Item& item : items) {
        if (item.isSplit()) {
            return true;
        }
    }
    return false;
}

QList<double> ARXAtriumLayout::effectiveFactors() const {
    if (factors && factors->size() == factorCount(id)) {
        return *factors;
    }
    return defaultFactors(id);
}

const std::array<ARXAtriumLayoutId, 12>& ARXAtriumLayout::all() {
    static const std::array<ARXAtriumLayoutId, 12> ids = [] {
        std::array<ARXAtriumLayoutId, 12> result{};
        for (size_t raw = 0; raw < result.size(); ++raw) {
            result[raw] = ARXAtriumLayoutId(raw);
        }
        return result;
    }();
    return ids;
}

std::optional<ARXAtriumLayoutId> ARXAtriumLayout::fromRaw(qint64 raw) {
    if (raw < 0 || raw >= qint64(all().size())) {
        return std::nullopt;
    }
    return ARXAtriumLayoutId(raw);
}

const ARXAtriumLayoutShape& ARXAtriumLayout::shape(ARXAtriumLayoutId id) {
    return shapes()[indexOf(id)];
}

int ARXAtriumLayout::lastIndex(ARXAtriumLayoutId id) {
    // A table of its own rather than a count over the shape: the active pane is moved to this
    // index before a build, so it must not depend on how the tree happens to be written.
    static constexpr std::array<int, 12> table = {3, 1, 2, 2, 2, 2, 1, 0, 2, 3, 2, 3};
    return table[indexOf(id)];
}

int ARXAtriumLayout::factorCount(ARXAtriumLayoutId id) {
    const Shape& s = shape(id);
    if (s.root == Split::none) {
        return 0;
    }
    if (!s.hasInnerSplit()) {
        return int(s.items.size());
    }
    int count = 0;
    for (const Shape::Item& item : s.items) {
        count += item.isSplit() ? 1 + int(item.inner.size()) : 0;
    }
    return count;
}

QList<double> ARXAtriumLayout::defaultFactors(ARXAtriumLayoutId id) {
    const Shape& s = shape(id);
    QList<double> result;
    if (s.root == Split::none) {
        return result;
    }
    const double rootShare = 1.0 / double(s.items.size());
    if (!s.hasInnerSplit()) {
        for (size_t i = 0; i < s.items.size(); ++i) {
            result.append(rootShare);
        }
        return result;
    }
    for (const Shape::Item& item : s.items) {
        if (item.isSplit()) {
            result.append(rootShare);
        }
    }
    for (const Shape::Item& item : s.items) {
        for (size_t i = 0; i < item.inner.size(); ++i) {
            result.append(1.0 / double(item.inner.size()));
        }
    }
    return result;
}

const std::vector<ARXSpaceSquareViewMoveDirection>&
ARXAtriumLayout::canMoveDirs(ARXAtriumLayoutId id, int pane) {
    static const Dirs none;
    const std::vector<Dirs>& panes = moveTable()[indexOf(id)];
    if (pane < 0 || pane >= int(panes.size())) {
        return none;
    }
    return panes[size_t(pane)];
}

QPoint ARXAtriumLayout::coord(ARXAtriumLayoutId id, int pane) {
    switch (id) {
    case ARXAtriumLayoutId::layout_0:
        switch (pane) {
        case 1:
            return {1, 0};
        case 2:
            return {0, 1};
        case 3:
            return {1, 1};
        default:
            return {0, 0};
        }
    case ARXAtriumLayoutId::layout_1:
    case ARXAtriumLayoutId::layout_2:
        return pane == 1 ? QPoint(1, 0) : QPoint(0, 0);
    default:
        return {0, 0};
    }
}
