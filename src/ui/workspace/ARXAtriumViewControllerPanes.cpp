// The active pane, and the ways the user moves between panes and moves panes about: activation,
// swaps, the directional probe, Tab, and opening paths across the placed panes.
#include "app/ARXPathRules.h"
#include "ui/workspace/ARXAtriumViewController.h"

#include <QKeyEvent>

#include <algorithm>

namespace {

using Direction = ARXSpaceSquareViewMoveDirection;

// How far outside a pane's edge (or inside it, at a window edge) the probe for a neighbour goes.
constexpr double kProbe = 20;

std::optional<Direction> arrowDirection(int key) {
    switch (key) {
    case Qt::Key_Left:
        return Direction::left;
    case Qt::Key_Right:
        return Direction::right;
    case Qt::Key_Up:
        return Direction::up;
    case Qt::Key_Down:
        return Direction::down;
    default:
        return std::nullopt;
    }
}

// The layout that has room for `count` folders.
ARXAtriumLayoutId layoutFor(size_t count) {
    switch (count) {
    case 3:
        return ARXAtriumLayoutId::layout_2;
    case 2:
        return ARXAtriumLayoutId::layout_1;
    default:
        return ARXAtriumLayoutId::layout_0;
    }
}

} // namespace

std::vector<ARXSpaceSquareView*> ARXAtriumViewController::placedPanes() const {
    std::vector<ARXSpaceSquareView*> placed;
    for (ARXSpaceSquareView* pane : _squares) {
        if (ARXAtriumLayoutBuilder::isPlaced(pane)) {
            placed.push_back(pane);
        }
    }
    return placed;
}

ARXSpaceSquareView* ARXAtriumViewController::activePane() const {
    for (ARXSpaceSquareView* pane : _squares) {
        if (pane->isActivated()) {
            return pane;
        }
    }
    return nullptr;
}

void ARXAtriumViewController::activate(ARXSpaceSquareView* target) {
    for (ARXSpaceSquareView* pane : _squares) {
        if (pane != target) {
            pane->setActivated(false);
        }
    }
    if (!target) {
        return;
    }
    // The pane reports only a change from inactive to active; the window hears of this one
    // either way.
    const bool wasActive = target->isActivated();
    target->setActivated(true);
    if (wasActive && _delegate) {
        _delegate->workspacePaneActivated(*this, *target);
    }
}

void ARXAtriumViewController::swap(ARXSpaceSquareView* first, ARXSpaceSquareView* second) {
    if (!_layout) {
        return;
    }
    // The sizes belong to the places: read now, they are what the rebuild applies.
    _layout->factors = currentFactors();
    const auto a = std::find(_squares.begin(), _squares.end(), first);
    const auto b = std::find(_squares.begin(), _squares.end(), second);
    if (a != _squares.end() && b != _squares.end()) {
        std::iter_swap(a, b);
    }
    rebuildLayout();
    activate(first);
}

void ARXAtriumViewController::moveFocus(ARXSpaceSquareView* pane, Direction direction,
                                        bool swapPanes) {
    if (!pane || !_layout || !ARXAtriumLayoutBuilder::isPlaced(pane)) {
        return;
    }
    // The frame counted from the content area's bottom left corner: x the left edge, y the top
    // edge. Edges compare as whole pixels.
    const int W = _contentView->width();
    const int H = _contentView->height();
    const int w = pane->width();
    const int h = pane->height();
    const QPoint topLeft = pane->mapTo(_contentView, QPoint(0, 0));
    const int x = topLeft.x();
    const int y = H - topLeft.y();

    // At a window edge the probe stays inside the pane, so the pane finds itself.
    const auto middleY = [&]() -> double {
        if (y == H) {
            return H - kProbe;
        }
        if (y == h) {
            return kProbe;
        }
        return y - h / 2.0;
    };
    const auto centreX = [&]() -> double {
        if (x == 0) {
            return kProbe;
        }
        if (x + w == W) {
            return W - kProbe;
        }
        return x + w / 2.0;
    };
    const auto leftX = [&]() -> double { return x == 0 ? kProbe : x - kProbe; };
    const auto rightX = [&]() -> double { return x + w == W ? W - kProbe : x + w + kProbe; };
    const auto upY = [&]() -> double { return y == H ? H - kProbe : y + kProbe; };
    const auto downY = [&]() -> double { return y == h ? kProbe : y - h - kProbe; };

    double px = 0;
    double py = 0;
    switch (direction) {
    case Direction::left:
        px = x - kProbe;
        py = middleY();
        break;
    case Direction::right:
        px = x + w + kProbe;
        py = middleY();
        break;
    case Direction::up:
        px = centreX();
        py = upY();
        break;
    case Direction::down:
        px = centreX();
        py = downY();
        break;
    case Direction::leftUp:
        px = leftX();
        py = upY();
        break;
    case Direction::leftDown:
        px = leftX();
        py = downY();
        break;
    case Direction::rightUp:
        px = rightX();
        py = upY();
        break;
    case Direction::rightDown:
        px = rightX();
        py = downY();
        break;
    }
    // Back to the content area's top-down coordinates, then to the workspace's, which puts the
    // sidebar (when shown) to the left of the probe.
    const QPoint probe = _contentView->mapTo(this, QPoint(int(px), int(H - py)));
    ARXSpaceSquareView* found = paneAt(probe);
    if (!found) {
        return;
    }
    if (swapPanes) {
        swap(pane, found);
    } else {
        activate(found);
    }
}

ARXSpaceSquareView* ARXAtriumViewController::paneAt(const QPoint& point) const {
    for (QWidget* widget = childAt(point); widget && widget != _contentView && widget != this;
         widget = widget->parentWidget()) {
        auto* pane = qobject_cast<ARXSpaceSquareView*>(widget);
        if (pane && std::find(_squares.begin(), _squares.end(), pane) != _squares.end()) {
            return pane;
        }
    }
    return nullptr;
}

void ARXAtriumViewController::moveTo(ARXSpaceSquareView* pane, qint64 tag) {
    if (const std::optional<Direction> direction = ARXSpaceSquareViewMove::fromRaw(tag)) {
        moveFocus(pane, *direction, true);
    }
}

void ARXAtriumViewController::cyclePanes(bool forward) {
    const std::vector<ARXSpaceSquareView*> placed = placedPanes();
    if (placed.empty()) {
        return;
    }
    // From the last active pane, or the first place when none is active.
    size_t current = 0;
    for (size_t i = 0; i < placed.size(); ++i) {
        if (placed[i]->isActivated()) {
            current = i;
        }
    }
    const size_t count = placed.size();
    activate(placed[(current + (forward ? 1 : count - 1)) % count]);
}

// ----- keys

bool ARXAtriumViewController::handleWorkspaceKey(ARXSpaceSquareView* pane, QKeyEvent* event) {
    const Qt::KeyboardModifiers modifiers =
        event->modifiers() & ~(Qt::KeypadModifier | Qt::GroupSwitchModifier);
    const int key = event->key();
    if (key == Qt::Key_Tab || key == Qt::Key_Backtab) {
        // With or without Ctrl; Shift goes backwards.
        if ((modifiers & ~(Qt::ControlModifier | Qt::ShiftModifier)) != Qt::NoModifier) {
            return false;
        }
        cyclePanes(key == Qt::Key_Tab && !modifiers.testFlag(Qt::ShiftModifier));
        return true;
    }
    const std::optional<Direction> direction = arrowDirection(key);
    if (!direction || !modifiers.testFlag(Qt::ControlModifier) ||
        !modifiers.testFlag(Qt::AltModifier)) {
        return false;
    }
    moveFocus(pane, *direction, modifiers.testFlag(Qt::MetaModifier));
    return true;
}

bool ARXAtriumViewController::squareViewKey(ARXSpaceSquareView& pane, QKeyEvent* event) {
    if (handleWorkspaceKey(&pane, event)) {
        return true;
    }
    return _delegate && _delegate->workspaceKey(*this, pane, event);
}

void ARXAtriumViewController::keyPressEvent(QKeyEvent* event) {
    ARXSpaceSquareView* pane = activePane();
    if (pane && handleWorkspaceKey(pane, event)) {
        event->accept();
        return;
    }
    QWidget::keyPressEvent(event);
}

bool ARXAtriumViewController::focusNextPrevChild(bool next) {
    if (!_layout) {
        return QWidget::focusNextPrevChild(next);
    }
    cyclePanes(next);
    return true;
}

// ----- opening paths

std::vector<ARXSpaceSquareView*> ARXAtriumViewController::makeRoomFor(size_t count,
                                                                      bool allowLayoutChange) {
    std::vector<ARXSpaceSquareView*> placed = placedPanes();
    if (placed.size() < count && allowLayoutChange) {
        setLayout(layoutMember(layoutFor(count)));
        placed = placedPanes();
    }
    return placed;
}

void ARXAtriumViewController::openPaths(const std::vector<Path>& paths, bool allowLayoutChange) {
    const std::vector<ARXSpaceSquareView*> placed = makeRoomFor(paths.size(), allowLayoutChange);
    if (paths.size() == 1) {
        if (ARXSpaceSquareView* pane = activePane()) {
            pane->openPath(paths.front());
        }
        return;
    }
    for (size_t i = 0; i < std::min(paths.size(), placed.size()); ++i) {
        placed[i]->openPath(paths[i]);
    }
}

void ARXAtriumViewController::revealPaths(const std::vector<Path>& paths, bool allowLayoutChange) {
    // Items grouped by the folder that holds them, folders in the order first seen.
    std::vector<std::pair<Path, std::vector<Path>>> groups;
    for (const Path& path : paths) {
        const Path folder = ARXPath::parentPath(path);
        const auto group =
            std::find_if(groups.begin(), groups.end(), [&folder](const auto& candidate) {
                return ARXPathRules::isSamePath(candidate.first, folder);
            });
        if (group == groups.end()) {
            groups.push_back({folder, {path}});
        } else {
            group->second.push_back(path);
        }
    }
    const std::vector<ARXSpaceSquareView*> placed = makeRoomFor(groups.size(), allowLayoutChange);
    if (groups.size() == 1) {
        ARXSpaceSquareView* pane = activePane();
        if (!pane && !placed.empty()) {
            // The pane that shows the items is the one the next command acts on.
            pane = placed.front();
            activate(pane);
        }
        if (pane) {
            pane->reveal(groups.front().second);
        }
        return;
    }
    for (size_t i = 0; i < std::min(groups.size(), placed.size()); ++i) {
        placed[i]->reveal(groups[i].second);
    }
}
