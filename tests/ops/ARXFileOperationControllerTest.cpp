#include "ops/ARXFileOperationController.h"

#include "ARXFileOperationFixture.h"
#include "app/ARXConf.h"
#include "platform/ARXDirectoryReader.h"
#include "support/ARXScratchMount.h"
#include "support/ARXTreeSnapshot.h"

#include <QCoreApplication>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <fcntl.h>
#include <linux/capability.h>
#include <poll.h>
#include <sys/fanotify.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

using Type = ARXFileOperationType;

namespace {

// Takes from the calling thread the capabilities that let root ignore permission bits, and gives
// them back when it goes. The engine's threads are started from the main thread and take its
// capabilities with them, so for a permission failure inside a batch the main thread itself must
// give them up (ARXTestEnvironment::runWithoutOverridingPermissions changes a thread of its own).
class MainThreadWithoutOverride {
public:
    MainThreadWithoutOverride() {
        if (::syscall(SYS_capget, &_header, _saved) != 0) {
            return;
        }
        __user_cap_data_struct reduced[2] = {_saved[0], _saved[1]};
        reduced[0].effective &= ~((1u << CAP_DAC_OVERRIDE) | (1u << CAP_DAC_READ_SEARCH));
        _active = ::syscall(SYS_capset, &_header, reduced) == 0;
    }
    ~MainThreadWithoutOverride() {
        if (_active) {
            ::syscall(SYS_capset, &_header, _saved);
        }
    }
    bool active() const { return _active; }

private:
    __user_cap_header_struct _header{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct _saved[2]{};
    bool _active = false;
};

} // namespace

class ARXFileOperationControllerTest : public ARXFileOperationFixture {};

TEST_F(ARXFileOperationControllerTest, CopyRunsEveryItemAndEndsNormally) {
    writeFile(at("src/a.txt"), "alpha");
    writeFile(at("src/folder/inner/b.txt"), "bravo!");
    ::symlink("a.txt", at("src/folder/link").c_str());
    makeFolder(at("dst"));

    auto controller = run({item(Type::copy, at("src/a.txt"), at("dst/a.txt")),
                           item(Type::copy, at("src/folder"), at("dst/folder"))},
                          ARXSoundEffect::file_added);

    EXPECT_EQ(readFile(at("dst/a.txt")), "alpha");
    EXPECT_EQ(ARXTreeSnapshot(at("dst/folder")), ARXTreeSnapshot(at("src/folder")));
    EXPECT_EQ(readFile(at("src/a.txt")), "alpha");
    for (const ARXFileOperationItemRef& i : controller->items()) {
        EXPECT_TRUE(i->finished);
        EXPECT_FALSE(i->failed);
        EXPECT_EQ(i->target(), i->to);
    }
    // Sizes count regular files only: the link counts nothing.
    EXPECT_EQ(controller->items()[0]->totalSize, 5);
    EXPECT_EQ(controller->items()[1]->totalSize, 6);
    EXPECT_EQ(controller->totalSize(), 11);

    // The normal end: the delegate hears of it twice, then the sound and the undo group.
    EXPECT_TRUE(controller->finished());
    EXPECT_EQ(delegate.started, 1);
    EXPECT_EQ(delegate.finishedCalls, 2);
    EXPECT_EQ(delegate.finishedSeenBefore, (std::vector<bool>{false, true}));
    EXPECT_EQ(sounds, std::vector<ARXSoundEffect>{ARXSoundEffect::file_added});
    ASSERT_EQ(recorded().size(), 1u);
    EXPECT_EQ(recorded()[0], controller->record());
    EXPECT_EQ(recorded()[0]->action, Type::copy);
    ASSERT_EQ(recorded()[0]->records.size(), 2u);
    EXPECT_EQ(recorded()[0]->records[1].source, at("src/folder"));
    EXPECT_EQ(recorded()[0]->records[1].target, at("dst/folder"));
    EXPECT_TRUE(recorded()[0]->records[1].time.isValid());

    // Each item is reported done once with `finished` set.
    int done = 0;
    for (const ARXFileOperationItemRef& i : delegate.progressed) {
        done += i->finished ? 1 : 0;
    }
    EXPECT_GE(done, 2);

    // The sheet came, said what it did, and went.
    EXPECT_EQ(presenter.presented, 1);
    EXPECT_EQ(presenter.dismissed, 1);
    ASSERT_FALSE(presenter.updates.empty());
    EXPECT_EQ(presenter.updates.front().title, QStringLiteral("Preparing “a.txt”..."));
    EXPECT_TRUE(presenter.alerts.empty());
}

TEST_F(ARXFileOperationControllerTest, MoveDuplicateTrashAndRemoveCarryOutTheirItems) {
    writeFile(at("m.txt"), "move me");
    makeFolder(at("dst"));
    auto moved = run({item(Type::move, at("m.txt"), at("dst/m.txt"))}, ARXSoundEffect::file_added);
    EXPECT_FALSE(exists(at("m.txt")));
    EXPECT_EQ(readFile(at("dst/m.txt")), "move me");
    EXPECT_EQ(moved->items()[0]->target(), at("dst/m.txt"));

    writeFile(at("d.txt"), "twin");
    auto duplicated = run({item(Type::duplicate, at("d.txt")), item(Type::duplicate, at("d.txt"))});
    EXPECT_EQ(duplicated->items()[0]->target(), at("d 2.txt"));
    EXPECT_EQ(duplicated->items()[1]->target(), at("d 3.txt"));
    EXPECT_EQ(readFile(at("d 3.txt")), "twin");

    writeFile(at("t.txt"), "trash me");
    auto trashed = run({item(Type::trash, at("t.txt"))}, ARXSoundEffect::file_removed);
    const std::optional<Path> inTrash = trashed->items()[0]->target();
    ASSERT_TRUE(inTrash);
    EXPECT_EQ(*inTrash, ARXPath::join(dataHome(), "Trash/files/t.txt"));
    EXPECT_EQ(readFile(*inTrash), "trash me");
    EXPECT_FALSE(exists(at("t.txt")));

    writeFile(at("r/deep/x.txt"), "remove me");
    auto removed = run({item(Type::remove, at("r"))}, ARXSoundEffect::file_removed);
    EXPECT_FALSE(exists(at("r")));
    EXPECT_FALSE(removed->record()); // a removal cannot be undone, so it is never recorded

    EXPECT_EQ(sounds,
              (std::vector<ARXSoundEffect>{ARXSoundEffect::file_added, ARXSoundEffect::file_removed,
                                           ARXSoundEffect::file_removed}));
    ASSERT_EQ(recorded().size(), 3u);
    EXPECT_EQ(recorded()[0]->action, Type::move);
    EXPECT_EQ(recorded()[1]->action, Type::duplicate);
    EXPECT_EQ(recorded()[2]->action, Type::trash);
    EXPECT_EQ(recorded()[2]->records[0].target, inTrash);
    for (const auto& c : {moved, duplicated, trashed, removed}) {
        EXPECT_TRUE(c->finished());
    }
}

TEST_F(ARXFileOperationControllerTest, MovingAnItemOntoItselfLeavesItAndEndsPlainly) {
    writeFile(at("a.txt"), "stay");
    auto controller = run({item(Type::move, at("a.txt"), at("a.txt"))}, ARXSoundEffect::file_added);
    EXPECT_EQ(readFile(at("a.txt")), "stay");
    EXPECT_TRUE(controller->items()[0]->failed);
    EXPECT_TRUE(controller->items()[0]->finished);
    EXPECT_TRUE(presenter.questions.empty());
    // The last item was passed over: the plain end only.
    EXPECT_EQ(delegate.finishedCalls, 1);
    EXPECT_TRUE(sounds.empty());
    EXPECT_TRUE(recorded().empty());
}

TEST_F(ARXFileOperationControllerTest, CopyingAnItemOntoItselfMakesANewName) {
    writeFile(at("a.txt"), "one");
    auto controller = run({item(Type::copy, at("a.txt"), at("a.txt"))});
    EXPECT_EQ(controller->items()[0]->target(), at("a 2.txt"));
    EXPECT_EQ(readFile(at("a 2.txt")), "one");
    EXPECT_EQ(readFile(at("a.txt")), "one");
    EXPECT_FALSE(controller->items()[0]->failed);
    EXPECT_TRUE(presenter.questions.empty());
}

TEST_F(ARXFileOperationControllerTest, AnErrorEndsTheBatchWithAnAlertAndNothingMore) {
    writeFile(at("a.txt"), "a");
    writeFile(at("c.txt"), "c");
    makeFolder(at("dst"));
    const Path missing = at("gone.txt");
    auto controller = run({item(Type::copy, at("a.txt"), at("dst/a.txt")),
                           item(Type::copy, missing, at("dst/gone.txt")),
                           item(Type::copy, at("c.txt"), at("dst/c.txt"))},
                          ARXSoundEffect::file_added);

    ASSERT_EQ(presenter.alerts.size(), 1u);
    EXPECT_EQ(presenter.alerts[0].style, ARXAlertStyle::informational);
    EXPECT_EQ(presenter.alerts[0].message, "Error occurred!");
    EXPECT_TRUE(presenter.alerts[0].informativeText.contains(ARXPath::display(missing)))
        << presenter.alerts[0].informativeText.toStdString();
    EXPECT_EQ(presenter.dismissed, 1);

    // What was done stays done; nothing after the failure is tried.
    EXPECT_EQ(readFile(at("dst/a.txt")), "a");
    EXPECT_FALSE(exists(at("dst/c.txt")));
    EXPECT_FALSE(controller->finished());
    EXPECT_EQ(delegate.finishedCalls, 0);
    EXPECT_TRUE(sounds.empty());
    EXPECT_TRUE(recorded().empty());
    EXPECT_FALSE(controller->items()[1]->failed);

    // The progress tick stopped with the batch: a tick still pending at the end fires within one
    // interval (0.1 s), and one that rearmed itself would fire again before a mark queued three
    // intervals after the end.
    const size_t updates = presenter.updates.size();
    const size_t progressed = delegate.progressed.size();
    bool marked = false;
    ARXMainQueue::after(0.3, [&marked] { marked = true; });
    ASSERT_TRUE(waitUntil([&] { return marked; }));
    EXPECT_EQ(presenter.updates.size(), updates);
    EXPECT_EQ(delegate.progressed.size(), progressed);
}

TEST_F(ARXFileOperationControllerTest, EndedComesOnceAfterEverythingTheEndDoes) {
    writeFile(at("a.txt"), "a");
    makeFolder(at("dst"));
    const size_t records = recorded().size();
    std::weak_ptr<ARXFileOperationController> weak;
    size_t soundsHeard = 0, recordsHeard = 0;
    {
        auto controller =
            begin({item(Type::copy, at("a.txt"), at("dst/a.txt"))}, ARXSoundEffect::file_added);
        QObject::connect(controller.get(), &ARXFileOperationController::ended, [&] {
            soundsHeard = sounds.size();
            recordsHeard = recorded().size();
        });
        weak = controller;
        ASSERT_TRUE(waitForEnd());
    }
    EXPECT_EQ(soundsHeard, 1u);
    EXPECT_EQ(recordsHeard, records + 1);
    // Once: nothing more is heard up to the controller's end.
    ASSERT_TRUE(waitUntil([&] { return weak.expired(); }));
    EXPECT_EQ(endSpy->count(), 1);
}

TEST_F(ARXFileOperationControllerTest, WhereNoTrashCanBeMadeOnlyAnExplicitChoiceDeletes) {
    ARXScratchMount volume(at("volume"), "8m");
    if (!volume.mounted()) {
        GTEST_SKIP() << "no second file system: " << volume.error();
    }
    auto on = [&](const char* name) { return ARXPath::join(volume.path(), name); };
    writeFile(on((".Trash-" + std::to_string(::geteuid())).c_str()), "a file, not a folder");
    for (const char* name : {"a.txt", "b.txt", "c.txt"}) {
        writeFile(on(name), name);
    }

    // Nobody to ask: nothing is deleted.
    run({item(Type::trash, on("a.txt"))}, ARXSoundEffect::silence, true, false);
    EXPECT_EQ(readFile(on("a.txt")), "a.txt");

    presenter.deleteAnswers = {true, false};
    auto controller = run({item(Type::trash, on("a.txt")), item(Type::trash, on("b.txt")),
                           item(Type::trash, on("c.txt"))});
    ASSERT_EQ(presenter.deletionQuestions.size(), 2u);
    EXPECT_EQ(presenter.deletionQuestions[0].first, on("a.txt"));
    EXPECT_TRUE(presenter.deletionQuestions[0].second.contains(ARXPath::display(on("a.txt"))));
    EXPECT_EQ(presenter.deletionQuestions[1].first, on("b.txt"));
    // Delete Immediately deleted the first; Cancel kept the second and ended the batch there.
    EXPECT_FALSE(exists(on("a.txt")));
    EXPECT_EQ(controller->items()[0]->target(), std::nullopt);
    EXPECT_EQ(readFile(on("b.txt")), "b.txt");
    EXPECT_EQ(readFile(on("c.txt")), "c.txt");
    EXPECT_TRUE(presenter.alerts.empty()) << "the question stands in place of the error";
    EXPECT_FALSE(controller->finished());
    EXPECT_EQ(presenter.dismissed, 1);
}

// Measuring only sets the progress. A folder it cannot read stops nothing that can succeed: a
// rename, a trash, the removal of what the user may remove. A copy fails on that folder itself.
TEST_F(ARXFileOperationControllerTest, AnUnreadableSubFolderStopsOnlyWhatCannotBeDone) {
    for (const std::string name : {"trashed", "removed", "moved", "copied"}) {
        writeFile(at(name + "/a.txt"), "a");
        makeFolder(at(name + "/closed"));
        ::chmod(at(name + "/closed").c_str(), 0);
    }
    makeFolder(at("dst"));
    MainThreadWithoutOverride withoutOverride;
    if (!withoutOverride.active()) {
        GTEST_SKIP() << "could not give up the permission override";
    }
    run({item(Type::trash, at("trashed")), item(Type::remove, at("removed")),
         item(Type::move, at("moved"), at("dst/moved"))});
    EXPECT_TRUE(presenter.alerts.empty());
    EXPECT_FALSE(exists(at("trashed")));
    EXPECT_FALSE(exists(at("removed")));
    EXPECT_TRUE(exists(at("dst/moved/closed")));

    run({item(Type::copy, at("copied"), at("dst/copied"))});
    ASSERT_EQ(presenter.alerts.size(), 1u);
    EXPECT_EQ(presenter.alerts[0].message, "Error occurred!");
    EXPECT_TRUE(
        presenter.alerts[0].informativeText.contains(ARXPath::display(at("copied/closed"))));
    EXPECT_FALSE(exists(at("dst/copied")));
}

// Copying over an existing item never leaves the user with neither: when the copy fails, the
// destination is as it was and no half copy is left beside it.
TEST_F(ARXFileOperationControllerTest, AFailedCopyThatWasToReplaceKeepsTheDestination) {
    writeFile(at("src/folder/readable.txt"), "new readable");
    writeFile(at("src/folder/secret.txt"), "new secret");
    ::chmod(at("src/folder/secret.txt").c_str(), 0);
    writeFile(at("dst/folder/old.txt"), "the old content");
    const std::vector<std::string> before = ARXTreeSnapshot(at("dst/folder"));
    presenter.answers.push_back({ARXFileOperationConflictAction::replace, false});
    {
        MainThreadWithoutOverride withoutOverride;
        if (!withoutOverride.active()) {
            GTEST_SKIP() << "could not give up the permission override";
        }
        run({item(Type::copy, at("src/folder"), at("dst/folder"))}, ARXSoundEffect::file_added);
    }
    ASSERT_EQ(presenter.questions.size(), 1u);
    ASSERT_EQ(presenter.alerts.size(), 1u);
    EXPECT_TRUE(presenter.alerts[0].informativeText.contains("secret.txt"));
    EXPECT_EQ(ARXTreeSnapshot(at("dst/folder")), before);
    EXPECT_EQ(ARXDirectoryReader::list(at("dst")).items.size(), 1u); // no half copy beside it
}

TEST_F(ARXFileOperationControllerTest, ReplacingByCopyPutsTheCopyInPlaceWhole) {
    writeFile(at("src/folder/new.txt"), "new");
    writeFile(at("dst/folder/old.txt"), "old");
    presenter.answers.push_back({ARXFileOperationConflictAction::replace, false});
    auto controller = run({item(Type::copy, at("src/folder"), at("dst/folder"))});
    // Replaced whole, never merged; the replaced item has its row already, hence `failed`.
    EXPECT_EQ(ARXTreeSnapshot(at("dst/folder")), ARXTreeSnapshot(at("src/folder")));
    EXPECT_TRUE(controller->items()[0]->failed);
    EXPECT_EQ(controller->items()[0]->target(), at("dst/folder"));
    const ARXDirectoryListing listing = ARXDirectoryReader::list(at("dst"));
    EXPECT_EQ(listing.items.size(), 1u); // no temporary copy left beside it
    ASSERT_EQ(recorded().size(), 1u);
    EXPECT_EQ(recorded()[0]->records[0].target, at("dst/folder"));
}

TEST_F(ARXFileOperationControllerTest, NamesThatAreNotUtf8GoThroughEveryBatchType) {
    const std::string odd = "bad\xff\xfe name\nwith a line feed";
    const std::string oddFolder = "f\xc3(\n";
    writeFile(at(odd), "odd bytes");
    writeFile(at(oddFolder + "/" + odd), "inside");
    makeFolder(at("dst"));

    run({item(Type::copy, at(odd), at("dst/" + odd)),
         item(Type::copy, at(oddFolder), at("dst/" + oddFolder))});
    EXPECT_EQ(readFile(at("dst/" + odd)), "odd bytes");
    EXPECT_EQ(readFile(at("dst/" + oddFolder + "/" + odd)), "inside");

    // A second copy meets the first: keep both names the copy beside it.
    presenter.answers.push_back({ARXFileOperationConflictAction::keepBoth, false});
    auto kept = run({item(Type::copy, at(odd), at("dst/" + odd))});
    ASSERT_EQ(presenter.questions.size(), 1u);
    EXPECT_EQ(presenter.questions[0].name, ARXPath::display(odd));
    const std::optional<Path> keptTarget = kept->items()[0]->target();
    ASSERT_TRUE(keptTarget);
    EXPECT_NE(*keptTarget, at("dst/" + odd));
    EXPECT_EQ(readFile(*keptTarget), "odd bytes");

    auto duplicated = run({item(Type::duplicate, at(odd))});
    ASSERT_TRUE(duplicated->items()[0]->target());
    EXPECT_EQ(readFile(*duplicated->items()[0]->target()), "odd bytes");

    run({item(Type::move, at(oddFolder), at("moved" + oddFolder))});
    EXPECT_EQ(readFile(at("moved" + oddFolder + "/" + odd)), "inside");

    auto trashed = run({item(Type::trash, at(odd))});
    ASSERT_TRUE(trashed->items()[0]->target());
    EXPECT_EQ(readFile(*trashed->items()[0]->target()), "odd bytes");

    run({item(Type::remove, at("dst/" + oddFolder))});
    EXPECT_FALSE(exists(at("dst/" + oddFolder)));

    EXPECT_TRUE(presenter.alerts.empty());
    const QString shown = ARXPath::display(odd);
    EXPECT_TRUE(std::any_of(presenter.updates.begin(), presenter.updates.end(),
                            [&](const ARXSheetUpdate& u) { return u.title.contains(shown); }));
}

TEST_F(ARXFileOperationControllerTest, TheSoundFollowsTheSetting) {
    writeFile(at("a.txt"), "a");
    ARXConf::settings_sound_effect_on().setValue(false);
    run({item(Type::duplicate, at("a.txt"))}, ARXSoundEffect::file_added);
    EXPECT_TRUE(sounds.empty());

    ARXConf::settings_sound_effect_on().setValue(true);
    run({item(Type::duplicate, at("a.txt"))}, ARXSoundEffect::file_added);
    run({item(Type::duplicate, at("a.txt"))}, ARXSoundEffect::silence);
    EXPECT_EQ(sounds, std::vector<ARXSoundEffect>{ARXSoundEffect::file_added});
}

TEST_F(ARXFileOperationControllerTest, WithoutAPresenterTheBatchRunsAndAConflictStops) {
    writeFile(at("a.txt"), "a");
    writeFile(at("b.txt"), "new b");
    writeFile(at("dst/b.txt"), "old b");
    auto controller = run({item(Type::copy, at("a.txt"), at("dst/a.txt")),
                           item(Type::copy, at("b.txt"), at("dst/b.txt"))},
                          ARXSoundEffect::file_added, true, false);
    EXPECT_EQ(readFile(at("dst/a.txt")), "a");
    EXPECT_EQ(readFile(at("dst/b.txt")), "old b");
    EXPECT_TRUE(controller->items()[1]->failed);
    EXPECT_TRUE(controller->finished());
    EXPECT_TRUE(recorded().empty());
}

TEST_F(ARXFileOperationControllerTest, TrashedCloudPlaceholdersKeepTheirHiddenName) {
    writeFile(at("trash/.doc.txt.icloud"), "");
    EXPECT_EQ(ARXFileOperationController::cloudPlaceholderTarget(at("lib/.doc.txt.icloud"),
                                                                 at("trash/doc.txt")),
              at("trash/.doc.txt.icloud"));
    // Nothing under the hidden name: the path the trash answered stands.
    EXPECT_EQ(
        ARXFileOperationController::cloudPlaceholderTarget(at("lib/.x.icloud"), at("trash/x")),
        at("trash/x"));
    // Not a placeholder, or answered in the placeholder form already.
    EXPECT_EQ(
        ARXFileOperationController::cloudPlaceholderTarget(at("lib/doc.txt"), at("trash/doc.txt")),
        at("trash/doc.txt"));
    EXPECT_EQ(ARXFileOperationController::cloudPlaceholderTarget(at("lib/.doc.txt.icloud"),
                                                                 at("trash/.doc.txt.icloud")),
              at("trash/.doc.txt.icloud"));
}

// The progress is read off the disk while the copy runs. The copy is held in the middle by a
// fanotify permission event on the second file it opens, so that the ticks find part of the
// folder copied, however fast the disk.
TEST_F(ARXFileOperationControllerTest, ProgressIsMeasuredOnDiskWhileTheCopyRuns) {
    const std::string block(256 * 1024, 'x');
    for (int i = 0; i < 4; ++i) {
        writeFile(at("src/f" + std::to_string(i)), block);
    }
    makeFolder(at("dst"));
    const int fan = ::fanotify_init(FAN_CLASS_CONTENT | FAN_CLOEXEC | FAN_NONBLOCK, O_RDONLY);
    if (fan < 0) {
        GTEST_SKIP() << "fanotify is not permitted here: " << std::strerror(errno);
    }
    for (int i = 0; i < 4; ++i) {
        ASSERT_EQ(::fanotify_mark(fan, FAN_MARK_ADD, FAN_OPEN_PERM, AT_FDCWD,
                                  at("src/f" + std::to_string(i)).c_str()),
                  0);
    }
    std::atomic<int> held{-1};
    std::atomic<bool> stop{false};
    std::thread gate([&] {
        int opens = 0;
        char buffer[4096];
        while (!stop) {
            pollfd wait{fan, POLLIN, 0};
            if (::poll(&wait, 1, 50) <= 0) {
                continue;
            }
            ssize_t n = ::read(fan, buffer, sizeof buffer);
            if (n <= 0) {
                continue;
            }
            for (auto* event = reinterpret_cast<fanotify_event_metadata*>(buffer);
                 FAN_EVENT_OK(event, n); event = FAN_EVENT_NEXT(event, n)) {
                if (++opens == 2) {
                    held = event->fd; // answered by the test
                    continue;
                }
                fanotify_response response{event->fd, FAN_ALLOW};
                ::write(fan, &response, sizeof response);
                ::close(event->fd);
            }
        }
    });

    auto controller = begin({item(Type::copy, at("src"), at("dst/src"))});
    EXPECT_TRUE(waitUntil([&] { return held >= 0; }, 10000));
    const double total = 4.0 * double(block.size());
    EXPECT_TRUE(waitUntil([&] {
        return std::any_of(delegate.workedSizes.begin(), delegate.workedSizes.end(),
                           [&](double worked) { return worked > 0 && worked < total; });
    }));
    EXPECT_TRUE(std::any_of(presenter.updates.begin(), presenter.updates.end(),
                            [&](const ARXSheetUpdate& u) {
                                return u.value > 0 && u.value < total && u.maximum == total &&
                                       u.title == "Copying “src”...";
                            }));
    if (held >= 0) {
        fanotify_response response{held, FAN_ALLOW};
        ::write(fan, &response, sizeof response);
        ::close(held);
    }
    EXPECT_TRUE(waitForEnd());
    stop = true;
    gate.join();
    ::close(fan); // lets any open still waiting through
    EXPECT_TRUE(controller->finished());
    EXPECT_EQ(ARXTreeSnapshot(at("dst/src")), ARXTreeSnapshot(at("src")));
}
