#include "ops/ARXFileOperationConflict.h"

#include "ARXFileOperationFixture.h"
#include "support/ARXTreeSnapshot.h"

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

using Type = ARXFileOperationType;
using Action = ARXFileOperationConflictAction;

class ARXFileOperationConflictTest : public ARXFileOperationFixture {
protected:
    // Three sources a, b, c; each has an older namesake in dst.
    std::vector<ARXFileOperationItemRef> threeConflicts(Type type) {
        std::vector<ARXFileOperationItemRef> items;
        for (const std::string name : {"a", "b", "c"}) {
            writeFile(at("src/" + name), "new " + name);
            writeFile(at("dst/" + name), "old " + name);
            items.push_back(item(type, at("src/" + name), at("dst/" + name)));
        }
        return items;
    }

    static void setModified(const Path& path, time_t seconds) {
        const timeval times[2] = {{seconds, 0}, {seconds, 0}};
        ::lutimes(path.c_str(), times);
    }
};

TEST_F(ARXFileOperationConflictTest, ReplaceWithoutApplyToAllAsksAgainForTheNextConflict) {
    auto items = threeConflicts(Type::copy);
    presenter.answers = {
        {Action::replace, false}, {Action::keepBoth, false}, {Action::replace, false}};
    auto controller = run(items, ARXSoundEffect::file_added);

    ASSERT_EQ(presenter.questions.size(), 3u);
    EXPECT_EQ(presenter.questions[0].name, "a");
    EXPECT_EQ(presenter.questions[0].note, "The target already exists!");
    EXPECT_FALSE(presenter.questions[0].single);
    EXPECT_FALSE(presenter.questions[1].single);
    EXPECT_TRUE(presenter.questions[2].single); // the last item: no "Apply to All"

    EXPECT_EQ(readFile(at("dst/a")), "new a");
    EXPECT_TRUE(items[0]->failed); // replaced: its row exists already
    EXPECT_EQ(items[0]->target(), at("dst/a"));
    EXPECT_EQ(readFile(at("dst/b")), "old b");
    EXPECT_EQ(readFile(at("dst/b 2")), "new b");
    EXPECT_FALSE(items[1]->failed);
    EXPECT_EQ(items[1]->target(), at("dst/b 2"));
    EXPECT_EQ(readFile(at("dst/c")), "new c");

    // The worker starts once, then again after each answer.
    EXPECT_EQ(delegate.started, 4);
    EXPECT_EQ(delegate.finishedCalls, 2);
    EXPECT_EQ(controller->conflictAction(), Action::replace);
    EXPECT_EQ(sounds.size(), 1u);
    ASSERT_EQ(recorded().size(), 1u);
    EXPECT_EQ(recorded()[0]->records.size(), 3u); // replaced items are recorded too
}

TEST_F(ARXFileOperationConflictTest, SkipForAllAsksOnceAndEndsPlainlyOnTheLastItem) {
    auto items = threeConflicts(Type::move);
    presenter.answers = {{Action::skip, true}};
    auto controller = run(items, ARXSoundEffect::file_added);

    EXPECT_EQ(presenter.questions.size(), 1u);
    for (const std::string name : {"a", "b", "c"}) {
        EXPECT_EQ(readFile(at("src/" + name)), "new " + name);
        EXPECT_EQ(readFile(at("dst/" + name)), "old " + name);
    }
    for (const ARXFileOperationItemRef& i : items) {
        EXPECT_TRUE(i->failed);
        EXPECT_TRUE(i->finished);
    }
    EXPECT_TRUE(controller->finished());
    EXPECT_EQ(delegate.finishedCalls, 1);
    EXPECT_TRUE(sounds.empty());
    EXPECT_TRUE(recorded().empty());
}

TEST_F(ARXFileOperationConflictTest, KeepBothForAllMovesEachBesideItsNamesake) {
    auto items = threeConflicts(Type::move);
    presenter.answers = {{Action::keepBoth, true}};
    run(items, ARXSoundEffect::file_added);

    EXPECT_EQ(presenter.questions.size(), 1u);
    for (const std::string name : {"a", "b", "c"}) {
        EXPECT_FALSE(exists(at("src/" + name)));
        EXPECT_EQ(readFile(at("dst/" + name)), "old " + name);
        EXPECT_EQ(readFile(at("dst/" + name + " 2")), "new " + name);
    }
    EXPECT_EQ(delegate.finishedCalls, 2);
    ASSERT_EQ(recorded().size(), 1u);
    EXPECT_EQ(recorded()[0]->records[2].target, at("dst/c 2"));
}

TEST_F(ARXFileOperationConflictTest, ReplaceForAllMovesAFolderOverAFolderWithoutMerging) {
    writeFile(at("src/folder/new.txt"), "new");
    writeFile(at("dst/folder/old.txt"), "old");
    writeFile(at("src/x"), "new x");
    writeFile(at("dst/x"), "old x");
    const auto expected = ARXTreeSnapshot(at("src/folder"));
    presenter.answers = {{Action::replace, true}};
    auto controller = run({item(Type::move, at("src/folder"), at("dst/folder")),
                           item(Type::move, at("src/x"), at("dst/x"))});

    EXPECT_EQ(presenter.questions.size(), 1u);
    EXPECT_EQ(ARXTreeSnapshot(at("dst/folder")), expected);
    EXPECT_FALSE(exists(at("dst/folder/old.txt")));
    EXPECT_EQ(readFile(at("dst/x")), "new x");
    EXPECT_FALSE(exists(at("src/folder")));
    EXPECT_TRUE(controller->items()[0]->failed);
    EXPECT_TRUE(controller->items()[1]->failed);
}

// Stop gives up the item it was asked about and everything after it: what came before is done,
// the rest is on disk exactly as it was.
TEST_F(ARXFileOperationConflictTest, StopLeavesEverythingBeforeDoneAndEverythingAfterUntouched) {
    writeFile(at("src/first"), "first");
    writeFile(at("src/clash"), "new clash");
    writeFile(at("src/last"), "last");
    writeFile(at("dst/clash"), "old clash");
    const auto sourceBefore = ARXTreeSnapshot(at("src"));
    presenter.answers = {{Action::stop, false}};
    auto controller = run({item(Type::move, at("src/first"), at("dst/first")),
                           item(Type::move, at("src/clash"), at("dst/clash")),
                           item(Type::move, at("src/last"), at("dst/last"))},
                          ARXSoundEffect::file_added);

    EXPECT_EQ(readFile(at("dst/first")), "first");
    EXPECT_FALSE(exists(at("src/first")));
    EXPECT_EQ(readFile(at("src/clash")), "new clash");
    EXPECT_EQ(readFile(at("dst/clash")), "old clash");
    EXPECT_EQ(readFile(at("src/last")), "last");
    EXPECT_FALSE(exists(at("dst/last")));
    EXPECT_FALSE(controller->items()[0]->failed);
    EXPECT_TRUE(controller->items()[1]->failed);
    EXPECT_TRUE(controller->items()[2]->failed);

    EXPECT_TRUE(controller->finished());
    EXPECT_EQ(delegate.finishedCalls, 1);
    EXPECT_TRUE(sounds.empty());
    EXPECT_TRUE(recorded().empty()); // not even the item that was done
}

TEST_F(ARXFileOperationConflictTest, SkipOnTheLastItemEndsWithoutSoundOrRecord) {
    writeFile(at("src/a"), "a");
    writeFile(at("src/b"), "new b");
    writeFile(at("dst/b"), "old b");
    presenter.answers = {{Action::skip, false}};
    auto controller = run(
        {item(Type::copy, at("src/a"), at("dst/a")), item(Type::copy, at("src/b"), at("dst/b"))},
        ARXSoundEffect::file_added);
    ASSERT_EQ(presenter.questions.size(), 1u);
    EXPECT_TRUE(presenter.questions[0].single);
    EXPECT_EQ(readFile(at("dst/a")), "a");
    EXPECT_EQ(readFile(at("dst/b")), "old b");
    EXPECT_EQ(delegate.finishedCalls, 1);
    EXPECT_TRUE(sounds.empty());
    EXPECT_TRUE(recorded().empty());
    EXPECT_EQ(presenter.dismissed, 1);
}

TEST_F(ARXFileOperationConflictTest, AnAnswerIsConsultedOnlyAtAConflict) {
    // keep both for the first clash, then an item without a clash goes its normal way, then the
    // second clash is asked about again.
    writeFile(at("src/a"), "new a");
    writeFile(at("dst/a"), "old a");
    writeFile(at("src/free"), "free");
    writeFile(at("src/c"), "new c");
    writeFile(at("dst/c"), "old c");
    presenter.answers = {{Action::keepBoth, false}, {Action::replace, false}};
    auto controller = run({item(Type::copy, at("src/a"), at("dst/a")),
                           item(Type::copy, at("src/free"), at("dst/free")),
                           item(Type::copy, at("src/c"), at("dst/c"))});
    EXPECT_EQ(presenter.questions.size(), 2u);
    EXPECT_EQ(controller->items()[1]->target(), at("dst/free"));
    EXPECT_EQ(readFile(at("dst/c")), "new c");
}

TEST_F(ARXFileOperationConflictTest, ADestinationGoneWhileAskingIsNoConflictAnyMore) {
    writeFile(at("src/a"), "new a");
    writeFile(at("dst/a"), "old a");
    auto controller = begin({item(Type::move, at("src/a"), at("dst/a"))});
    ASSERT_TRUE(waitUntil([&] { return presenter.pending != nullptr; }));
    ::unlink(at("dst/a").c_str());
    presenter.answer(Action::keepBoth, false);
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(controller->items()[0]->target(), at("dst/a"));
    EXPECT_EQ(readFile(at("dst/a")), "new a");
}

// A copy onto itself makes a new name whatever answer stands: a "replace" for all from an earlier
// conflict must not remove the very item to be copied.
TEST_F(ARXFileOperationConflictTest, ReplaceForAllNeverTouchesACopyOntoItself) {
    writeFile(at("src/b"), "new b");
    writeFile(at("dst/b"), "old b");
    writeFile(at("dst/self.txt"), "me");
    presenter.answers = {{Action::replace, true}};
    auto controller = run({item(Type::copy, at("src/b"), at("dst/b")),
                           item(Type::copy, at("dst/self.txt"), at("dst/self.txt"))});
    EXPECT_EQ(readFile(at("dst/self.txt")), "me");
    EXPECT_EQ(readFile(at("dst/self 2.txt")), "me");
    EXPECT_FALSE(controller->items()[1]->failed);
    EXPECT_TRUE(presenter.alerts.empty());
}

TEST_F(ARXFileOperationConflictTest, TheNoteComparesWithTheTargetOnlyOnceOneIsSet) {
    writeFile(at("from"), "12345");
    writeFile(at("target"), "1234567890");
    setModified(at("from"), 1000);
    setModified(at("target"), 2000);
    ARXFileOperationItem conflict(Type::copy, at("from"), at("to"));
    EXPECT_EQ(ARXFileOperationConflict::question(conflict, true).note,
              "The target already exists!");

    conflict.setTarget(at("target"));
    ARXConflictQuestion question = ARXFileOperationConflict::question(conflict, false);
    EXPECT_EQ(question.note, "The target already exists: Newer, Bigger.");
    EXPECT_EQ(question.name, "from");
    EXPECT_EQ(question.from, at("from"));
    EXPECT_FALSE(question.single);

    setModified(at("target"), 1000);
    writeFile(at("target"), "1");
    setModified(at("target"), 500);
    EXPECT_EQ(ARXFileOperationConflict::question(conflict, false).note,
              "The target already exists: Older, Smaller.");

    writeFile(at("target"), "54321");
    setModified(at("target"), 1000);
    EXPECT_EQ(ARXFileOperationConflict::question(conflict, false).note,
              "The target already exists: Same Modified Date, Same Size.");

    // What cannot be read counts as 0.
    conflict.setTarget(at("nothing here"));
    EXPECT_EQ(ARXFileOperationConflict::question(conflict, false).note,
              "The target already exists: Older, Smaller.");
}

// The same item reached by another spelling of its path is no conflict but the item itself: a
// move leaves it where it is, a copy makes a new name, and nothing is ever replaced by itself.
TEST_F(ARXFileOperationConflictTest, AnotherSpellingOfTheSameItemIsTheItemItself) {
    writeFile(at("a/x"), "only copy");
    ASSERT_EQ(::symlink(at("a").c_str(), at("link").c_str()), 0);
    presenter.answers = {{Action::replace, true}};
    auto controller =
        run({item(Type::move, at("a/x"), at("link/x")), item(Type::move, at("a/x"), at("a/./x")),
             item(Type::move, at("a/x"), at("a//x")), item(Type::move, at("a/x"), at("a/../a/x")),
             item(Type::copy, at("a/x"), at("link/x"))});
    EXPECT_TRUE(presenter.questions.empty());
    EXPECT_TRUE(presenter.alerts.empty());
    EXPECT_EQ(readFile(at("a/x")), "only copy");
    EXPECT_EQ(readFile(at("a/x 2")), "only copy");
    for (size_t i = 0; i < 4; ++i) {
        EXPECT_TRUE(controller->items()[i]->failed) << i;
    }
}

// Replace puts what it replaced in the trash, where the user can get it back.
TEST_F(ARXFileOperationConflictTest, ReplaceSendsWhatItReplacedToTheTrash) {
    writeFile(at("src/a"), "new a");
    writeFile(at("dst/a"), "old a");
    writeFile(at("src/folder/new.txt"), "new");
    writeFile(at("dst/folder/only-here.txt"), "only here");
    presenter.answers = {{Action::replace, false}, {Action::replace, false}};
    run({item(Type::move, at("src/a"), at("dst/a")),
         item(Type::copy, at("src/folder"), at("dst/folder"))});

    ASSERT_EQ(presenter.questions.size(), 2u);
    EXPECT_FALSE(presenter.questions[0].folders);
    EXPECT_TRUE(presenter.questions[1].folders);
    EXPECT_EQ(presenter.questions[1].note, "The folder “folder” will be replaced; items only in "
                                           "it will be moved to the Trash.");
    EXPECT_EQ(readFile(at("dst/a")), "new a");
    EXPECT_EQ(ARXTreeSnapshot(at("dst/folder")), ARXTreeSnapshot(at("src/folder")));
    const Path trash = ARXPath::join(dataHome(), "Trash/files");
    EXPECT_EQ(readFile(ARXPath::join(trash, "a")), "old a");
    EXPECT_EQ(readFile(ARXPath::join(trash, "folder/only-here.txt")), "only here");
}

// A failure of the copy that was to replace an item names the destination the user chose, not
// the hidden copy it was being built in.
TEST_F(ARXFileOperationConflictTest, AFailedReplaceNamesTheDestinationNotItsHiddenCopy) {
    writeFile(at("src/folder/big.bin"), std::string(256 << 10, 'x'));
    writeFile(at("dst/folder/old.txt"), "old");
    presenter.answers = {{Action::replace, false}};
    // Writing past 64 KiB fails (EFBIG), as a full disk would, for root as for anyone.
    ::signal(SIGXFSZ, SIG_IGN);
    rlimit saved{};
    ::getrlimit(RLIMIT_FSIZE, &saved);
    const rlimit small{64 << 10, saved.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    run({item(Type::copy, at("src/folder"), at("dst/folder"))});
    ::setrlimit(RLIMIT_FSIZE, &saved);

    ASSERT_EQ(presenter.alerts.size(), 1u);
    EXPECT_EQ(presenter.alerts[0].informativeText,
              ARXFileError::fromErrno(EFBIG, at("dst/folder/big.bin")).text());
    EXPECT_EQ(readFile(at("dst/folder/old.txt")), "old");
    EXPECT_EQ(ARXTreeSnapshot(at("dst")).size(), 3u) << "a half copy was left";
}

// Merge goes into the folder already there: what only it holds stays, and each name both hold is
// asked about, a folder again with Merge among the answers. Undo would take back only what came.
TEST_F(ARXFileOperationConflictTest, MergeMovesIntoTheFolderAskingAboutEachNameBothHold) {
    writeFile(at("src/f/both.txt"), "from src");
    writeFile(at("src/f/new.txt"), "new");
    writeFile(at("src/f/sub/deep.txt"), "deep");
    writeFile(at("dst/f/both.txt"), "from dst");
    writeFile(at("dst/f/old.txt"), "old");
    writeFile(at("dst/f/sub/keep.txt"), "keep");
    presenter.answers = {{Action::merge, false}, {Action::keepBoth, false}, {Action::merge, false}};
    auto controller = run({item(Type::move, at("src/f"), at("dst/f"))}, ARXSoundEffect::file_added);

    ASSERT_EQ(presenter.questions.size(), 3u);
    EXPECT_TRUE(presenter.questions[0].folders);
    EXPECT_EQ(presenter.questions[1].name, "both.txt");
    EXPECT_FALSE(presenter.questions[1].folders);
    EXPECT_EQ(presenter.questions[2].name, "sub");
    EXPECT_TRUE(presenter.questions[2].folders);
    EXPECT_EQ(readFile(at("dst/f/both.txt")), "from dst");
    EXPECT_EQ(readFile(at("dst/f/both 2.txt")), "from src");
    EXPECT_EQ(readFile(at("dst/f/new.txt")), "new");
    EXPECT_EQ(readFile(at("dst/f/old.txt")), "old");
    EXPECT_EQ(readFile(at("dst/f/sub/keep.txt")), "keep");
    EXPECT_EQ(readFile(at("dst/f/sub/deep.txt")), "deep");
    EXPECT_FALSE(exists(at("src/f")));           // emptied by the move
    EXPECT_TRUE(controller->items()[0]->failed); // its row stands already
    EXPECT_EQ(sounds.size(), 1u);
    ASSERT_EQ(recorded().size(), 1u);
    const auto& records = recorded()[0]->records;
    ASSERT_EQ(records.size(), 3u);
    EXPECT_EQ(records[0].source, at("src/f/both.txt"));
    EXPECT_EQ(records[0].target, at("dst/f/both 2.txt"));
    EXPECT_EQ(records[2].target, at("dst/f/sub/deep.txt"));
}
