#pragma once

#include "platform/ARXPath.h"

#include <string>
#include <string_view>
#include <unordered_set>

// The names a folder's `.hidden` file asks file managers to hide: one name a line, the convention
// Linux file managers share. A listing loads the list of its folder once and asks it for every
// child, instead of reading the file again per child.
//
// The file is read defensively: at most kMaxBytes of it (a larger file gives the names in its first
// kMaxBytes), only if it is a regular file (a FIFO or device named `.hidden` is ignored), and lines
// that cannot be a file name (empty, holding "/" or a NUL byte, "." and "..") are skipped. A
// trailing carriage return is taken off, so a list saved with CRLF line ends works.
class ARXHiddenList {
public:
    static constexpr size_t kMaxBytes = 1u << 20;

    // An empty list for no folder: only dot names are hidden.
    ARXHiddenList() = default;

    // The list of `folder`. A missing or unreadable `.hidden` gives an empty list: a folder
    // without one is the common case, and nothing about it is worth a message.
    static ARXHiddenList load(const Path& folder);

    // The list from the bytes of a `.hidden` file, for the folder given.
    static ARXHiddenList parse(const Path& folder, std::string_view content);

    const Path& folder() const { return _folder; }
    size_t size() const { return _names.size(); }

    // Whether `.hidden` lists this name (exact bytes).
    bool contains(std::string_view name) const;

    // The whole hidden rule for a child of this folder: the name starts with "." or is listed.
    bool isHidden(std::string_view name) const;

private:
    Path _folder;
    std::unordered_set<std::string> _names;
};
