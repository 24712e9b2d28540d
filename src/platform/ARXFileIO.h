#pragma once

#include "platform/ARXPath.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// Small whole-file helpers for Atrium's own files (settings, workspaces, caches). Errors come back
// as errno values so that callers can say why something failed; errorText turns one into words.
namespace ARXFileIO {

// The whole file, or nullopt with *error set. Files larger than maxBytes are refused with EFBIG,
// so that a stray huge file cannot exhaust memory.
std::optional<std::string> readFile(const Path& path, size_t maxBytes = 64u << 20,
                                    int* error = nullptr);

// Replaces the file atomically: the data goes to a temporary file beside it, is flushed to disk,
// and is renamed over the old file, so a reader sees either the old or the new content, never a
// part. Returns 0 or an errno.
int writeAtomically(const Path& path, std::string_view data);

// Creates the folder and its missing parents (mode 0700 for new ones). Returns 0 or an errno.
int makeDirectories(const Path& path);

// Whether anything, a dangling symbolic link included, is at the path (lstat).
bool exists(const Path& path);
bool isDirectory(const Path& path);

// The bytes an unprivileged user may still write on the volume of the path; none when the
// file system does not say.
std::optional<uint64_t> availableBytes(const Path& path);

// Creates one folder (mode 0777 less the umask, as any new folder). Returns 0 or an errno.
int makeDirectory(const Path& path);

// Whether this process may read the item (access(2) with R_OK, following links).
bool isReadable(const Path& path);

// Whether this process may open the folder for listing now. Unlike isReadable it asks with the
// process's effective rights, as a listing does.
bool isListable(const Path& dir);

// The names in a folder, without "." and "..", in directory order. nullopt with *error on failure.
std::optional<std::vector<std::string>> listNames(const Path& dir, int* error = nullptr);

// Renames a file that could not be understood out of the way, to "NAME.broken", "NAME.broken-2",
// ..., so that the next save does not destroy what the user may want back. Returns the new path,
// or empty on failure.
Path setAside(const Path& path);

std::string errorText(int error);

} // namespace ARXFileIO
