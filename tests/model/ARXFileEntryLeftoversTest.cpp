#include "model/ARXFileEntry.h"
#include "platform/ARXDirectoryReader.h"
#include "support/ARXTestEnvironment.h"

#include <sys/wait.h>
#include <unistd.h>

// Listing a folder clears what a file operation cut short by a crash left in it.
class ARXFileEntryLeftoversTest : public ARXTestEnvironment {};

TEST_F(ARXFileEntryLeftoversTest, ListingAFolderClearsTheLeftoversOfEndedProcesses) {
    const pid_t ended = ::fork();
    if (ended == 0) {
        ::_exit(0);
    }
    ::waitpid(ended, nullptr, 0);
    const Path folder = ARXPath::join(root(), "f");
    writeFile(ARXPath::join(folder, ".atrium-copy-" + std::to_string(ended) + "-0a/part"), "half");
    writeFile(ARXPath::join(folder, "doc.txt.atrium-temp-" + std::to_string(ended)), "original");

    const ARXFileEntryRef entry = ARXFileEntry::create(folder, nullptr, true);
    ASSERT_TRUE(entry->expanded);
    EXPECT_TRUE(waitUntil(
        [&] {
            const ARXDirectoryListing listing = ARXDirectoryReader::list(folder);
            return listing.items.size() == 1 && listing.items[0].name == "doc.txt";
        },
        10000));
}
