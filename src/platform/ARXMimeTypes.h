#pragma once

#include "platform/ARXPath.h"

#include <QString>

#include <string>
#include <string_view>
#include <vector>

// Broad kinds of content that the file model asks about ("is this an image?"), each a set of MIME
// types rather than one type.
enum class ARXTypeFamily : uint8_t {
    image,       // image/*
    movie,       // video/*
    audiovisual, // audio/* or video/*
    archive,     // the archive and disk-image formats below, and every type derived from them
    text,        // text/plain and every type derived from it
};

// What an item is, in MIME types of the shared MIME database (QMimeDatabase). Type names are
// answered in their canonical form (aliases such as "application/x-iso9660-image" come back as the
// name the database prefers).
namespace ARXMimeTypes {

inline constexpr const char* kFolderType = "inode/directory";
inline constexpr const char* kDataType = "application/octet-stream";

// The type of the item at `path`:
// - a folder is "inode/directory"; FIFOs, sockets and devices are their "inode/..." types;
// - a symbolic link is taken as its final target, named by the target's name; a dangling link is
//   "inode/symlink";
// - a regular file is judged by its name first; when the name matches no pattern, or several, the
//   first bytes of the content decide (read through a descriptor opened here, never a FIFO);
// - an item that does not exist is judged by its name alone.
// Where nothing fits, "application/octet-stream". Safe on any thread; reads the file at most once.
QString typeOfPath(const Path& path);

// The type a file of this name would have, from the name alone; "application/octet-stream" when
// no pattern matches. Where several match, the database's own deterministic choice.
QString typeOfName(std::string_view name);

// The type of a file with this extension (without the dot); "application/octet-stream" when the
// database knows none.
QString typeForExtension(std::string_view extension);

// Whether `type` is `other` or derives from it (QMimeType::inherits, with aliases understood).
bool conformsTo(const QString& type, const QString& other);

// Whether `type` belongs to the family. For image, movie and audiovisual a type counts when it or
// one of its ancestors has the family's top-level media type.
bool conformsTo(const QString& type, ARXTypeFamily family);

// A package is a folder that behaves as one document: its type is a folder and the extension of
// `name` is in `packageExtensions` (lower case, no dot).
bool isPackage(const QString& type, std::string_view name,
               const std::vector<std::string>& packageExtensions);

// The database's description of the type ("PNG image"), in the user's language where the database
// has it; empty for a type it does not know. Callers capitalise it for display.
QString kindText(const QString& type);

// Icon names of the freedesktop icon theme for the type: its own icon ("image-png") and the
// generic one of its family ("image-x-generic").
QString iconName(const QString& type);
QString genericIconName(const QString& type);

} // namespace ARXMimeTypes
