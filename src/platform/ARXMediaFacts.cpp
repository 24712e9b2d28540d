#include "platform/ARXMediaFacts.h"

#include "platform/ARXFFmpeg.h"
#include "platform/ARXFileDescriptor.h"

#include <QFile>
#include <QImageReader>

#include <cerrno>
#include <chrono>
#include <cmath>
#include <mutex>
#include <sys/stat.h>
#include <unistd.h>

namespace ARXMediaFacts {

namespace {

using Clock = std::chrono::steady_clock;

// What FFmpeg may read to find the streams and their parameters: enough for any sane header,
// small enough that a file claiming gigabytes of header cannot keep a probe busy.
constexpr int64_t kProbeBytes = 2 << 20;
constexpr int64_t kAnalyzeMicroseconds = 2 * AV_TIME_BASE;
constexpr int kIOBufferBytes = 64 * 1024;

// The file as FFmpeg sees it: reads and seeks on our descriptor, checked against the deadline,
// so that even a demuxer looping over a lying header runs out of data when time is up.
struct Source {
    int fd = -1;
    int64_t size = 0;
    int64_t position = 0;
    Clock::time_point deadline;

    bool expired() const { return Clock::now() > deadline; }
};

int readPacket(void* opaque, uint8_t* buffer, int size) {
    auto* source = static_cast<Source*>(opaque);
    if (source->expired()) {
        return AVERROR_EXIT;
    }
    ssize_t n;
    do {
        n = ::pread(source->fd, buffer, size_t(size), off_t(source->position));
    } while (n < 0 && errno == EINTR);
    if (n < 0) {
        return AVERROR(errno);
    }
    if (n == 0) {
        return AVERROR_EOF;
    }
    source->position += n;
    return int(n);
}

int64_t seekTo(void* opaque, int64_t offset, int whence) {
    auto* source = static_cast<Source*>(opaque);
    int64_t position;
    switch (whence & ~AVSEEK_FORCE) {
    case AVSEEK_SIZE:
        return source->size;
    case SEEK_SET:
        position = offset;
        break;
    case SEEK_CUR:
        position = source->position + offset;
        break;
    case SEEK_END:
        position = source->size + offset;
        break;
    default:
        return AVERROR(EINVAL);
    }
    if (position < 0) {
        return AVERROR(EINVAL);
    }
    source->position = position;
    return position;
}

int interrupted(void* opaque) {
    return static_cast<Source*>(opaque)->expired() ? 1 : 0;
}

// Playlists and references (HLS, concat, DASH, MOV external tracks) would make the demuxer open
// further files or URLs named inside this one. A probe reads this file and nothing else.
int refuseNestedOpen(AVFormatContext*, AVIOContext**, const char*, int, AVDictionary**) {
    return AVERROR(EPERM);
}

const ARXFFmpeg& ffmpeg() {
    return *ARXFFmpeg::get();
}

// Frees what avformat_open_input leaves to the caller with custom I/O.
struct Demuxer {
    AVFormatContext* context = nullptr;
    AVIOContext* io = nullptr;
    ~Demuxer() {
        ffmpeg().avformat_close_input(&context);
        if (io) {
            ffmpeg().av_freep(&io->buffer);
            ffmpeg().avio_context_free(&io);
        }
    }
};

const int32_t* displayMatrix(const AVStream* stream) {
#if LIBAVCODEC_VERSION_INT >= AV_VERSION_INT(60, 31, 102)
    const AVPacketSideData* data = ffmpeg().av_packet_side_data_get(
        stream->codecpar->coded_side_data, stream->codecpar->nb_coded_side_data,
        AV_PKT_DATA_DISPLAYMATRIX);
    return data && data->size >= 9 * sizeof(int32_t) ? reinterpret_cast<const int32_t*>(data->data)
                                                     : nullptr;
#else
    size_t size = 0;
    const uint8_t* data =
        ffmpeg().av_stream_get_side_data(stream, AV_PKT_DATA_DISPLAYMATRIX, &size);
    return data && size >= 9 * sizeof(int32_t) ? reinterpret_cast<const int32_t*>(data) : nullptr;
#endif
}

std::optional<ARXPixelSize> videoSize(const AVFormatContext* context) {
    for (unsigned i = 0; i < context->nb_streams; ++i) {
        const AVStream* stream = context->streams[i];
        const AVCodecParameters* codec = stream->codecpar;
        // Cover art in audio files is a video stream of one picture; it is no video size.
        if (codec->codec_type != AVMEDIA_TYPE_VIDEO ||
            (stream->disposition & AV_DISPOSITION_ATTACHED_PIC) || codec->width <= 0 ||
            codec->height <= 0) {
            continue;
        }
        ARXPixelSize size{codec->width, codec->height};
        // Phones store portrait video as landscape frames plus a rotation to apply on playback.
        if (const int32_t* matrix = displayMatrix(stream)) {
            const double rotation = ffmpeg().av_display_rotation_get(matrix);
            if (std::isfinite(rotation) && std::lround(std::fabs(rotation)) % 180 == 90) {
                std::swap(size.width, size.height);
            }
        }
        return size;
    }
    return std::nullopt;
}

std::optional<double> durationOf(const AVFormatContext* context) {
    if (context->duration != AV_NOPTS_VALUE && context->duration >= 0) {
        return double(context->duration) / AV_TIME_BASE;
    }
    // Some containers know the length of a stream but not of the whole.
    std::optional<double> longest;
    for (unsigned i = 0; i < context->nb_streams; ++i) {
        const AVStream* stream = context->streams[i];
        if (stream->duration == AV_NOPTS_VALUE || stream->duration < 0 ||
            stream->time_base.den == 0) {
            continue;
        }
        const double seconds = double(stream->duration) * av_q2d(stream->time_base);
        if (std::isfinite(seconds) && (!longest || seconds > *longest)) {
            longest = seconds;
        }
    }
    return longest;
}

} // namespace

std::optional<ARXPixelSize> imageSize(const Path& path) {
    ARXFileDescriptor fd = ARXFileDescriptor::openRegularFile(path);
    if (!fd.isValid()) {
        return std::nullopt;
    }
    QFile file;
    if (!file.open(fd.get(), QIODevice::ReadOnly, QFileDevice::DontCloseHandle)) {
        return std::nullopt;
    }
    QImageReader reader(&file);
    // The content decides; the extension is the fallback for formats without a signature (TGA).
    const std::string extension = ARXPath::extension(ARXPath::lastComponent(path));
    if (!extension.empty()) {
        reader.setFormat(QByteArray::fromStdString(extension));
        reader.setDecideFormatFromContent(true);
    }
    const QSize size = reader.size();
    if (!size.isValid() || size.isEmpty()) {
        return std::nullopt;
    }
    return ARXPixelSize{size.width(), size.height()};
}

ARXMediaInfo probe(const Path& path) {
    if (!ARXFFmpeg::get()) {
        return {};
    }
    ARXFileDescriptor fd = ARXFileDescriptor::openRegularFile(path);
    struct stat st {};
    if (!fd.isValid() || ::fstat(fd.get(), &st) != 0) {
        return {};
    }
    Source source;
    source.fd = fd.get();
    source.size = st.st_size;
    source.deadline = Clock::now() + std::chrono::milliseconds(kProbeTimeLimitMs);

    Demuxer demuxer;
    auto* buffer = static_cast<unsigned char*>(ffmpeg().av_malloc(kIOBufferBytes));
    if (!buffer) {
        return {};
    }
    demuxer.io = ffmpeg().avio_alloc_context(buffer, kIOBufferBytes, 0, &source, readPacket,
                                             nullptr, seekTo);
    if (!demuxer.io) {
        ffmpeg().av_free(buffer);
        return {};
    }
    AVFormatContext* context = ffmpeg().avformat_alloc_context();
    if (!context) {
        return {};
    }
    context->pb = demuxer.io;
    context->flags |= AVFMT_FLAG_CUSTOM_IO;
    context->probesize = kProbeBytes;
    context->max_analyze_duration = kAnalyzeMicroseconds;
    context->interrupt_callback.callback = interrupted;
    context->interrupt_callback.opaque = &source;
    context->io_open = refuseNestedOpen;

    // The name only helps the format guess, by its extension; the bytes come from the descriptor.
    const std::string extension = ARXPath::extension(ARXPath::lastComponent(path));
    const std::string hint = extension.empty() ? std::string("media") : "media." + extension;
    // On failure avformat_open_input frees the context; the I/O context stays ours.
    if (ffmpeg().avformat_open_input(&context, hint.c_str(), nullptr, nullptr) != 0) {
        return {};
    }
    demuxer.context = context;
    if (ffmpeg().avformat_find_stream_info(context, nullptr) < 0 && context->nb_streams == 0) {
        return {};
    }
    ARXMediaInfo info;
    info.duration = durationOf(context);
    info.pixelSize = videoSize(context);
    return info;
}

} // namespace ARXMediaFacts
