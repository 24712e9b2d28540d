#include "platform/ARXFolderWatcher.h"

#include "support/ARXTestEnvironment.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

// Everything a test does to the disk happens on the main thread before it lets the event loop
// run, so all its events reach the watcher in one read: what is delivered does not depend on how
// fast the machine is.
class ARXFolderWatcherTest : public ARXTestEnvironment {
protected:
    void SetUp() override {
        ARXTestEnvironment::SetUp();
        _folder = ARXPath::join(root(), "watched");
        _outside = ARXPath::join(root(), "outside");
        makeFolder(_folder);
        makeFolder(_outside);
        QObject::connect(&_watcher, &ARXFolderWatcher::subitemChanged,
                         [this](const Path& path) { _notices.push_back("changed " + path); });
        QObject::connect(&_watcher, &ARXFolderWatcher::subitemMoved,
                         [this](const Path& from, const Path& to) {
                             _notices.push_back("moved " + from + " -> " + to);
                         });
        ASSERT_TRUE(_watcher.watch(_folder));
    }

    Path in(std::string_view name) const { return ARXPath::join(_folder, name); }
    static std::string changed(const Path& path) { return "changed " + path; }
    static std::string moved(const Path& from, const Path& to) {
        return "moved " + from + " -> " + to;
    }

    // Waits for a notice the test knows must come last, then answers everything delivered.
    std::vector<std::string> noticesUntil(const std::string& last) {
        waitUntil([&] { return !_notices.empty() && _notices.back() == last; });
        std::vector<std::string> result;
        result.swap(_notices);
        return result;
    }

    // A marker file in a second watched folder: its notice comes after everything done before.
    std::string marker() {
        const Path folder = ARXPath::join(root(), "marker");
        makeFolder(folder);
        EXPECT_TRUE(_watcher.watch(folder));
        const Path path = ARXPath::join(folder, "m" + std::to_string(_markers++));
        append(path, "");
        return changed(path);
    }

    static void append(const Path& path, std::string_view bytes) {
        const int fd = ::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0644);
        ASSERT_GE(fd, 0);
        ASSERT_EQ(::write(fd, bytes.data(), bytes.size()), ssize_t(bytes.size()));
        ::close(fd);
    }

    ARXFolderWatcher _watcher;
    Path _folder;
    Path _outside;
    std::vector<std::string> _notices;
    int _markers = 0;
};

TEST_F(ARXFolderWatcherTest, CreateWriteChmodAndDeleteAreChanges) {
    const Path file = in("notes.txt");
    append(file, "one");
    // Created, written and closed at once: one notice.
    EXPECT_EQ(noticesUntil(changed(file)), std::vector<std::string>{changed(file)});

    append(file, "two");
    EXPECT_EQ(noticesUntil(changed(file)), std::vector<std::string>{changed(file)});

    ASSERT_EQ(::chmod(file.c_str(), 0600), 0);
    EXPECT_EQ(noticesUntil(changed(file)), std::vector<std::string>{changed(file)});

    ASSERT_EQ(::unlink(file.c_str()), 0);
    EXPECT_EQ(noticesUntil(changed(file)), std::vector<std::string>{changed(file)});

    const Path sub = in("sub");
    makeFolder(sub);
    EXPECT_EQ(noticesUntil(changed(sub)), std::vector<std::string>{changed(sub)});

    // The folder's own attributes change its own path.
    ASSERT_EQ(::chmod(_folder.c_str(), 0750), 0);
    EXPECT_EQ(noticesUntil(changed(_folder)), std::vector<std::string>{changed(_folder)});
}

TEST_F(ARXFolderWatcherTest, ABurstIsOneNoticePerPathInOrder) {
    const Path a = in("a.log");
    const Path b = in("b.log");
    for (int i = 0; i < 50; ++i) {
        append(a, "line\n");
    }
    append(b, "x");
    append(a, "again\n");
    const std::string last = marker();
    EXPECT_EQ(noticesUntil(last), (std::vector<std::string>{changed(a), changed(b), last}));
}

TEST_F(ARXFolderWatcherTest, AFileKeptOpenIsFollowedAFewTimesASecond) {
    const Path file = in("download.part");
    const int fd = ::open(file.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
    ASSERT_GE(fd, 0);
    std::vector<std::chrono::steady_clock::time_point> times;
    std::atomic<int> writes{0};
    QObject::connect(&_watcher, &ARXFolderWatcher::subitemChanged, [&](const Path& path) {
        if (path == file) {
            times.push_back(std::chrono::steady_clock::now());
        }
    });
    // A writer that never closes, writing a piece every few milliseconds.
    std::atomic<bool> writing{true};
    std::thread writer([&] {
        while (writing) {
            if (::write(fd, "piece\n", 6) == 6) {
                ++writes;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
    });
    const bool followed = waitUntil([&] { return times.size() >= 4; }, 20000);
    writing = false;
    writer.join();
    ASSERT_TRUE(followed) << times.size() << " notices for " << writes.load() << " writes";
    // Told again and again while open, yet a few times a second at most.
    for (size_t i = 1; i < times.size(); ++i) {
        EXPECT_GE(times[i] - times[i - 1], std::chrono::milliseconds(250)) << "notice " << i;
    }
    // The close is told too.
    const size_t before = times.size();
    ::close(fd);
    EXPECT_TRUE(waitUntil([&] { return times.size() > before; }));
}

TEST_F(ARXFolderWatcherTest, ABurstOfAThousandCreationsReportsEachNewItemOnce) {
    std::vector<std::string> expected;
    for (int i = 0; i < 1000; ++i) {
        const Path file = in("new " + std::to_string(i));
        append(file, "x");
        expected.push_back(changed(file));
    }
    const std::string last = marker();
    expected.push_back(last);
    EXPECT_EQ(noticesUntil(last), expected);
}

TEST_F(ARXFolderWatcherTest, RenamesAreMovesWithinTheWatchedFolders) {
    const Path a = in("a");
    append(a, "x");
    noticesUntil(changed(a));

    const Path b = in("b");
    ASSERT_EQ(::rename(a.c_str(), b.c_str()), 0);
    EXPECT_EQ(noticesUntil(moved(a, b)), std::vector<std::string>{moved(a, b)});

    // Into another watched folder: still one move.
    const Path other = ARXPath::join(root(), "other");
    makeFolder(other);
    ASSERT_TRUE(_watcher.watch(other));
    const Path c = ARXPath::join(other, "c");
    ASSERT_EQ(::rename(b.c_str(), c.c_str()), 0);
    EXPECT_EQ(noticesUntil(moved(b, c)), std::vector<std::string>{moved(b, c)});
}

TEST_F(ARXFolderWatcherTest, RenamesAcrossTheEdgeAreChanges) {
    const Path a = in("a");
    append(a, "x");
    noticesUntil(changed(a));

    // Out of sight: the old path is gone.
    const Path away = ARXPath::join(_outside, "a");
    ASSERT_EQ(::rename(a.c_str(), away.c_str()), 0);
    EXPECT_EQ(noticesUntil(changed(a)), std::vector<std::string>{changed(a)});

    // Into sight: the new path appeared.
    const Path back = in("back");
    ASSERT_EQ(::rename(away.c_str(), back.c_str()), 0);
    EXPECT_EQ(noticesUntil(changed(back)), std::vector<std::string>{changed(back)});
}

TEST_F(ARXFolderWatcherTest, AFileWrittenAndRenamedAtOnceIsTwoChanges) {
    // How editors and downloads save: write a temporary name, then rename it into place. The
    // view never saw the temporary name, so a move of it would lose the new file.
    const Path temporary = in(".notes.txt.swp");
    const Path final = in("notes.txt");
    append(final, "old");
    noticesUntil(changed(final));

    append(temporary, "new");
    ASSERT_EQ(::rename(temporary.c_str(), final.c_str()), 0);
    const std::string last = marker();
    EXPECT_EQ(noticesUntil(last),
              (std::vector<std::string>{changed(temporary), changed(final), last}));
}

TEST_F(ARXFolderWatcherTest, NamesAreBytes) {
    const Path latin1 = in(std::string("caf\xe9"));
    const Path feed = in("line\nfeed");
    append(latin1, "x");
    append(feed, "y");
    EXPECT_EQ(noticesUntil(changed(feed)),
              (std::vector<std::string>{changed(latin1), changed(feed)}));

    const Path renamed = in(std::string("\xff\xfe name"));
    ASSERT_EQ(::rename(latin1.c_str(), renamed.c_str()), 0);
    EXPECT_EQ(noticesUntil(moved(latin1, renamed)),
              std::vector<std::string>{moved(latin1, renamed)});
}

TEST_F(ARXFolderWatcherTest, AWatchedFolderThatGoesAwayChangesAndIsNoLongerWatched) {
    const Path sub = in("sub");
    makeFolder(sub);
    ASSERT_TRUE(_watcher.watch(sub));
    noticesUntil(changed(sub));

    ASSERT_EQ(::rmdir(sub.c_str()), 0);
    // Reported by the folder itself and by its parent: one notice.
    const std::string last = marker();
    EXPECT_EQ(noticesUntil(last), (std::vector<std::string>{changed(sub), last}));
    EXPECT_FALSE(_watcher.isWatching(sub));
    EXPECT_TRUE(_watcher.isWatching(_folder));

    // Moved away: its old path changes, and the watch does not follow it.
    const Path moving = in("moving");
    makeFolder(moving);
    ASSERT_TRUE(_watcher.watch(moving));
    noticesUntil(changed(moving));
    const Path away = ARXPath::join(_outside, "moving");
    ASSERT_EQ(::rename(moving.c_str(), away.c_str()), 0);
    const std::string last2 = marker();
    EXPECT_EQ(noticesUntil(last2), (std::vector<std::string>{changed(moving), last2}));
    EXPECT_FALSE(_watcher.isWatching(moving));
    writeFile(ARXPath::join(away, "inside"), "");
    const std::string last3 = marker();
    EXPECT_EQ(noticesUntil(last3), std::vector<std::string>{last3});
}

TEST_F(ARXFolderWatcherTest, UnwatchStopsNoticesIncludingThoseNotYetDelivered) {
    append(in("before"), "x");
    // Nothing was read yet: the pending notice goes with the watch.
    _watcher.unwatch(_folder);
    EXPECT_FALSE(_watcher.isWatching(_folder));
    append(in("after"), "x");
    const std::string last = marker();
    EXPECT_EQ(noticesUntil(last), std::vector<std::string>{last});

    ASSERT_TRUE(_watcher.watch(_folder));
    _watcher.unwatchAll();
    EXPECT_TRUE(_watcher.watchedFolders().empty());
}

TEST_F(ARXFolderWatcherTest, ALinkToAWatchedFolderReportsUnderBothPaths) {
    const Path link = ARXPath::join(root(), "link");
    ASSERT_EQ(::symlink(_folder.c_str(), link.c_str()), 0);
    ASSERT_TRUE(_watcher.watch(link));
    EXPECT_EQ(_watcher.watchedFolders(), (std::vector<Path>{link, _folder}));

    append(in("x"), "1");
    const Path viaLink = ARXPath::join(link, "x");
    EXPECT_EQ(noticesUntil(changed(viaLink)),
              (std::vector<std::string>{changed(in("x")), changed(viaLink)}));

    // One path going does not end the watch of the other.
    _watcher.unwatch(link);
    append(in("x"), "2");
    EXPECT_EQ(noticesUntil(changed(in("x"))), std::vector<std::string>{changed(in("x"))});
}

TEST_F(ARXFolderWatcherTest, FailuresAreAnsweredAndTheWatcherGoesOn) {
    EXPECT_FALSE(_watcher.watch(ARXPath::join(root(), "missing")));
    const Path file = ARXPath::join(root(), "plain");
    writeFile(file, "");
    EXPECT_FALSE(_watcher.watch(file));
    EXPECT_EQ(_watcher.watchedFolders(), std::vector<Path>{_folder});
    append(in("still"), "x");
    EXPECT_EQ(noticesUntil(changed(in("still"))), std::vector<std::string>{changed(in("still"))});
}

TEST_F(ARXFolderWatcherTest, QueuedReceiversGetThePath) {
    std::vector<Path> queued;
    QObject receiver;
    QObject::connect(
        &_watcher, &ARXFolderWatcher::subitemChanged, &receiver,
        [&](const Path& path) { queued.push_back(path); }, Qt::QueuedConnection);
    const Path file = in(std::string("q\xe9"));
    append(file, "x");
    EXPECT_TRUE(waitUntil([&] { return !queued.empty(); }));
    EXPECT_EQ(queued, std::vector<Path>{file});
}

TEST_F(ARXFolderWatcherTest, AnOverflowChangesEveryWatchedFolder) {
    // More events than the kernel queues (16384 by default) while nothing is read.
    int maxQueued = 0;
    if (FILE* limits = std::fopen("/proc/sys/fs/inotify/max_queued_events", "r")) {
        if (std::fscanf(limits, "%d", &maxQueued) != 1) {
            maxQueued = 0;
        }
        std::fclose(limits);
    }
    if (maxQueued <= 0 || maxQueued > 40000) {
        GTEST_SKIP() << "the inotify queue is too long to fill in a test";
    }
    const Path file = in("churn");
    for (int i = 0; i <= maxQueued / 2; ++i) {
        append(file, "");
        ASSERT_EQ(::unlink(file.c_str()), 0);
    }
    EXPECT_TRUE(waitUntil([&] {
        return std::find(_notices.begin(), _notices.end(), changed(_folder)) != _notices.end();
    }));
}
