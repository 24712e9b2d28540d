#include "platform/ARXTemporaryItems.h"

#include "platform/ARXDirectoryReader.h"
#include "platform/ARXFileOperations.h"
#include "support/ARXTestEnvironment.h"
#include "support/ARXTreeSnapshot.h"

#include <csignal>
#include <set>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

bool exists(const Path& path) {
    struct stat st {};
    return ::lstat(path.c_str(), &st) == 0;
}

std::set<std::string> namesIn(const Path& folder) {
    std::set<std::string> names;
    for (const ARXDirectoryItem& item : ARXDirectoryReader::list(folder).items) {
        names.insert(item.name);
    }
    return names;
}

// The id of a process that has ended (and been reaped), as a crashed Atrium's would be.
pid_t endedProcess() {
    const pid_t child = ::fork();
    if (child == 0) {
        ::_exit(0);
    }
    ::waitpid(child, nullptr, 0);
    return child;
}

} // namespace

class ARXTemporaryItemsTest : public ARXTestEnvironment {
protected:
    Path at(const std::string& name) const { return ARXPath::join(root(), name); }
};

TEST_F(ARXTemporaryItemsTest, SweepClearsWhatEndedProcessesLeftAndNothingElse) {
    const std::string ended = std::to_string(endedProcess());
    const std::string running = std::to_string(::getpid());
    // An unfinished copy, read-only as a copied folder may be: it goes.
    writeFile(at("f/.atrium-copy-" + ended + "-00ab/sub/part"), "half");
    ASSERT_EQ(::chmod(at("f/.atrium-copy-" + ended + "-00ab/sub").c_str(), 0500), 0);
    // An original set aside whose replacement never arrived: it goes back.
    writeFile(at("f/report.txt.atrium-temp-" + ended), "original");
    // An original whose replacement is in place: it goes.
    writeFile(at("f/photo.jpg"), "new");
    writeFile(at("f/photo.jpg.atrium-temp-" + ended), "replaced");
    // A copy this very process is making, one of an Atrium without process ids, and a name of
    // the user's own that only looks alike: they stay.
    writeFile(at("f/.atrium-copy-" + running + "-00cd"), "in progress");
    writeFile(at("f/.atrium-copy-1a2b3c"), "older Atrium");
    writeFile(at("f/notes.atrium-temp-draft"), "the user's own");

    EXPECT_EQ(ARXTemporaryItems::sweep(at("f")), 3);

    EXPECT_EQ(namesIn(at("f")),
              (std::set<std::string>{".atrium-copy-" + running + "-00cd", ".atrium-copy-1a2b3c",
                                     "notes.atrium-temp-draft", "photo.jpg", "report.txt"}));
    EXPECT_EQ(readFile(at("f/report.txt")), "original");
    EXPECT_EQ(readFile(at("f/photo.jpg")), "new");
}

// A copy killed half way (a power loss, a SIGKILL) never leaves part of a folder under the real
// name, and what it left is gone after the next sweep.
TEST_F(ARXTemporaryItemsTest, AFolderCopyKilledHalfWayLeavesTheRealNameAsItWas) {
    for (int i = 0; i < 300; ++i) {
        writeFile(at("source/f" + std::to_string(i)), std::string(64 << 10, char('a' + i % 26)));
    }
    makeFolder(at("dest"));
    const pid_t child = ::fork();
    if (child == 0) {
        try {
            ARXFileOperations::copyItem(at("source"), at("dest/copy"));
        } catch (...) {
        }
        ::_exit(0);
    }
    // Killed as soon as the copy shows on disk.
    EXPECT_TRUE(waitUntil([&] { return !namesIn(at("dest")).empty(); }, 20000));
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);

    if (exists(at("dest/copy"))) {
        EXPECT_EQ(ARXTreeSnapshot(at("dest/copy")), ARXTreeSnapshot(at("source")))
            << "half a folder under the real name";
    }
    ARXTemporaryItems::sweep(at("dest"));
    const std::set<std::string> left = namesIn(at("dest"));
    EXPECT_TRUE(left.empty() || left == std::set<std::string>{"copy"});
}
