#include "ARXFileEntryFixture.h"
#include "model/ARXFileEntry.h"
#include "model/ARXSecurityScopedCache.h"
#include "support/ARXTestImages.h"

#include <atomic>
#include <thread>

namespace {

using Column = ARXSpaceViewColumnId;
using Names = std::vector<std::string>;

class ARXFileEntryOrderTest : public ARXFileEntryFixture {
protected:
    // A folder of empty files (and folders, for names ending in "/").
    ARXFileEntryRef listed(const std::vector<std::string>& items, bool hiddenVisible = false) {
        makeFolder(at("dir"));
        for (const std::string& item : items) {
            if (item.ends_with('/')) {
                makeFolder(at("dir/" + item));
            } else {
                writeFile(at("dir/" + item), "");
            }
        }
        ARXFileEntryRef dir = rootEntry("dir", hiddenVisible);
        EXPECT_TRUE(dir->prepare(false));
        return dir;
    }
};

TEST_F(ARXFileEntryOrderTest, ListsOnceUnlessForced) {
    const ARXFileEntryRef dir = listed({});
    EXPECT_TRUE(dir->expanded);
    EXPECT_TRUE(dir->children().empty());
    writeFile(at("dir/new"), "");
    EXPECT_TRUE(dir->prepare(false));
    EXPECT_TRUE(dir->children().empty());
    EXPECT_TRUE(dir->prepare(true));
    EXPECT_EQ(names(dir->children()), Names{"new"});
    EXPECT_EQ(dir->children().front()->parent(), dir);
}

TEST_F(ARXFileEntryOrderTest, NamesSortNaturallyIgnoringCase) {
    const ARXFileEntryRef dir =
        listed({"file10", "file9", "File1", "banana", "Apple", "line\nfeed", "line?a", "line?z"});
    EXPECT_EQ(names(dir->children()), (Names{"Apple", "banana", "File1", "file9", "file10",
                                             "line?a", "line\nfeed", "line?z"}));
    dir->sort(Column::name, false, false);
    EXPECT_EQ(dir->children().front()->name(), "line?z");
    EXPECT_EQ(dir->children().back()->name(), "Apple");
}

TEST_F(ARXFileEntryOrderTest, NamesThatAreNotUtf8ListAndSort) {
    const ARXFileEntryRef dir = listed({"b", std::string("caf\xe9"), std::string("a\xff\xfe")});
    EXPECT_EQ(names(dir->children()), (Names{std::string("a\xff\xfe"), "b", "caf\xe9"}));
    EXPECT_TRUE(dir->children().back()->isExists);
}

TEST_F(ARXFileEntryOrderTest, KindPutsFoldersFirstAndExtensionsBackwards) {
    const ARXFileEntryRef dir = listed({"b.txt", "a.txt", "c.pdf", "zeta/", "alpha/"});
    dir->sort(Column::kind, true, false);
    EXPECT_EQ(names(dir->children()), (Names{"alpha", "zeta", "a.txt", "b.txt", "c.pdf"}));
    dir->sort(Column::kind, false, false);
    EXPECT_EQ(names(dir->children()), (Names{"zeta", "alpha", "c.pdf", "b.txt", "a.txt"}));
}

TEST_F(ARXFileEntryOrderTest, SizeAndDatesKeepFoldersOnTopAndEqualKeysInPlace) {
    const ARXFileEntryRef dir = listed({"small", "big", "same1", "same2", "f1/", "f2/"});
    for (const ARXFileEntryRef& child : dir->children()) {
        const std::string name(child->name());
        child->size = name == "big" ? 900 : name == "small" ? 10 : name == "f2" ? 5000 : 100;
    }
    dir->sort(Column::size, false, true);
    EXPECT_EQ(names(dir->children()), (Names{"f2", "f1", "big", "same1", "same2", "small"}));
    dir->sort(Column::size, true, true);
    EXPECT_EQ(names(dir->children()), (Names{"f1", "f2", "small", "same1", "same2", "big"}));

    setModified(at("dir/small"), 3000);
    setModified(at("dir/big"), 1000);
    setModified(at("dir/same1"), 2000);
    setModified(at("dir/same2"), 2000);
    setModified(at("dir/f1"), 500);
    setModified(at("dir/f2"), 4000);
    for (const ARXFileEntryRef& child : dir->children()) {
        child->refresh(true);
    }
    dir->sort(Column::name, true, false);
    dir->sort(Column::modified, true, false);
    EXPECT_EQ(names(dir->children()), (Names{"f1", "big", "same1", "same2", "small", "f2"}));
    dir->sort(Column::modified, false, false);
    EXPECT_EQ(names(dir->children()), (Names{"f2", "small", "same1", "same2", "big", "f1"}));
}

TEST_F(ARXFileEntryOrderTest, DimensionsPutImagesFirstAndLeaveTheRestInPlace) {
    const auto png = [](int width) { return ARXImageBytes(width, 4); };
    makeFolder(at("dir/folder"));
    writeFile(at("dir/wide.png"), png(30));
    writeFile(at("dir/narrow.png"), png(10));
    writeFile(at("dir/middle.png"), png(20));
    writeFile(at("dir/text.txt"), "x");
    const ARXFileEntryRef dir = rootEntry("dir");
    ASSERT_TRUE(dir->prepare(false));
    dir->sort(Column::name, false, true); // folder, text.txt, ... as the previous order
    dir->sort(Column::dimensions, true, true);
    EXPECT_EQ(names(dir->children()),
              (Names{"narrow.png", "middle.png", "wide.png", "folder", "text.txt"}));
    dir->sort(Column::dimensions, false, true);
    EXPECT_EQ(names(dir->children()),
              (Names{"wide.png", "middle.png", "narrow.png", "folder", "text.txt"}));
}

TEST_F(ARXFileEntryOrderTest, SortReachesLoadedDescendantsAndTags) {
    const ARXFileEntryRef dir = listed({"sub/", "x"});
    writeFile(at("dir/sub/b"), "");
    writeFile(at("dir/sub/a"), "");
    const ARXFileEntryRef sub = dir->find(at("dir/sub"));
    ASSERT_TRUE(sub && sub->prepare(false));
    EXPECT_EQ(names(sub->children()), (Names{"a", "b"}));
    sub->children()[0]->tags = QStringList{"Zed"};
    sub->children()[1]->tags = QStringList{"Alpha", "Beta"};
    dir->sort(Column::tags, true, false);
    EXPECT_EQ(sub->sortColumn, Column::tags);
    EXPECT_EQ(names(sub->children()), (Names{"b", "a"}));
    EXPECT_EQ(names(dir->children()), (Names{"sub", "x"})); // no tags: "" first
}

TEST_F(ARXFileEntryOrderTest, RevealingAndHidingKeepExistingChildren) {
    writeFile(at("dir/.hidden"), "secret\n");
    writeFile(at("dir/sub/.inner"), "");
    const ARXFileEntryRef dir = listed({"secret", ".dot", "b", "a"});
    EXPECT_EQ(names(dir->children()), (Names{"a", "b", "sub"}));
    const ARXFileEntryRef sub = dir->find(at("dir/sub"));
    ASSERT_TRUE(sub->prepare(false));
    const ARXFileEntryList before = dir->children();

    dir->revealHidden();
    EXPECT_TRUE(dir->hiddenVisible());
    EXPECT_EQ(names(dir->children()), (Names{".dot", ".hidden", "a", "b", "secret", "sub"}));
    for (const ARXFileEntryRef& old : before) {
        EXPECT_NE(std::find(dir->children().begin(), dir->children().end(), old),
                  dir->children().end());
    }
    EXPECT_EQ(names(sub->children()), Names{".inner"});

    // Hiding filters without sorting.
    dir->sort(Column::name, false, false);
    dir->hideHidden();
    EXPECT_EQ(names(dir->children()), (Names{"sub", "b", "a"}));
    EXPECT_TRUE(sub->children().empty());
}

TEST_F(ARXFileEntryOrderTest, FolderChildrenAreCachedUntilTheChildrenChange) {
    makeFolder(at("elsewhere"));
    const ARXFileEntryRef dir = listed({"b/", "a.app/", "file"});
    symlinkTo(at("elsewhere"), at("dir/link"));
    EXPECT_EQ(names(dir->folderChildren()), Names{"b"});
    EXPECT_TRUE(dir->preparedFolderChildren());
    ASSERT_TRUE(dir->addChild(at("dir/link")));
    EXPECT_FALSE(dir->preparedFolderChildren());
    EXPECT_EQ(names(dir->folderChildren()), (Names{"b", "link"}));
}

TEST_F(ARXFileEntryOrderTest, AddRemoveAndFind) {
    const ARXFileEntryRef dir = listed({"a", "c", "sub/"});
    writeFile(at("dir/sub/deep"), "");
    writeFile(at("dir/b"), "");
    writeFile(at("dir/.dot"), "");
    writeFile(at("dir/sub/late"), "");

    // Only into a listed folder, and hidden items only when shown.
    EXPECT_FALSE(dir->addChild(at("dir/sub/late")));
    EXPECT_FALSE(dir->addChild(at("dir/.dot")));
    // An item gone again before it could be read (a temporary renamed at once) adds nothing.
    EXPECT_FALSE(dir->addChild(at("dir/gone-already")));
    EXPECT_FALSE(dir->find(at("dir/sub/deep")));
    const ARXFileEntryRef b = dir->addChild(at("dir/b"));
    ASSERT_TRUE(b);
    EXPECT_EQ(names(dir->children()), (Names{"a", "b", "c", "sub"}));

    const ARXFileEntryResult deep = dir->findPreparing(at("dir/sub/deep"));
    ASSERT_TRUE(deep.entry);
    EXPECT_EQ(dir->find(at("dir/sub/deep")), deep.entry);
    EXPECT_EQ(dir->find(at("dir")), dir);

    EXPECT_EQ(dir->removePaths({at("dir/a"), at("dir/sub/deep"), at("dir/missing")}), 2u);
    EXPECT_EQ(names(dir->children()), (Names{"b", "c", "sub"}));
    EXPECT_EQ(names(dir->find(at("dir/sub"))->children()), Names{"late"});
}

TEST_F(ARXFileEntryOrderTest, ALinkHoldsTheChildrenOfItsTarget) {
    writeFile(at("real/inside"), "");
    symlinkTo(at("real"), at("link"));
    const ARXFileEntryRef link = rootEntry("link");
    ASSERT_TRUE(link->prepare(false));
    ASSERT_EQ(link->children().size(), 1u);
    EXPECT_EQ(link->children().front()->path(), at("real/inside"));
    EXPECT_EQ(link->children().front()->parent(), link);
    EXPECT_TRUE(link->link()->children().empty());
    EXPECT_EQ(link->find(at("real/inside")), link->children().front());
}

TEST_F(ARXFileEntryOrderTest, ALinkIsFoundByItsOwnPathNeverByItsTargets) {
    // "0 to file" sorts before "file", so a walk by path meets the link first.
    const ARXFileEntryRef dir = listed({"file"});
    symlinkTo(at("dir/file"), at("dir/0 to file"));
    const ARXFileEntryRef link = dir->addChild(at("dir/0 to file"));
    ASSERT_TRUE(link);
    EXPECT_EQ(dir->find(at("dir/file"))->path(), at("dir/file"));
    EXPECT_EQ(dir->linksTo(at("dir/file")), ARXFileEntryList{link});
    ASSERT_TRUE(dir->removeChildren({dir->find(at("dir/file"))}));
    EXPECT_EQ(dir->find(at("dir/file")), nullptr);
}

TEST_F(ARXFileEntryOrderTest, DeniedFolderKeepsItsErrorAndIsNotAskedAgain) {
    makeFolder(at("locked"));
    writeFile(at("locked/inside"), "");
    ASSERT_EQ(::chmod(at("locked").c_str(), 0), 0);
    const ARXFileEntryRef locked = rootEntry("locked");
    const ARXFileEntryRef parent = ARXFileEntry::create(root());
    ASSERT_TRUE(parent->prepare(false));
    // The singletons the check uses are made here, on the main thread.
    ARXSecurityScopedCache::shared().isAccessible(root());
    ARXDataCenter::shared();
    const auto check = [&] {
        EXPECT_FALSE(locked->prepare(false));
        EXPECT_TRUE(locked->children().empty());
        // As root the guard still grants (access(2) asks the permitted capabilities, which the
        // check's thread keeps), so the listing itself fails; otherwise the guard refuses. Either
        // way it is the same error, with the folder and the system's reason.
        ASSERT_TRUE(locked->prepareError);
        EXPECT_EQ(locked->expanded, ::geteuid() == 0);
        EXPECT_EQ(locked->prepareError->code, ARXFileError::kNoReadPermission);
        EXPECT_EQ(locked->prepareError->errnum, EACCES);
        EXPECT_EQ(locked->prepareError->path, at("locked"));
        EXPECT_FALSE(locked->checkAccess());
        ASSERT_EQ(::chmod(at("locked").c_str(), 0700), 0);
        EXPECT_FALSE(locked->prepare(true)); // sticky, even with access back
        ASSERT_EQ(::chmod(at("locked").c_str(), 0), 0);
        const ARXFileEntryResult found = parent->findPreparing(at("locked/inside"));
        EXPECT_FALSE(found.entry);
        if (found.error) {
            EXPECT_EQ(found.error->code, ARXFileError::kNoReadPermission);
        }
    };
    if (::geteuid() != 0) {
        check();
    } else if (!runWithoutOverridingPermissions(check)) {
        GTEST_SKIP() << "running as root without a way to give up CAP_DAC_OVERRIDE";
    }
}

TEST_F(ARXFileEntryOrderTest, ChildrenThatCannotBeReadStayAsGone) {
    writeFile(at("dir/a"), "");
    writeFile(at("dir/b"), "");
    ASSERT_EQ(::chmod(at("dir").c_str(), 0444), 0); // names readable, items not reachable
    const ARXFileEntryRef dir = rootEntry("dir");
    const auto check = [&] {
        ASSERT_TRUE(dir->prepare(false));
        ASSERT_EQ(names(dir->children()), (Names{"a", "b"}));
        for (const ARXFileEntryRef& child : dir->children()) {
            EXPECT_FALSE(child->isExists);
            EXPECT_FALSE(child->loadedModifiedTime());
        }
    };
    if (::geteuid() != 0) {
        check();
    } else if (!runWithoutOverridingPermissions(check)) {
        GTEST_SKIP() << "running as root without a way to give up CAP_DAC_READ_SEARCH";
    }
}

TEST_F(ARXFileEntryOrderTest, FilesVanishingDuringTheListingDoNotBreakIt) {
    constexpr int kCount = 3000;
    makeFolder(at("dir"));
    for (int i = 0; i < kCount; ++i) {
        touch(at("dir/f" + std::to_string(i)));
    }
    const ARXFileEntryRef dir = rootEntry("dir");
    std::atomic<bool> go{false};
    std::thread remover([&] {
        while (!go) {
        }
        for (int i = 0; i < kCount; ++i) {
            ::unlink(at("dir/f" + std::to_string(i)).c_str());
        }
    });
    go = true;
    const bool listed = dir->prepare(false);
    remover.join();
    ASSERT_TRUE(listed);
    EXPECT_LE(dir->children().size(), size_t(kCount));
    for (const ARXFileEntryRef& child : dir->children()) {
        EXPECT_EQ(child->isExists, child->loadedModifiedTime().has_value());
    }
}

TEST_F(ARXFileEntryOrderTest, PlaceholdersCarryTheirOperation) {
    writeFile(at("src/one.txt"), "12345");
    makeFolder(at("src/folder"));
    const ARXFileEntryRef dir = listed({"m"});
    const ARXFileEntryList added =
        dir->addPlaceholders({at("src/one.txt"), at("src/folder")}, ARXFileOperationType::copy);
    ASSERT_EQ(added.size(), 2u);
    EXPECT_EQ(names(dir->children()), (Names{"folder", "m", "one.txt"}));
    const ARXFileOperationItemRef item = added[0]->operation;
    ASSERT_TRUE(item);
    EXPECT_EQ(item->type, ARXFileOperationType::copy);
    EXPECT_EQ(item->from, at("src/one.txt"));
    EXPECT_EQ(item->to, at("dir/one.txt"));
    EXPECT_FALSE(item->target());
    EXPECT_EQ(item->userData.lock(), added[0]);
    EXPECT_FALSE(added[0]->isExists);
}

TEST_F(ARXFileEntryOrderTest, DuplicatesGetUniqueNamesAndTheSourcesLook) {
    const ARXFileEntryRef dir = listed({"x.txt", "x 2.txt"});
    ARXFileEntryList sources = dir->children();
    sources[0]->size = 42;
    const ARXFileEntryDuplicates duplicates = dir->addDuplicates(sources);
    EXPECT_EQ(duplicates.paths, (std::vector<Path>{at("dir/x 3.txt"), at("dir/x 4.txt")}));
    EXPECT_EQ(names(dir->children()), (Names{"x 2.txt", "x 3.txt", "x 4.txt", "x.txt"}));
    const ARXFileEntryRef copy = duplicates.entries[0];
    EXPECT_EQ(copy->size, 42u);
    EXPECT_EQ(copy->operation->type, ARXFileOperationType::duplicate);
    EXPECT_EQ(copy->operation->from, sources[0]->path());
    EXPECT_FALSE(copy->operation->to);
}

} // namespace
