#include "model/ARXFileEntryRemovals.h"

#include "ARXFileEntryFixture.h"

namespace {

using ARXFileEntryRemovalsTest = ARXFileEntryFixture;

TEST_F(ARXFileEntryRemovalsTest, GroupsPositionsByFolderInTheOrderFoldersCameIn) {
    for (const char* path : {"top/two/p", "top/two/q", "top/one/a", "top/one/b", "top/one/c"}) {
        writeFile(at(path), "");
    }
    const ARXFileEntryRef top = rootEntry("top");
    ASSERT_TRUE(top->prepare(false));
    const ARXFileEntryRef one = top->find(at("top/one"));
    const ARXFileEntryRef two = top->find(at("top/two"));
    ASSERT_TRUE(one->prepare(false));
    ASSERT_TRUE(two->prepare(false));

    ARXFileEntryRemovals removals;
    EXPECT_TRUE(removals.empty());
    removals.add(top->find(at("top/two/q")));
    removals.add(top->find(at("top/one/c")));
    removals.add(top->find(at("top/one/a")));
    removals.add(top->find(at("top/one/a"))); // once is enough
    removals.add(top);                        // no parent: ignored
    removals.add(nullptr);

    ASSERT_EQ(removals.entries().size(), 2u);
    EXPECT_EQ(removals.count(), 3u);
    const ARXFileEntryRemoval& first = removals.entries()[0];
    EXPECT_EQ(first.parent, two);
    EXPECT_EQ(first.indexes, (std::map<size_t, ARXFileEntryRef>{{1, two->children()[1]}}));
    const ARXFileEntryRemoval& second = removals.entries()[1];
    EXPECT_EQ(second.parent, one);
    EXPECT_EQ(second.indexes, (std::map<size_t, ARXFileEntryRef>{{0, one->children()[0]},
                                                                 {2, one->children()[2]}}));

    // An entry its folder no longer holds leaves the folder's record without a position.
    const ARXFileEntryRef p = top->find(at("top/two/p"));
    ASSERT_EQ(two->removePaths({at("top/two/p")}), 1u);
    ARXFileEntryRemovals late;
    late.add(p);
    ASSERT_EQ(late.entries().size(), 1u);
    EXPECT_EQ(late.entries()[0].parent, two);
    EXPECT_TRUE(late.entries()[0].indexes.empty());
}

} // namespace
