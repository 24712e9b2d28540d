#pragma once

#include "platform/ARXPath.h"

#include <optional>

struct ARXPixelSize {
    int width = 0;
    int height = 0;
    bool operator==(const ARXPixelSize&) const = default;
};

// What a container says about a piece of audio or video.
struct ARXMediaInfo {
    std::optional<double> duration; // seconds
    std::optional<ARXPixelSize>
        pixelSize; // of the main video stream, as displayed (rotation applied)
};

// Facts about media files that the views show and sort by: the pixel size of images and videos and
// the duration of audio and video. Every call reads headers only, through a descriptor opened
// here, and is bounded: a truncated file, one whose headers lie, or one that is not media at all
// gives no answer, never a hang or a crash. Safe on any thread. Not cheap (a file open and some
// reads each), so callers compute these once per item and for what is shown.
namespace ARXMediaFacts {

// How long one probe of audio or video may take before it is abandoned, in milliseconds. Only a
// damaged or hostile file comes near it.
inline constexpr int kProbeTimeLimitMs = 3000;

// The size an image declares in its header (QImageReader, without decoding the pixels). The name's
// extension helps with formats that cannot be told by content. nullopt for no image, or a header
// that does not say.
std::optional<ARXPixelSize> imageSize(const Path& path);

// Duration and video size of an audio or video file, through FFmpeg's demuxers. Either value is
// absent where the container does not tell it; a file FFmpeg cannot open gives both absent.
ARXMediaInfo probe(const Path& path);

} // namespace ARXMediaFacts
