#include "ops/ARXFileOperationRecorder.h"

#include "ARXUndoTestPresenter.h"
#include "app/ARXConf.h"
#include "app/ARXFavorites.h"
#include "ops/ARXFileOperationController.h"
#include "support/ARXTestEnvironment.h"
#include "support/ARXTreeSnapshot.h"

#include <QDateTime>
#include <QSignalSpy>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

bool exists(const Path& path) {
    struct stat st {};
    return ::lstat(path.c_str(), &st) == 0;
}

} // namespace

// The recorder against real folders, with the engine replaced by a list of the batches it would
// have started: what is checked here is what undo and redo decide, not how the engine runs.
class ARXFileOperationRecorderTest : public ARXTestEnvironment {
protected:
    void SetUp() override {
        ARXTestEnvironment::SetUp();
        recorder().setBatchStarter([this](ARXUndoBatch batch) { batches.push_back(batch); });
    }

    static ARXFileOperationRecorder& recorder() { return ARXFileOperationRecorder::shared(); }

    Path at(std::string_view name) const { return ARXPath::join(root(), name); }

    // A group of one kind, one record per pair; a pair without a target stands for an item the
    // engine left nowhere known. What stands at each target now is what the operation made.
    static ARXFileOperationRecordGroupRef
    group(ARXFileOperationType action, std::vector<std::pair<Path, std::optional<Path>>> pairs) {
        auto made = std::make_shared<ARXFileOperationRecordGroup>();
        made->action = action;
        for (auto& [source, target] : pairs) {
            made->records.push_back({source, target, QDateTime::currentDateTime(),
                                     target ? ARXMadeItem::at(*target) : std::nullopt});
        }
        return made;
    }

    // A move of `name` into "moved/" that happened on disk.
    ARXFileOperationRecordGroupRef movedFile(const std::string& name) {
        writeFile(at("moved/" + name), name);
        return group(ARXFileOperationType::move, {{at(name), at("moved/" + name)}});
    }

    void expectHistoryGone() {
        EXPECT_TRUE(recorder().records().empty());
        EXPECT_EQ(recorder().recordIndex(), -1);
        EXPECT_FALSE(recorder().canUndo());
        EXPECT_FALSE(recorder().canRedo());
    }

    ARXUndoTestPresenter presenter;
    ARXMainPresenterScope scope{&presenter};
    std::vector<ARXUndoBatch> batches;
};

// ----- the history

TEST_F(ARXFileOperationRecorderTest, KeepsTheNewestTenAndUndoesEachOfThem) {
    EXPECT_FALSE(recorder().canUndo());
    EXPECT_EQ(recorder().recordIndex(), -1);
    recorder().undo();
    recorder().redo();
    EXPECT_TRUE(batches.empty());

    std::vector<ARXFileOperationRecordGroupRef> groups;
    for (int i = 0; i < 11; ++i) {
        groups.push_back(movedFile("f" + std::to_string(i)));
        recorder().add(groups.back());
    }
    ASSERT_EQ(recorder().records().size(), 10u);
    EXPECT_EQ(recorder().records().front(), groups[1]);
    EXPECT_EQ(recorder().recordIndex(), 9);
    EXPECT_FALSE(recorder().canRedo());

    for (int i = 10; i >= 1; --i) {
        ASSERT_TRUE(recorder().canUndo());
        recorder().undo();
        ASSERT_EQ(batches.size(), size_t(11 - i));
        EXPECT_EQ(batches.back().items.front()->from, at("moved/f" + std::to_string(i)));
    }
    EXPECT_EQ(recorder().recordIndex(), -1);
    EXPECT_FALSE(recorder().canUndo());
    EXPECT_TRUE(recorder().canRedo());
    EXPECT_EQ(recorder().redoGroup(), groups[1]);
    EXPECT_TRUE(presenter.toasts.isEmpty());
}

TEST_F(ARXFileOperationRecorderTest, ANewOperationCutsWhatCouldBeRedone) {
    for (const char* name : {"a", "b", "c"}) {
        recorder().add(movedFile(name));
    }
    recorder().undo();
    recorder().undo();
    EXPECT_EQ(recorder().recordIndex(), 0);
    EXPECT_TRUE(recorder().canRedo());

    const ARXFileOperationRecordGroupRef latest = movedFile("d");
    recorder().add(latest);
    ASSERT_EQ(recorder().records().size(), 2u);
    EXPECT_EQ(recorder().records().back(), latest);
    EXPECT_EQ(recorder().recordIndex(), 1);
    EXPECT_FALSE(recorder().canRedo());
    EXPECT_EQ(recorder().redoGroup(), nullptr);
}

TEST_F(ARXFileOperationRecorderTest, UndoAndRedoWalkTheIndexAndRedoStartsTheSameMove) {
    recorder().add(movedFile("a"));
    recorder().undo();
    ASSERT_EQ(batches.size(), 1u);
    // The undo batch did not run here; put the file back by hand as it would have.
    ASSERT_EQ(::rename(at("moved/a").c_str(), at("a").c_str()), 0);
    recorder().redo();
    ASSERT_EQ(batches.size(), 2u);
    EXPECT_EQ(recorder().recordIndex(), 0);
    const ARXUndoBatch& redo = batches.back();
    ASSERT_EQ(redo.items.size(), 1u);
    EXPECT_EQ(redo.items[0]->type, ARXFileOperationType::move);
    EXPECT_EQ(redo.items[0]->from, at("a"));
    EXPECT_EQ(redo.items[0]->to, at("moved/a"));
    EXPECT_EQ(redo.sound, ARXSoundEffect::file_added);
}

// ----- the batches

TEST_F(ARXFileOperationRecorderTest, BatchesAreUnrecordedOwnerlessAndShownByTheMainWindow) {
    writeFile(at("Trash/files/a.txt"), "a");
    writeFile(at("Trash/files/b.txt"), "b");
    recorder().add(group(ARXFileOperationType::trash, {{at("a.txt"), at("Trash/files/a.txt")},
                                                       {at("b.txt"), at("Trash/files/b.txt")}}));
    recorder().undo();
    ASSERT_EQ(batches.size(), 1u);
    const ARXUndoBatch& batch = batches[0];
    EXPECT_FALSE(batch.recordable);
    EXPECT_EQ(batch.presenter, &presenter);
    EXPECT_EQ(batch.sound, ARXSoundEffect::file_added);
    ASSERT_EQ(batch.items.size(), 2u);
    for (size_t i = 0; i < 2; ++i) {
        const ARXFileOperationItem& item = *batch.items[i];
        EXPECT_EQ(item.type, ARXFileOperationType::move);
        EXPECT_EQ(item.from, i == 0 ? at("Trash/files/a.txt") : at("Trash/files/b.txt"));
        EXPECT_EQ(item.to, i == 0 ? at("a.txt") : at("b.txt"));
        EXPECT_EQ(item.target(), std::nullopt);
        EXPECT_TRUE(item.userData.expired());
        EXPECT_TRUE(item.userObject.isNull());
    }

    // A redo of a trash moves the items to their place in the trash again, with the trash sound.
    ASSERT_EQ(::rename(at("Trash/files/a.txt").c_str(), at("a.txt").c_str()), 0);
    ASSERT_EQ(::rename(at("Trash/files/b.txt").c_str(), at("b.txt").c_str()), 0);
    recorder().redo();
    ASSERT_EQ(batches.size(), 2u);
    EXPECT_EQ(batches[1].sound, ARXSoundEffect::file_removed);
    EXPECT_EQ(batches[1].items[1]->type, ARXFileOperationType::move);
    EXPECT_EQ(batches[1].items[1]->from, at("b.txt"));
    EXPECT_EQ(batches[1].items[1]->to, at("Trash/files/b.txt"));
}

TEST_F(ARXFileOperationRecorderTest, WithoutAMainWindowBatchesStillRunAndNothingIsShown) {
    ARXOperationPresenter::setMain(nullptr);
    recorder().add(movedFile("a"));
    recorder().undo();
    ASSERT_EQ(batches.size(), 1u);
    EXPECT_EQ(batches[0].presenter, nullptr);
    EXPECT_EQ(recorder().recordIndex(), -1);

    // A failure drops the history just the same, with nobody to tell.
    ARXRemoveTree(at("moved/a"));
    recorder().redo();
    expectHistoryGone();
    EXPECT_TRUE(presenter.toasts.isEmpty());
}

TEST_F(ARXFileOperationRecorderTest, UndoOfACopyTrashesTheCopiesAndRedoCopiesAgain) {
    writeFile(at("a.txt"), "a");
    writeFile(at("dest/a.txt"), "a");
    writeFile(at("a copy.txt"), "a");
    recorder().add(group(ARXFileOperationType::copy, {{at("a.txt"), at("dest/a.txt")}}));
    recorder().add(group(ARXFileOperationType::duplicate, {{at("a.txt"), at("a copy.txt")}}));

    recorder().undo();
    recorder().undo();
    ASSERT_EQ(batches.size(), 2u);
    for (const ARXUndoBatch& batch : batches) {
        EXPECT_EQ(batch.sound, ARXSoundEffect::file_added);
        ASSERT_EQ(batch.items.size(), 1u);
        EXPECT_EQ(batch.items[0]->type, ARXFileOperationType::trash);
        EXPECT_EQ(batch.items[0]->to, std::nullopt);
    }
    EXPECT_EQ(batches[0].items[0]->from, at("a copy.txt"));
    EXPECT_EQ(batches[1].items[0]->from, at("dest/a.txt"));

    batches.clear();
    recorder().redo();
    recorder().redo();
    ASSERT_EQ(batches.size(), 2u);
    EXPECT_EQ(batches[0].items[0]->type, ARXFileOperationType::copy);
    EXPECT_EQ(batches[0].items[0]->from, at("a.txt"));
    EXPECT_EQ(batches[0].items[0]->to, at("dest/a.txt"));
    // A duplicate is made anew under the next free name, wherever the first one went.
    EXPECT_EQ(batches[1].items[0]->type, ARXFileOperationType::duplicate);
    EXPECT_EQ(batches[1].items[0]->from, at("a.txt"));
    EXPECT_EQ(batches[1].items[0]->to, std::nullopt);
    EXPECT_EQ(recorder().recordIndex(), 1);
}

TEST_F(ARXFileOperationRecorderTest, AGroupWithoutRecordsSucceedsWithoutABatch) {
    recorder().add(group(ARXFileOperationType::copy, {}));
    recorder().undo();
    EXPECT_TRUE(batches.empty());
    EXPECT_EQ(recorder().recordIndex(), -1);
    EXPECT_TRUE(recorder().canRedo());
}

// ----- failed checks drop the whole history

TEST_F(ARXFileOperationRecorderTest, UndoOfAMoveWhoseFileWasDeletedByHand) {
    recorder().add(movedFile("older"));
    recorder().add(movedFile("a.txt"));
    ARXRemoveTree(at("moved/a.txt"));

    recorder().undo();
    EXPECT_TRUE(batches.empty());
    EXPECT_EQ(presenter.toasts, QStringList{"“a.txt” doesn’t exists."});
    expectHistoryGone();
}

TEST_F(ARXFileOperationRecorderTest, UndoOfATrashWhoseSourcePathWasTaken) {
    writeFile(at("Trash/files/a.txt"), "old");
    recorder().add(group(ARXFileOperationType::trash, {{at("a.txt"), at("Trash/files/a.txt")}}));
    writeFile(at("a.txt"), "new");

    recorder().undo();
    EXPECT_TRUE(batches.empty());
    EXPECT_EQ(presenter.toasts, QStringList{"“a.txt” already exists."});
    expectHistoryGone();
    EXPECT_EQ(readFile(at("a.txt")), "new");
}

TEST_F(ARXFileOperationRecorderTest, UndoOfACopyWithASecondTargetMissingRemovesNothing) {
    for (const char* name : {"a", "b", "c"}) {
        writeFile(at(name), name);
    }
    writeFile(at("dest/a"), "a");
    writeFile(at("dest/c"), "c");
    recorder().add(
        group(ARXFileOperationType::copy,
              {{at("a"), at("dest/a")}, {at("b"), at("dest/b")}, {at("c"), at("dest/c")}}));
    recorder().undo();
    EXPECT_TRUE(batches.empty());
    EXPECT_EQ(presenter.toasts, QStringList{"“b” doesn’t exists."});
    EXPECT_TRUE(exists(at("dest/a")));
    EXPECT_TRUE(exists(at("dest/c")));
    expectHistoryGone();
}

TEST_F(ARXFileOperationRecorderTest, UndoOfACopyChangedSinceLeavesItAndDropsTheHistory) {
    writeFile(at("a.txt"), "a");
    writeFile(at("edited.txt"), "a");
    writeFile(at("replaced.txt"), "a");
    auto copied = [&](const char* name) {
        return group(ARXFileOperationType::copy, {{at("a.txt"), at(name)}});
    };
    const ARXFileOperationRecordGroupRef edited = copied("edited.txt");
    const ARXFileOperationRecordGroupRef replaced = copied("replaced.txt");
    struct stat before {};
    ASSERT_EQ(::lstat(at("replaced.txt").c_str(), &before), 0);

    writeFile(at("edited.txt"), "edited by hand");
    // Another file of the same size and time in its place: only the inode tells.
    writeFile(at("other.txt"), "b");
    const timespec times[2] = {before.st_atim, before.st_mtim};
    ASSERT_EQ(::utimensat(AT_FDCWD, at("other.txt").c_str(), times, 0), 0);
    ASSERT_EQ(::rename(at("other.txt").c_str(), at("replaced.txt").c_str()), 0);

    for (const auto& [changed, name] :
         {std::pair{edited, "edited.txt"}, std::pair{replaced, "replaced.txt"}}) {
        presenter.toasts.clear();
        recorder().add(changed);
        recorder().undo();
        EXPECT_TRUE(batches.empty()) << name;
        EXPECT_EQ(presenter.toasts,
                  QStringList{QStringLiteral("“%1” has changed since it was copied.").arg(name)});
        expectHistoryGone();
        EXPECT_TRUE(exists(at(name)));
    }
    EXPECT_EQ(readFile(at("edited.txt")), "edited by hand");
    EXPECT_EQ(readFile(at("replaced.txt")), "b");
}

TEST_F(ARXFileOperationRecorderTest, SilentFailuresSayNothingButDropTheHistory) {
    struct Case {
        const char* what;
        // Records the group in a folder of its own and brings the disk into the case's state.
        std::function<void(const Path& dir)> prepare;
        bool undo;
    };
    auto in = [](const Path& dir, const char* name) { return ARXPath::join(dir, name); };
    const std::vector<Case> cases = {
        {"a move that ended nowhere known",
         [&](const Path& dir) {
             recorder().add(group(ARXFileOperationType::move, {{in(dir, "a"), std::nullopt}}));
         },
         true},
        {"a copy whose original is gone: the copy may be all that is left",
         [&](const Path& dir) {
             writeFile(in(dir, "copy"), "a");
             recorder().add(group(ARXFileOperationType::copy, {{in(dir, "a"), in(dir, "copy")}}));
         },
         true},
        {"a redo of a trash whose item is gone",
         [&](const Path& dir) {
             writeFile(in(dir, "trashed"), "a");
             recorder().add(
                 group(ARXFileOperationType::trash, {{in(dir, "a"), in(dir, "trashed")}}));
             recorder().undo();
             // As if the undo batch had put the item back and it was deleted afterwards.
             ARXRemoveTree(in(dir, "trashed"));
         },
         false},
        {"a redo of a trash whose place in the trash is taken",
         [&](const Path& dir) {
             writeFile(in(dir, "trashed"), "a");
             recorder().add(
                 group(ARXFileOperationType::trash, {{in(dir, "a"), in(dir, "trashed")}}));
             recorder().undo();
             writeFile(in(dir, "a"), "a"); // back in place, and something else in the trash
         },
         false},
        {"a deletion, which cannot come back",
         [&](const Path& dir) {
             recorder().add(group(ARXFileOperationType::remove, {{in(dir, "a"), std::nullopt}}));
         },
         true},
    };
    int number = 0;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const Path dir = at("case" + std::to_string(++number));
        makeFolder(dir);
        c.prepare(dir);
        batches.clear();
        c.undo ? recorder().undo() : recorder().redo();
        EXPECT_TRUE(batches.empty());
        expectHistoryGone();
    }
    EXPECT_TRUE(presenter.toasts.isEmpty());
}

TEST_F(ARXFileOperationRecorderTest, RedoOfAMoveOrCopyTellsWhatIsInTheWay) {
    recorder().add(movedFile("a"));
    recorder().undo();
    ASSERT_EQ(::rename(at("moved/a").c_str(), at("a").c_str()), 0);
    writeFile(at("moved/a"), "someone else's");
    recorder().redo();
    EXPECT_EQ(presenter.toasts, QStringList{"“a” already exists."});
    expectHistoryGone();

    writeFile(at("c"), "c");
    writeFile(at("dest/c"), "c");
    recorder().add(group(ARXFileOperationType::copy, {{at("c"), at("dest/c")}}));
    recorder().undo();
    ARXRemoveTree(at("c"));
    recorder().redo();
    EXPECT_EQ(presenter.toasts.size(), 2);
    EXPECT_EQ(presenter.toasts.last(), "“c” doesn’t exists.");
    expectHistoryGone();
}

TEST_F(ARXFileOperationRecorderTest, WithTheMessageOptionOffFailuresAreSilent) {
    ARXConf::settings_show_file_undo_redo_message().setValue(false);
    writeFile(at("b.txt"), "b");
    auto renamed = group(ARXFileOperationType::rename, {{at("a.txt"), at("b.txt")}});
    recorder().add(renamed);
    writeFile(at("a.txt"), "in the way");

    recorder().undo();
    EXPECT_TRUE(presenter.toasts.isEmpty());
    EXPECT_TRUE(presenter.alerts.empty());
    expectHistoryGone();
    EXPECT_EQ(readFile(at("b.txt")), "b");
}

// ----- rename, done at once

TEST_F(ARXFileOperationRecorderTest, RenameIsUndoneAndRedoneOnTheSpot) {
    const Path oldPath = at(std::string("r\xe9sum\xe9")); // Latin-1, not UTF-8
    const Path newPath = at("Resume");
    writeFile(ARXPath::join(newPath, "inside.txt"), "x");
    ARXFavorites::toggleFavorite(ARXPath::fileURLString(newPath));
    recorder().add(group(ARXFileOperationType::rename, {{oldPath, newPath}}));

    recorder().undo();
    EXPECT_TRUE(batches.empty());
    EXPECT_EQ(readFile(ARXPath::join(oldPath, "inside.txt")), "x");
    EXPECT_FALSE(exists(newPath));
    EXPECT_EQ(ARXConf::cached_favorite_urls().value(),
              QStringList{ARXPath::fileURLString(oldPath)});
    EXPECT_EQ(recorder().recordIndex(), -1);

    recorder().redo();
    EXPECT_TRUE(exists(newPath));
    EXPECT_EQ(ARXConf::cached_favorite_urls().value(),
              QStringList{ARXPath::fileURLString(newPath)});
    EXPECT_EQ(recorder().recordIndex(), 0);
    EXPECT_TRUE(presenter.toasts.isEmpty());
}

TEST_F(ARXFileOperationRecorderTest, RenameUndoTellsWhyItCannot) {
    recorder().add(group(ARXFileOperationType::rename, {{at("a"), at("b")}}));
    recorder().undo();
    EXPECT_EQ(presenter.toasts, QStringList{"“b” doesn’t exists."});
    expectHistoryGone();

    // The move itself fails: a folder that may not be written to.
    writeFile(at("locked/b"), "b");
    ASSERT_EQ(::chmod(at("locked").c_str(), 0555), 0);
    recorder().add(group(ARXFileOperationType::rename, {{at("locked/a"), at("locked/b")}}));
    const bool ran = runWithoutOverridingPermissions([] { recorder().undo(); });
    ::chmod(at("locked").c_str(), 0755);
    ASSERT_TRUE(ran);
    ASSERT_EQ(presenter.alerts.size(), 1u);
    EXPECT_EQ(presenter.alerts[0].style, ARXAlertStyle::critical);
    // The error's own text, with the path that failed.
    EXPECT_TRUE(presenter.alerts[0].message.contains(ARXPath::display(at("locked/"))))
        << presenter.alerts[0].message.toStdString();
    EXPECT_TRUE(exists(at("locked/b")));
    expectHistoryGone();
}

// ----- undo and redo through the real engine

class ARXFileOperationUndoTest : public ARXTestEnvironment {
protected:
    void SetUp() override {
        ARXTestEnvironment::SetUp();
        ARXConf::settings_sound_effect_on().setValue(false);
    }

    static ARXFileOperationRecorder& recorder() { return ARXFileOperationRecorder::shared(); }

    Path at(std::string_view name) const { return ARXPath::join(root(), name); }

    void TearDown() override {
        recorder().setBatchStarter({});
        ARXTestEnvironment::TearDown();
    }

    // Runs a batch the way a pane does, recorded, and waits until it is in the history.
    void runRecorded(ARXFileOperationType type, const Path& from, std::optional<Path> to = {}) {
        const size_t before = recorder().records().size();
        run({std::make_shared<ARXFileOperationItem>(type, from, std::move(to))},
            ARXSoundEffect::file_added, true);
        ASSERT_EQ(recorder().records().size(), before + 1);
    }

    // Undoes or redoes one step whose batch runs on the engine, and waits for it to end.
    void step(void (ARXFileOperationRecorder::*call)()) {
        ended.reset();
        recorder().setBatchStarter([this](ARXUndoBatch batch) {
            run(std::move(batch.items), batch.sound, batch.recordable);
        });
        (recorder().*call)();
        recorder().setBatchStarter({});
        ASSERT_TRUE(ended);
        ASSERT_TRUE(!ended->isEmpty() || ended->wait(10000));
    }

    // Starts a batch on the engine as the recorder does, listening for its end from before its
    // start.
    void run(std::vector<ARXFileOperationItemRef> items, ARXSoundEffect sound, bool recordable) {
        auto controller = std::make_shared<ARXFileOperationController>(std::move(items), sound,
                                                                       recordable, &presenter);
        ended = std::make_unique<QSignalSpy>(controller.get(), &ARXFileOperationController::ended);
        controller->start();
        if (recordable) {
            ASSERT_TRUE(ended->wait(10000));
        }
    }

    std::unique_ptr<QSignalSpy> ended;

    ARXUndoTestPresenter presenter;
    ARXMainPresenterScope scope{&presenter};
};

TEST_F(ARXFileOperationUndoTest, TrashThenUndoGivesBackTheSameBytesModeAndTime) {
    writeFile(at("doc/report.txt"), "quarterly figures");
    writeFile(at("doc/caf\xe9.bin"), std::string("\0\1\2\3", 4));
    ASSERT_EQ(::chmod(at("doc/report.txt").c_str(), 0640), 0);
    ASSERT_EQ(::chmod(at("doc").c_str(), 0750), 0);
    for (const char* name : {"doc/report.txt", "doc/caf\xe9.bin", "doc"}) {
        const timespec times[2] = {{1'600'000'000, 123'456'789}, {1'600'000'000, 987'654'321}};
        ASSERT_EQ(::utimensat(AT_FDCWD, at(name).c_str(), times, AT_SYMLINK_NOFOLLOW), 0);
    }
    const std::vector<std::string> before = ARXTreeSnapshot(at("doc"));

    runRecorded(ARXFileOperationType::trash, at("doc"));
    EXPECT_FALSE(exists(at("doc")));
    const std::optional<Path> trashed = recorder().records().back()->records[0].target;
    ASSERT_TRUE(trashed.has_value());
    EXPECT_EQ(ARXTreeSnapshot(*trashed), before);

    const Path info = ARXPath::join(dataHome(), "Trash/info/doc.trashinfo");
    EXPECT_TRUE(exists(info));

    step(&ARXFileOperationRecorder::undo);
    EXPECT_EQ(ARXTreeSnapshot(at("doc")), before);
    EXPECT_FALSE(exists(*trashed));
    EXPECT_FALSE(exists(info)) << "no record of an item the trash no longer holds";

    // A redo puts it back where the trash keeps it, and a second undo brings it home again.
    step(&ARXFileOperationRecorder::redo);
    EXPECT_FALSE(exists(at("doc")));
    EXPECT_EQ(ARXTreeSnapshot(*trashed), before);
    EXPECT_TRUE(readFile(info).find("\nPath=" + at("doc") + "\n") != std::string::npos);
    step(&ARXFileOperationRecorder::undo);
    EXPECT_EQ(ARXTreeSnapshot(at("doc")), before);
    EXPECT_FALSE(exists(info));
    EXPECT_TRUE(presenter.alerts.empty());
    EXPECT_EQ(recorder().recordIndex(), -1);
}

TEST_F(ARXFileOperationUndoTest, AMoveIsUndoneAndRedone) {
    writeFile(at("a.txt"), "a");
    makeFolder(at("dest"));
    runRecorded(ARXFileOperationType::move, at("a.txt"), at("dest/a.txt"));
    EXPECT_EQ(readFile(at("dest/a.txt")), "a");

    step(&ARXFileOperationRecorder::undo);
    EXPECT_EQ(readFile(at("a.txt")), "a");
    EXPECT_FALSE(exists(at("dest/a.txt")));
    step(&ARXFileOperationRecorder::redo);
    EXPECT_EQ(readFile(at("dest/a.txt")), "a");
    EXPECT_FALSE(exists(at("a.txt")));
    EXPECT_EQ(recorder().recordIndex(), 0);
    // The undo batches are not recorded themselves.
    EXPECT_EQ(recorder().records().size(), 1u);
}

TEST_F(ARXFileOperationUndoTest, UndoOfACopyPutsTheCopyInTheTrash) {
    writeFile(at("a.txt"), "a");
    makeFolder(at("dest"));
    runRecorded(ARXFileOperationType::copy, at("a.txt"), at("dest/a.txt"));
    ASSERT_EQ(readFile(at("dest/a.txt")), "a");

    step(&ARXFileOperationRecorder::undo);
    EXPECT_FALSE(exists(at("dest/a.txt")));
    EXPECT_EQ(readFile(at("a.txt")), "a");
    EXPECT_TRUE(exists(at("dest")));
    EXPECT_EQ(readFile(ARXPath::join(dataHome(), "Trash/files/a.txt")), "a");
}

TEST_F(ARXFileOperationUndoTest, ARedoneDuplicateTakesTheNextFreeNameAndItsUndoRemovesThatOne) {
    writeFile(at("a.txt"), "a");
    runRecorded(ARXFileOperationType::duplicate, at("a.txt"));
    const Path first = at("a 2.txt");
    ASSERT_EQ(recorder().records().back()->records[0].target, first);
    EXPECT_EQ(readFile(first), "a");

    step(&ARXFileOperationRecorder::undo);
    EXPECT_FALSE(exists(first));
    writeFile(first, "somebody's own file under the old name");

    step(&ARXFileOperationRecorder::redo);
    const Path second = at("a 3.txt");
    EXPECT_EQ(readFile(second), "a");

    // Undoing the redo removes what the redo made, never the file that now bears the first name.
    step(&ARXFileOperationRecorder::undo);
    EXPECT_FALSE(exists(second));
    EXPECT_EQ(readFile(first), "somebody's own file under the old name");
    EXPECT_EQ(readFile(at("a.txt")), "a");
}
