#pragma once

#include "platform/ARXPath.h"

// Making symbolic links, Atrium's aliases.
namespace ARXSymbolicLink {

// Creates a symbolic link at `linkPath` holding `target` as it stands. Never replaces an existing
// item. Returns 0 or the errno (EEXIST when the name is taken).
int create(const Path& target, const Path& linkPath);

} // namespace ARXSymbolicLink
