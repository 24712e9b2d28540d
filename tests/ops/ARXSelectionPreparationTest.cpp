#include "ops/ARXSelectionPreparation.h"

#include "support/ARXTestEnvironment.h"

class ARXSelectionPreparationTest : public ARXTestEnvironment {
protected:
    ARXFileEntryRef entry(const std::string& relative) const {
        return ARXFileEntry::create(ARXPath::join(root(), relative), nullptr, false, false, false);
    }
    static std::vector<Path> paths(const std::vector<ARXFileEntryRef>& entries) {
        std::vector<Path> result;
        for (const ARXFileEntryRef& e : entries) {
            result.push_back(e->path());
        }
        return result;
    }
};

TEST_F(ARXSelectionPreparationTest, KeepsTopLevelEntriesInPathOrder) {
    const ARXFileEntryRef pane = entry("pane");
    const ARXFileEntryRef folder = entry("pane/folder");
    const ARXFileEntryRef file = entry("pane/folder/file");
    const ARXFileEntryRef other = entry("pane/b");
    const ARXFileEntryRef sibling = entry("pane/folder2"); // shares a prefix, lies not inside
    const ARXFileEntryRef again = entry("pane/b");

    const auto result =
        ARXSelectionPreparation::topLevelEntries({file, sibling, other, folder, again}, *pane);
    EXPECT_EQ(paths(result), (std::vector<Path>{other->path(), folder->path(), sibling->path()}));
    EXPECT_EQ(result[0], other); // of two entries for one path, the first given stands
    EXPECT_EQ(result[1], folder);

    // One entry stays as it is.
    EXPECT_EQ(ARXSelectionPreparation::topLevelEntries({file}, *pane),
              std::vector<ARXFileEntryRef>{file});
    EXPECT_TRUE(ARXSelectionPreparation::topLevelEntries({}, *pane).empty());
}

TEST_F(ARXSelectionPreparationTest, NothingWhenTheSelectionHoldsTheRootOrAFolderAboveIt) {
    const ARXFileEntryRef pane = entry("a/pane");
    const ARXFileEntryRef inside = entry("a/pane/x");
    EXPECT_TRUE(ARXSelectionPreparation::touchesRoot({inside, entry("a/pane")}, *pane));
    EXPECT_TRUE(ARXSelectionPreparation::topLevelEntries({inside, entry("a")}, *pane).empty());
    EXPECT_TRUE(ARXSelectionPreparation::topLevelEntries({entry("a/pane/")}, *pane).empty());
    EXPECT_FALSE(ARXSelectionPreparation::touchesRoot({inside, entry("a/pane2")}, *pane));
}
