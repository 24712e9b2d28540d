#pragma once

#include "platform/ARXFileError.h"
#include "platform/ARXPath.h"

#include <optional>

// How big an item of a file operation is, as the progress of the operation counts it: the
// logical size of a regular file, the sum over all regular files below a folder, 0 for anything
// else (a symbolic link counts as itself and is never followed) and for a path that names nothing.
// Safe on any thread; reads only the file system.
namespace ARXFileOperationSize {

struct Measure {
    double size = 0;
    // The first folder that could not be read; `size` then counts everything but what lies in
    // the folders that could not be read.
    std::optional<ARXFileError> error;
};

Measure measure(const Path& path);

} // namespace ARXFileOperationSize
