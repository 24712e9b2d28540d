#pragma once

#include "model/ARXFileEntry.h"

// The media facts of an entry, made at first need and kept for the entry's life. Each fact keeps
// "not read yet" apart from "read, and there is none".
struct ARXFileEntry::Media {
    // The file the facts describe: the target's path, or a placeholder's source.
    Path source;
    std::optional<std::optional<ARXPixelSize>> dimensions;
    std::optional<std::optional<double>> duration;
};
