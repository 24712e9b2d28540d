#include "model/ARXSpaceHistory.h"

#include "support/ARXTestEnvironment.h"

#include <gtest/gtest.h>

namespace {

class ARXSpaceHistoryTest : public ARXTestEnvironment {
protected:
    static ARXFileEntryRef place(const std::string& name) {
        return ARXFileEntry::create("/places/" + name, nullptr, false, false, false);
    }

    static std::vector<std::string> names(const ARXSpaceHistory& history) {
        std::vector<std::string> out;
        for (const ARXFileEntryRef& entry : history.entries()) {
            out.emplace_back(entry->name());
        }
        return out;
    }
};

TEST_F(ARXSpaceHistoryTest, GoingSomewhereFromTheMiddleDropsTheForwardPart) {
    ARXSpaceHistory history;
    for (const char* name : {"a", "b", "c", "d"}) {
        history.push(place(name));
    }
    EXPECT_EQ(history.back()->name(), "c");
    EXPECT_EQ(history.back()->name(), "b");
    EXPECT_TRUE(history.canGoForward());
    history.push(place("e"));
    EXPECT_EQ(names(history), (std::vector<std::string>{"a", "b", "e"}));
    EXPECT_EQ(history.index(), 2);
    EXPECT_FALSE(history.canGoForward());
}

TEST_F(ARXSpaceHistoryTest, ReshowingThePlaceOrItsNeighbourAddsNothing) {
    ARXSpaceHistory history;
    const ARXFileEntryRef a = place("a");
    history.push(a);
    history.push(place("b"));
    // A refresh lands on the entry the index stands on.
    history.push(place("b"));
    EXPECT_EQ(names(history), (std::vector<std::string>{"a", "b"}));
    // Going back lands on an existing place and keeps the list and the forward part.
    ARXFileEntryRef back = history.back();
    EXPECT_EQ(back, a);
    history.push(back);
    EXPECT_EQ(names(history), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(history.index(), 0);
    // An earlier visit elsewhere in the list stays where it is: only the neighbour is compared.
    history.forward();
    history.push(place("a"));
    EXPECT_EQ(names(history), (std::vector<std::string>{"a", "b", "a"}));
}

TEST_F(ARXSpaceHistoryTest, KeepsTheFiftyLatestPlacesWithTheIndexOnTheLast) {
    ARXSpaceHistory history;
    for (int i = 0; i < 51; ++i) {
        history.push(place(std::to_string(i)));
    }
    ASSERT_EQ(history.entries().size(), 50u);
    EXPECT_EQ(history.entries().front()->name(), "1");
    EXPECT_EQ(history.index(), 49);
}

TEST_F(ARXSpaceHistoryTest, AnEmptyListGoesNowhereAndIndexesAreClamped) {
    ARXSpaceHistory history;
    EXPECT_FALSE(history.canGoBack());
    EXPECT_EQ(history.back(), nullptr);
    EXPECT_EQ(history.forward(), nullptr);
    history.setEntries({place("a"), place("b")}, 7);
    EXPECT_EQ(history.index(), 1);
    history.setIndex(-3);
    EXPECT_EQ(history.index(), 0);
    history.setEntries({}, 4);
    EXPECT_EQ(history.index(), 0);
}

} // namespace
