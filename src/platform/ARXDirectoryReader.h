#pragma once

#include "platform/ARXFileStatus.h"
#include "platform/ARXPath.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

// One name in a folder.
struct ARXDirectoryItem {
    std::string name; // exact bytes, never "." or ".."
    // The type readdir reported (d_type), which costs nothing but is `unknown` on file systems
    // that do not fill it in (some network and FUSE file systems). A symbolic link is `symlink`.
    ARXFileType type = ARXFileType::unknown;
    uint64_t inode = 0;
    // The item's own status (not following links), once statItems has run; `exists` false there
    // means the item vanished between the listing and the status read.
    std::optional<ARXFileStatus> status;

    bool vanished() const { return status && !status->exists; }
};

// The result of reading a folder: its items in directory order, or the errno that stopped it.
// EACCES and EPERM mean no read permission.
struct ARXDirectoryListing {
    int error = 0;
    std::vector<ARXDirectoryItem> items;

    bool ok() const { return error == 0; }
};

// Reads folders with opendir/readdir on the bytes of names, since Qt's directory iterators drop
// names that are not UTF-8. The folder path itself may be a symbolic link to a folder.
namespace ARXDirectoryReader {

struct Options {
    // Leave out the items the hidden rule hides (a leading "." or the folder's `.hidden`).
    bool skipHidden = false;
};

// The items of `folder`. A failure part-way (an I/O error while reading) is a failure of the whole:
// a partial listing would look like a complete one.
ARXDirectoryListing list(const Path& folder, Options options = {});

// list() and then statItems(): every item with its own status.
ARXDirectoryListing listWithStatus(const Path& folder, Options options = {});

// Walks the folder and reads each item's status as it goes (links not followed), so that a
// listing of 100,000 names never holds them all at once: the caller keeps what it needs. Items
// for which skip answers true are passed over without a status read. An item that vanished
// between the two reads comes with a status whose `exists` is false. Returns 0 or the errno that
// stopped the walk; the caller must then drop what it collected, since it is incomplete.
int forEachWithStatus(const Path& folder, const std::function<bool(std::string_view)>& skip,
                      const std::function<void(std::string_view, const ARXFileStatus&)>& visit);

// Reads the status of each item of an earlier listing of `folder`, relative to the folder's
// descriptor and without following links. An item that is gone by now is kept and marked
// (`vanished()`); what to do with it is the caller's choice. Returns 0 or the errno of opening the
// folder, in which case no item gets a status.
int statItems(const Path& folder, std::vector<ARXDirectoryItem>& items);

// How many items the folder holds, hidden ones included; nullopt with *error on failure. Cheaper
// than list(): no names are kept.
std::optional<size_t> itemCount(const Path& folder, int* error = nullptr);

} // namespace ARXDirectoryReader
