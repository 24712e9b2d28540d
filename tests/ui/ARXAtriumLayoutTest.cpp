#include "ui/layout/ARXAtriumLayout.h"

#include "support/ARXTestEnvironment.h"
#include "ui/layout/ARXAtriumLayoutBuilder.h"
#include "ui/layout/ARXHandySplitView.h"
#include "ui/layout/ARXLayoutPicture.h"

#include <QImage>
#include <QPainter>
#include <QPointer>
#include <QSplitter>
#include <QWidget>

#include <gtest/gtest.h>

#include <memory>

namespace {

using Id = ARXAtriumLayoutId;
using Builder = ARXAtriumLayoutBuilder;

// ----- the tables

TEST(ARXAtriumLayoutTable, StoredFactorsOfTheWrongLengthAreNotUsedNorTouched) {
    ARXAtriumLayout layout(Id::layout_2, QList<double>{0.7, 0.2});
    EXPECT_EQ(layout.effectiveFactors(), QList<double>(3, 0.5));
    EXPECT_EQ(layout.factors, (QList<double>{0.7, 0.2}));
    layout.factors = QList<double>{0.7, 0.2, 0.8};
    EXPECT_EQ(layout.effectiveFactors(), (QList<double>{0.7, 0.2, 0.8}));
    EXPECT_TRUE(ARXAtriumLayout(Id::layout_7, QList<double>{1.0}).effectiveFactors().isEmpty());
}

TEST(ARXAtriumLayoutTable, EveryPlacedPaneCanMoveAndNoHiddenOne) {
    // Only the single-pane layout leaves a placed pane nowhere to go.
    for (Id id : ARXAtriumLayout::all()) {
        for (int pane = 0; pane < 4; ++pane) {
            const bool placed = pane <= ARXAtriumLayout::lastIndex(id);
            EXPECT_EQ(ARXAtriumLayout::canMoveDirs(id, pane).empty(), !placed || id == Id::layout_7)
                << int(id) << " pane " << pane;
        }
    }
}

// ----- building the trees

class ARXAtriumLayoutBuild : public ARXTestEnvironment {
protected:
    void SetUp() override {
        ARXTestEnvironment::SetUp();
        container = std::make_unique<QWidget>();
        container->resize(kWidth, kHeight);
        for (size_t i = 0; i < panes.size(); ++i) {
            owned[i] = std::make_unique<QWidget>();
            owned[i]->setObjectName(QStringLiteral("p%1").arg(i));
            panes[i] = owned[i].get();
        }
    }
    void TearDown() override {
        // The container owns the panes after a build; the rest go with their unique_ptr.
        for (auto& pane : owned) {
            if (pane && pane->parent()) {
                (void)pane.release();
            }
        }
        container.reset();
        ARXTestEnvironment::TearDown();
    }

    void buildShown(const ARXAtriumLayout& layout) {
        Builder::build(container.get(), panes, layout);
        container->show();
        flushEvents();
    }

    // The tree in the container as text: "columns(p0,rows(p1,p2))".
    std::string tree() const {
        if (QSplitter* root = Builder::rootSplit(container.get())) {
            return describe(root);
        }
        for (QWidget* pane : panes) {
            if (pane->parentWidget() == container.get() && Builder::isPlaced(pane)) {
                return pane->objectName().toStdString();
            }
        }
        return "nothing";
    }
    static std::string describe(QWidget* widget) {
        auto* split = qobject_cast<QSplitter*>(widget);
        if (!split) {
            return widget->objectName().toStdString();
        }
        std::string text = split->orientation() == Qt::Horizontal ? "columns(" : "rows(";
        for (int i = 0; i < split->count(); ++i) {
            text += (i ? "," : "") + describe(split->widget(i));
        }
        return text + ")";
    }

    // Each pane's geometry in the container's coordinates.
    std::vector<QRect> frames(int count) const {
        std::vector<QRect> result;
        for (int i = 0; i < count; ++i) {
            QWidget* pane = panes[size_t(i)];
            result.emplace_back(pane->mapTo(container.get(), QPoint(0, 0)), pane->size());
        }
        return result;
    }

    void expectFactorsNear(const QList<double>& actual, const QList<double>& expected) const {
        ASSERT_EQ(actual.size(), expected.size());
        // Within two pixels of the smaller side: handles take a pixel from the panes.
        const double tolerance = 2.0 / std::min(kWidth, kHeight);
        for (qsizetype i = 0; i < actual.size(); ++i) {
            EXPECT_NEAR(actual[i], expected[i], tolerance) << "factor " << i;
        }
    }

    static constexpr int kWidth = 901;
    static constexpr int kHeight = 601;
    std::unique_ptr<QWidget> container;
    std::array<std::unique_ptr<QWidget>, 4> owned;
    Builder::Panes panes{};
};

TEST_F(ARXAtriumLayoutBuild, EachLayoutBuildsItsTreeAndLeavesTheOtherPanesOut) {
    const std::vector<std::string> trees = {
        "rows(columns(p0,p1),columns(p2,p3))",
        "columns(p0,p1)",
        "columns(rows(p0,p2),p1)",
        "columns(p0,rows(p1,p2))",
        "rows(p0,columns(p1,p2))",
        "rows(columns(p0,p1),p2)",
        "rows(p0,p1)",
        "p0",
        "columns(p0,p1,p2)",
        "columns(p0,p1,p2,p3)",
        "rows(p0,p1,p2)",
        "rows(p0,p1,p2,p3)",
    };
    container->show();
    for (Id id : ARXAtriumLayout::all()) {
        Builder::build(container.get(), panes, ARXAtriumLayout(id));
        flushEvents();
        EXPECT_EQ(tree(), trees[size_t(id)]) << int(id);
        for (int i = 0; i < 4; ++i) {
            QWidget* pane = panes[size_t(i)];
            const bool placed = i <= ARXAtriumLayout::lastIndex(id);
            EXPECT_EQ(Builder::isPlaced(pane), placed) << int(id) << " pane " << i;
            EXPECT_EQ(pane->isVisible(), placed) << int(id) << " pane " << i;
            // Out of sight, never out of the container: the pane keeps living with it.
            EXPECT_TRUE(container->isAncestorOf(pane));
        }
        EXPECT_LE(container->findChildren<QSplitter*>(Qt::FindDirectChildrenOnly).size(), 1);
    }
}

TEST_F(ARXAtriumLayoutBuild, ARebuildDropsTheOldSplitsAndFillsTheContainer) {
    buildShown(ARXAtriumLayout(Id::layout_0));
    QPointer<QSplitter> old = Builder::rootSplit(container.get());
    ASSERT_TRUE(old);
    Builder::build(container.get(), panes, ARXAtriumLayout(Id::layout_7));
    EXPECT_EQ(Builder::rootSplit(container.get()), nullptr);
    flushEvents();
    EXPECT_TRUE(old.isNull());
    EXPECT_EQ(frames(1)[0], container->rect());
    EXPECT_TRUE(Builder::currentFactors(container.get(), panes, Id::layout_7).isEmpty());

    Builder::build(container.get(), panes, ARXAtriumLayout(Id::layout_1));
    flushEvents();
    EXPECT_EQ(Builder::rootSplit(container.get())->geometry(), container->rect());
}

TEST_F(ARXAtriumLayoutBuild, DefaultFactorsReadBackFromTheFrames) {
    for (Id id : ARXAtriumLayout::all()) {
        Builder::build(container.get(), panes, ARXAtriumLayout(id));
        container->show();
        flushEvents();
        SCOPED_TRACE(int(id));
        expectFactorsNear(Builder::currentFactors(container.get(), panes, id),
                          ARXAtriumLayout::defaultFactors(id));
    }
}

TEST_F(ARXAtriumLayoutBuild, StoredFactorsShapeThePanes) {
    // The inner split's share first, then its panes'; the pane beside it takes the rest.
    buildShown(ARXAtriumLayout(Id::layout_2, QList<double>{0.7, 0.25, 0.75}));
    std::vector<QRect> f = frames(3);
    EXPECT_NEAR(f[1].width(), 0.3 * kWidth, 2);
    EXPECT_NEAR(f[0].height(), 0.25 * kHeight, 2);
    EXPECT_NEAR(f[0].width(), 0.7 * kWidth, 2);

    const QList<double> six = {0.3, 0.7, 0.2, 0.8, 0.6, 0.4};
    Builder::build(container.get(), panes, ARXAtriumLayout(Id::layout_0, six));
    flushEvents();
    f = frames(4);
    EXPECT_NEAR(f[0].height(), 0.3 * kHeight, 2);
    EXPECT_NEAR(f[2].height(), 0.7 * kHeight, 2);
    EXPECT_NEAR(f[0].width(), 0.2 * kWidth, 2);
    EXPECT_NEAR(f[3].width(), 0.4 * kWidth, 2);
    expectFactorsNear(Builder::currentFactors(container.get(), panes, Id::layout_0), six);
}

TEST_F(ARXAtriumLayoutBuild, FactorsHoldWhetherBuiltBeforeOrAfterShowing) {
    const QList<double> factors = {0.35, 0.2, 0.8};
    // Built while hidden at another size, then shown at the real one.
    container->resize(300, 200);
    Builder::build(container.get(), panes, ARXAtriumLayout(Id::layout_3, factors));
    container->resize(kWidth, kHeight);
    container->show();
    flushEvents();
    expectFactorsNear(Builder::currentFactors(container.get(), panes, Id::layout_3), factors);
    // Built again while shown.
    Builder::build(container.get(), panes, ARXAtriumLayout(Id::layout_3, factors));
    flushEvents();
    expectFactorsNear(Builder::currentFactors(container.get(), panes, Id::layout_3), factors);
    // The window grows: the shares stay.
    container->resize(kWidth * 3 / 2, kHeight);
    flushEvents();
    const QList<double> grown = Builder::currentFactors(container.get(), panes, Id::layout_3);
    ASSERT_EQ(grown.size(), 3);
    EXPECT_NEAR(grown[0], 0.35, 0.005);
}

TEST_F(ARXAtriumLayoutBuild, DraggedSizesSurviveARebuildFromTheirFactors) {
    for (Id id : {Id::layout_0, Id::layout_3, Id::layout_5, Id::layout_9, Id::layout_10}) {
        SCOPED_TRACE(int(id));
        buildShown(ARXAtriumLayout(id));
        // Drag every handle: the first child of every split loses a third of its size.
        QSplitter* root = Builder::rootSplit(container.get());
        ASSERT_TRUE(root);
        for (QSplitter* split : container->findChildren<QSplitter*>()) {
            QList<int> sizes = split->sizes();
            const int moved = sizes[0] / 3;
            sizes[0] -= moved;
            sizes[1] += moved;
            split->setSizes(sizes);
        }
        flushEvents();
        const int count = ARXAtriumLayout::paneCount(id);
        const std::vector<QRect> dragged = frames(count);
        const QList<double> factors = Builder::currentFactors(container.get(), panes, id);
        ASSERT_EQ(factors.size(), ARXAtriumLayout::factorCount(id));
        EXPECT_NE(factors, ARXAtriumLayout::defaultFactors(id));

        // A fresh workspace of the same size.
        TearDown();
        SetUp();
        buildShown(ARXAtriumLayout(id, factors));
        const std::vector<QRect> restored = frames(count);
        for (int i = 0; i < count; ++i) {
            EXPECT_NEAR(restored[size_t(i)].left(), dragged[size_t(i)].left(), 1) << i;
            EXPECT_NEAR(restored[size_t(i)].top(), dragged[size_t(i)].top(), 1) << i;
            EXPECT_NEAR(restored[size_t(i)].width(), dragged[size_t(i)].width(), 1) << i;
            EXPECT_NEAR(restored[size_t(i)].height(), dragged[size_t(i)].height(), 1) << i;
        }
    }
}

TEST_F(ARXAtriumLayoutBuild, MissingSplitsEndTheFactorList) {
    // Nothing built, or nothing shown yet: nothing to read.
    EXPECT_TRUE(Builder::currentFactors(container.get(), panes, Id::layout_1).isEmpty());
    // Built as layout_1 but read as layout_0: the first row reads, p2 has no split.
    buildShown(ARXAtriumLayout(Id::layout_1));
    const QList<double> partial = Builder::currentFactors(container.get(), panes, Id::layout_0);
    ASSERT_EQ(partial.size(), 1);
    EXPECT_DOUBLE_EQ(partial[0], 1.0);
}

TEST_F(ARXAtriumLayoutBuild, HandySplitsAreThinAndKeepTheirShares) {
    panes[1]->setSizePolicy(QSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred));
    QSizePolicy stretchy = panes[1]->sizePolicy();
    stretchy.setHorizontalStretch(5);
    panes[1]->setSizePolicy(stretchy);
    buildShown(ARXAtriumLayout(Id::layout_1, QList<double>{0.3, 0.7}));
    auto* root = Builder::rootSplit(container.get());
    ASSERT_TRUE(root);
    EXPECT_TRUE(root->isHandy());
    EXPECT_EQ(root->handleWidth(), 1);
    EXPECT_FALSE(root->childrenCollapsible());
    container->resize(kWidth * 2, kHeight);
    flushEvents();
    // A stretch factor on one pane would have given it all of the new room.
    EXPECT_NEAR(panes[0]->width(), 0.3 * kWidth * 2, 3);
}

// ----- pictures

TEST(ARXAtriumLayoutPicture, DrawsTheTreeInTheTextColour) {
    QPalette dark;
    dark.setColor(QPalette::Text, Qt::white);
    auto opaque = [](const QImage& image, int x, int y) { return qAlpha(image.pixel(x, y)) > 128; };
    const QImage single = ARXLayoutPicture::pixmap(Id::layout_7, 1.0, dark).toImage();
    const QImage columns = ARXLayoutPicture::pixmap(Id::layout_1, 1.0, dark).toImage();
    const QImage rows = ARXLayoutPicture::pixmap(Id::layout_6, 1.0, dark).toImage();
    ASSERT_EQ(single.size(), QSize(24, 18));
    const QPoint centre(12, 9);
    EXPECT_FALSE(opaque(single, centre.x(), centre.y()));
    EXPECT_TRUE(opaque(single, 1, centre.y())); // the outline
    EXPECT_TRUE(opaque(columns, centre.x(), 5));
    EXPECT_FALSE(opaque(columns, 5, centre.y()));
    EXPECT_TRUE(opaque(rows, 5, centre.y()));
    EXPECT_EQ(QColor(columns.pixel(centre.x(), 5)).rgb(), QColor(Qt::white).rgb());
    EXPECT_EQ(ARXLayoutPicture::pixmap(Id::layout_0, 2.0, dark).size(), QSize(48, 36));
    EXPECT_FALSE(ARXLayoutPicture::icon(Id::layout_9).isNull());
}

} // namespace
