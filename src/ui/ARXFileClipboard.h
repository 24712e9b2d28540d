#pragma once

#include "platform/ARXPath.h"

#include <QByteArray>

#include <vector>

class QMimeData;

// File lists on the clipboard and in drags, in the forms other Linux file managers read and
// write: `text/uri-list`, GNOME's `x-special/gnome-copied-files` ("copy" or "cut", then the
// URIs) and KDE's `application/x-kde-cutselection` ("1" for a cut), plus the paths as plain text
// for text editors. URIs are built from the path's bytes, so a name that is not valid UTF-8 goes
// through percent-encoded and comes back byte for byte.
namespace ARXFileClipboard {

struct Contents {
    std::vector<Path> paths; // local files only, in order
    bool cut = false;
};

// A new clipboard or drag payload for the paths.
QMimeData* makeMimeData(const std::vector<Path>& paths, bool cut);
// What a payload holds. URIs that are not local files (http:, sftp:, a file URI of another host)
// and plain text are left out; a payload with none of the file forms gives no paths.
Contents read(const QMimeData* data);
// Whether the payload holds at least one local file.
bool hasFiles(const QMimeData* data);

// "file:///a%20b", with every byte outside the URI path set percent-encoded.
QByteArray fileUri(const Path& path);
// The path of one file URI ("file:///a%20b" or "file://localhost/a%20b"), decoded to bytes; empty
// for anything that is not a file on this machine, for a comment line and for a name holding NUL.
Path localPath(const QByteArray& uri);

// The system clipboard.
void put(const std::vector<Path>& paths, bool cut);
Contents current();
// After a paste of the cut `pasted`: the clipboard holds a cut of `left` instead (nothing when
// `left` is empty), provided it still holds `pasted`; anything copied or cut since stays.
void replaceCut(const Contents& pasted, const std::vector<Path>& left);

} // namespace ARXFileClipboard
