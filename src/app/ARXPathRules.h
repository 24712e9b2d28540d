#pragma once

#include "platform/ARXPath.h"

// The only path comparisons Atrium uses across subsystems. They follow the rules of the volume a
// path lies on: on a volume that ignores case (FAT, exFAT, NTFS, ...) "/media/usb/Photo" and
// "/media/usb/PHOTO" are one path; everywhere else, and when no volume is known, comparison is
// exact on the bytes.
namespace ARXPathRules {

// Equal up to a trailing "/" and, on a case-insensitive volume, letter case. The volume of a
// decides.
bool isSamePath(const Path& a, const Path& b);

// Whether path lies inside folder: directly (its parent is folder) or, with anyDepth, at any depth
// below it. Everything lies inside "/" at any depth; an empty folder contains nothing.
bool isInside(const Path& folder, const Path& path, bool anyDepth);

// Exactly one "/" between dir and name.
Path joinPath(const Path& dir, const Path& name);

} // namespace ARXPathRules
