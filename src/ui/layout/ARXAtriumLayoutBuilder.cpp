#include "ui/layout/ARXAtriumLayoutBuilder.h"

#include "ui/layout/ARXHandySplitView.h"

#include <QLayout>
#include <QVBoxLayout>
#include <QWidget>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace {

using Shape = ARXAtriumLayoutShape;
using Split = ARXAtriumLayoutShape::Split;

// Marks the container, so that a pane standing alone in it counts as placed.
constexpr char kContainerProperty[] = "atriumLayoutContainer";
constexpr char kHolderName[] = "atriumUnplacedPanes";

// Sizes are handed to the splits as proportions of this total: a split shares out whatever room
// it has in proportion to the sizes it was given, now and on every later resize.
constexpr double kProportionScale = 1000000.0;

Qt::Orientation orientationOf(Split split) {
    return split == Split::columns ? Qt::Horizontal : Qt::Vertical;
}

int extent(const QWidget* widget, Qt::Orientation orientation) {
    return orientation == Qt::Horizontal ? widget->width() : widget->height();
}

QWidget* holderOf(QWidget* container) {
    auto* holder =
        container->findChild<QWidget*>(QLatin1String(kHolderName), Qt::FindDirectChildrenOnly);
    if (!holder) {
        holder = new QWidget(container);
        holder->setObjectName(QLatin1String(kHolderName));
        holder->hide();
    }
    return holder;
}

QLayout* containerLayout(QWidget* container) {
    QLayout* layout = container->layout();
    if (!layout) {
        layout = new QVBoxLayout(container);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->setSpacing(0);
    }
    while (QLayoutItem* item = layout->takeAt(0)) {
        delete item;
    }
    return layout;
}

void setProportions(QSplitter* split, const QList<double>& shares) {
    QList<int> sizes;
    for (double share : shares) {
        sizes.append(int(std::lround(std::max(share, 0.0) * kProportionScale)));
    }
    split->setSizes(sizes);
}

// The split that holds a pane, if the pane is in one.
const ARXHandySplitView* splitOf(const QWidget* pane) {
    return pane ? qobject_cast<const ARXHandySplitView*>(pane->parentWidget()) : nullptr;
}

} // namespace

void ARXAtriumLayoutBuilder::build(QWidget* container, const Panes& panes,
                                   const ARXAtriumLayout& layout) {
    if (!container) {
        qFatal("ARXAtriumLayoutBuilder::build: no container");
    }
    for (QWidget* pane : panes) {
        if (!pane) {
            qFatal("ARXAtriumLayoutBuilder::build: a pane is missing");
        }
    }

    // Every pane leaves its place first, so that deleting the old splits can't take one along.
    QWidget* holder = holderOf(container);
    for (QWidget* pane : panes) {
        pane->hide();
        pane->setParent(holder);
    }
    for (ARXHandySplitView* old :
         container->findChildren<ARXHandySplitView*>(Qt::FindDirectChildrenOnly)) {
        // Detached now and deleted later: a build may be asked for from inside one of its events.
        old->hide();
        old->setParent(nullptr);
        old->deleteLater();
    }
    QLayout* box = containerLayout(container);
    container->setProperty(kContainerProperty, true);

    const Shape& shape = ARXAtriumLayout::shape(layout.id);
    if (shape.root == Split::none) {
        box->addWidget(panes[0]);
        panes[0]->show();
        return;
    }

    const QList<double> factors = layout.effectiveFactors();
    auto* root = new ARXHandySplitView(orientationOf(shape.root), container);
    QList<double> rootShares;
    std::vector<std::pair<ARXHandySplitView*, QList<double>>> innerShares;
    // The inner splits' own factors come first, their panes' after them.
    int splitFactor = 0;
    int paneFactor = int(std::count_if(shape.items.begin(), shape.items.end(),
                                       [](const Shape::Item& item) { return item.isSplit(); }));
    for (const Shape::Item& item : shape.items) {
        if (!item.isSplit()) {
            root->addWidget(panes[size_t(item.pane)]);
            panes[size_t(item.pane)]->show();
            // Beside an inner split a pane takes what the split leaves; alone it has its own.
            rootShares.append(shape.hasInnerSplit() ? 1.0 - factors[0]
                                                    : factors[rootShares.size()]);
            continue;
        }
        auto* inner = new ARXHandySplitView(orientationOf(shape.across()), root);
        QList<double> shares;
        for (int index : item.inner) {
            inner->addWidget(panes[size_t(index)]);
            panes[size_t(index)]->show();
            shares.append(factors[paneFactor++]);
        }
        root->addWidget(inner);
        inner->show();
        rootShares.append(factors[splitFactor++]);
        innerShares.emplace_back(inner, shares);
    }
    box->addWidget(root);
    root->show();
    setProportions(root, rootShares);
    for (const auto& [inner, shares] : innerShares) {
        setProportions(inner, shares);
    }
}

QList<double> ARXAtriumLayoutBuilder::currentFactors(const QWidget* container, const Panes& panes,
                                                     ARXAtriumLayoutId id) {
    QList<double> result;
    const Shape& shape = ARXAtriumLayout::shape(id);
    if (!container || shape.root == Split::none) {
        return result;
    }
    // One factor: `measured` over `reference`, along the reference split's direction. A missing
    // widget, or a reference without a size (nothing shown yet), ends the list there.
    auto gather = [&result](const QWidget* measured, const QWidget* reference,
                            Qt::Orientation orientation) {
        if (!measured || !reference || extent(reference, orientation) <= 0) {
            return false;
        }
        result.append(double(extent(measured, orientation)) /
                      double(extent(reference, orientation)));
        return true;
    };
    const Qt::Orientation rootOrientation = orientationOf(shape.root);
    const Qt::Orientation innerOrientation = orientationOf(shape.across());

    if (!shape.hasInnerSplit()) {
        for (const Shape::Item& item : shape.items) {
            const QWidget* pane = panes[size_t(item.pane)];
            if (!gather(pane, splitOf(pane), rootOrientation)) {
                return result;
            }
        }
        return result;
    }
    for (const Shape::Item& item : shape.items) {
        if (item.isSplit() &&
            !gather(splitOf(panes[size_t(item.inner.front())]), container, rootOrientation)) {
            return result;
        }
    }
    for (const Shape::Item& item : shape.items) {
        for (int index : item.inner) {
            const QWidget* pane = panes[size_t(index)];
            if (!gather(pane, splitOf(pane), innerOrientation)) {
                return result;
            }
        }
    }
    return result;
}

bool ARXAtriumLayoutBuilder::isPlaced(const QWidget* pane) {
    const QWidget* parent = pane ? pane->parentWidget() : nullptr;
    if (!parent) {
        return false;
    }
    return qobject_cast<const ARXHandySplitView*>(parent) ||
           parent->property(kContainerProperty).toBool();
}

ARXHandySplitView* ARXAtriumLayoutBuilder::rootSplit(const QWidget* container) {
    if (!container) {
        return nullptr;
    }
    const QList<ARXHandySplitView*> splits =
        container->findChildren<ARXHandySplitView*>(Qt::FindDirectChildrenOnly);
    return splits.isEmpty() ? nullptr : splits.front();
}
