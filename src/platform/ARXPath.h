#pragma once

#include <QString>

#include <string>
#include <string_view>

// A file system path as the kernel sees it: the native bytes, which need not be valid UTF-8.
// Absolute, with no trailing slash except for "/". Every call into the file system takes a Path;
// Qt's file classes never do, because they re-encode names and lose those that are not UTF-8.
using Path = std::string;

namespace ARXPath {

// The text before the last "/", or "/" when that is empty.
Path parentPath(std::string_view path);

// The text after the last "/"; "/" for the root itself.
std::string lastComponent(std::string_view path);

// Exactly one "/" between the two parts.
Path join(std::string_view dir, std::string_view name);

// Strips trailing slashes (but keeps "/").
Path normalized(std::string_view path);

// The text after the last "." of a name, lower-cased; empty when the name has no dot or its only
// dot is the first character (".bashrc").
std::string extension(std::string_view name);

bool isValidUtf8(std::string_view bytes);

// A cloud item not yet downloaded is a hidden file ".NAME.icloud" standing in for NAME.
bool isCloudPlaceholderName(std::string_view name);

// Text for the screen and for sorting: the bytes decoded as UTF-8, invalid sequences as U+FFFD.
QString display(std::string_view bytes);

// The bytes of a text typed or stored by the user.
Path fromText(const QString& text);

// Lower-cased bytes for comparisons on volumes that ignore case. Names that are not valid UTF-8
// fold their ASCII letters only, so that no two different byte names collapse into one.
std::string caseFolded(std::string_view path);

// "file://" + the path with a "/" appended if it lacks one, percent-encoded the way URL paths are.
// Always ends in "/", for files too: stored favourite lists use this form.
QString fileURLString(std::string_view path);

// The path of a "file://" URL, percent-decoded to bytes; empty when the text is no file URL.
Path fromFileURL(const QString& url);

// Paths inside JSON files. A UTF-8 path is stored as it stands; any other path is stored as its
// file URL, which cannot be mistaken for a path since paths start with "/".
QString toStoredText(std::string_view path);
Path fromStoredText(const QString& text);

} // namespace ARXPath
