#include "app/ARXWindowSession.h"

#include "app/ARXCloseTabAction.h"
#include "app/ARXConf.h"
#include "app/ARXWindowFrame.h"
#include "support/ARXTestEnvironment.h"

#include <gtest/gtest.h>

namespace {

using Groups = QList<QStringList>;

class ARXWindowSessionTest : public ARXTestEnvironment {};

TEST_F(ARXWindowSessionTest, AGroupClosedWithinHalfSecondStepsIsValidated) {
    ARXCloseTabAction action({"A", "B", "C"}, 100.0);
    EXPECT_EQ(action.remains(), (QStringList{"B", "C"}));
    EXPECT_TRUE(action.check("B", 100.3));
    EXPECT_FALSE(action.validated());
    EXPECT_TRUE(action.check("C", 100.7)); // 0.4 s after the last step, 0.7 s after the first
    EXPECT_TRUE(action.validated());

    // A second apart: the check fails and nothing is validated.
    ARXCloseTabAction slow({"A", "B"}, 100.0);
    EXPECT_FALSE(slow.check("B", 101.0));
    EXPECT_FALSE(slow.validated());
    // A name of another group never belongs.
    EXPECT_FALSE(action.check("Z", 100.8));
}

TEST_F(ARXWindowSessionTest, AGroupOfOneAndRepeatedTitles) {
    ARXCloseTabAction single({"Solo"}, 5.0);
    EXPECT_TRUE(single.remains().isEmpty());
    EXPECT_FALSE(single.validated());
    EXPECT_TRUE(single.check("Solo", 5.1));
    EXPECT_TRUE(single.validated());

    ARXCloseTabAction twice({"A", "A", "A"}, 0.0);
    EXPECT_TRUE(twice.check("A", 0.1));
    EXPECT_FALSE(twice.validated());
    EXPECT_TRUE(twice.check("A", 0.2));
    EXPECT_TRUE(twice.validated());
}

TEST_F(ARXWindowSessionTest, TheLastWindowIsRememberedAloneOrWithItsGroup) {
    ARXCloseTabAction group({"A", "B"}, 0.0);
    group.check("B", 0.1);
    ARXWindowSession::rememberLastWindow(group, QStringLiteral("B"));
    EXPECT_EQ(ARXConf::cached_open_atrium_tab_names().value(), (Groups{{"A", "B"}}));
    EXPECT_TRUE(ARXConf::cached_open_atrium_names().value().isEmpty());

    // Tabs closed one at a time: only the last name comes back.
    ARXCloseTabAction broken({"A", "B"}, 0.0);
    ARXWindowSession::rememberLastWindow(broken, QStringLiteral("B"));
    EXPECT_EQ(ARXConf::cached_open_atrium_names().value(), QStringList{"B"});
    EXPECT_EQ(ARXConf::cached_open_atrium_tab_names().value(), (Groups{QStringList()}));

    // A validated group that the last closed window was not part of does not count.
    ARXWindowSession::rememberLastWindow(group, QStringLiteral("Other"));
    EXPECT_EQ(ARXConf::cached_open_atrium_names().value(), QStringList{"Other"});
    ARXWindowSession::rememberLastWindow(std::nullopt, std::nullopt);
    EXPECT_TRUE(ARXConf::cached_open_atrium_names().value().isEmpty());
}

TEST_F(ARXWindowSessionTest, EndingWritesWindowsAndGroupsOrNothing) {
    ARXConf::cached_open_atrium_names().setValue({"Kept"});
    ARXWindowSession::rememberOpenWindows({});
    EXPECT_EQ(ARXConf::cached_open_atrium_names().value(), QStringList{"Kept"});

    ARXWindowSession::rememberOpenWindows({{"One"}, {"A", "B"}, {"B", "A"}, {"Two"}});
    EXPECT_EQ(ARXConf::cached_open_atrium_names().value(), (QStringList{"One", "Two"}));
    EXPECT_EQ(ARXConf::cached_open_atrium_tab_names().value(), (Groups{{"A", "B"}}));
}

TEST_F(ARXWindowSessionTest, FramesOffEveryScreenOrOfTheWrongSizeAreReplaced) {
    const QList<QRectF> screens{QRectF(0, 0, 1920, 1050), QRectF(1920, 0, 1280, 1000)};
    ARXAtriumData data;
    data.frame = QRectF(2000, 100, 800, 600); // on the second screen
    ARXWindowPlacement placed = ARXWindowFrame::place(data, screens, false);
    EXPECT_EQ(placed.frame, data.frame);
    EXPECT_FALSE(placed.center);

    for (const QRectF& bad : {QRectF(5000, 5000, 800, 600), QRectF(10, 10, 300, 600),
                              QRectF(10, 10, 800, 90), QRectF(2000, 0, 1300, 600), QRectF()}) {
        ARXAtriumData saved;
        saved.frame = bad;
        placed = ARXWindowFrame::place(saved, screens, false);
        EXPECT_TRUE(placed.center);
        EXPECT_EQ(placed.frame.size(), QSizeF(1280, 892.5)); // 0.85 of the main screen's height
        EXPECT_EQ(placed.frame.center(), screens.front().center());
    }

    data.fullscreen = true;
    placed = ARXWindowFrame::place(data, screens, false);
    EXPECT_TRUE(placed.fullScreen);
    EXPECT_EQ(placed.frame.size(), ARXWindowFrame::kStandardSize);
    // A tab never opens in full screen.
    EXPECT_FALSE(ARXWindowFrame::place(data, screens, true).fullScreen);
}

} // namespace
