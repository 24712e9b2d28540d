#include "platform/ARXMediaFacts.h"

#include "support/ARXTestEnvironment.h"
#include "support/ARXTestImages.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

#include <cmath>
#include <random>

namespace {

std::string le(uint32_t value, int bytes) {
    std::string out;
    for (int i = 0; i < bytes; ++i) {
        out.push_back(char((value >> (8 * i)) & 0xff));
    }
    return out;
}

std::string be32(uint32_t value) {
    return {char(value >> 24), char(value >> 16), char(value >> 8), char(value)};
}

// 16-bit mono PCM. `declaredSamples` goes into the header; `presentSamples` are written.
std::string wav(uint32_t rate, uint32_t declaredSamples, uint32_t presentSamples) {
    const uint32_t dataBytes = declaredSamples * 2;
    std::string out = "RIFF" + le(36 + dataBytes, 4) + "WAVE";
    out += "fmt " + le(16, 4) + le(1, 2) + le(1, 2) + le(rate, 4) + le(rate * 2, 4) + le(2, 2) +
           le(16, 2);
    out += "data" + le(dataBytes, 4);
    for (uint32_t i = 0; i < presentSamples; ++i) {
        out += le(uint32_t(int16_t(1000 * std::sin(i * 0.1))) & 0xffff, 2);
    }
    return out;
}

std::string imageBytes(int width, int height, const char* format) {
    return ARXImageBytes(width, height, format, Qt::darkCyan);
}

uint32_t crc32(std::string_view data) {
    uint32_t crc = 0xffffffff;
    for (unsigned char byte : data) {
        crc ^= byte;
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc >> 1) ^ (0xedb88320 & (0u - (crc & 1)));
        }
    }
    return ~crc;
}

std::string pngChunk(const std::string& type, const std::string& data) {
    const std::string body = type + data;
    return be32(uint32_t(data.size())) + body + be32(crc32(body));
}

// A PNG that declares a size and then breaks off where its pixels would begin.
std::string pngWithoutPixels(uint32_t width, uint32_t height) {
    return std::string("\x89PNG\r\n\x1a\n", 8) +
           pngChunk("IHDR", be32(width) + be32(height) + std::string("\x08\x02\0\0\0", 5)) +
           pngChunk("IDAT", std::string("\x78\x9c", 2));
}

// A short MPEG-4 video in an AVI file, made with FFmpeg's own encoder.
bool writeVideo(const Path& path, int width, int height, int frames, int fps) {
    const AVCodec* codec = avcodec_find_encoder(AV_CODEC_ID_MPEG4);
    AVFormatContext* out = nullptr;
    if (!codec || avformat_alloc_output_context2(&out, nullptr, "avi", path.c_str()) < 0) {
        return false;
    }
    AVCodecContext* encoder = avcodec_alloc_context3(codec);
    AVStream* stream = avformat_new_stream(out, nullptr);
    AVFrame* frame = av_frame_alloc();
    AVPacket* packet = av_packet_alloc();
    encoder->width = width;
    encoder->height = height;
    encoder->pix_fmt = AV_PIX_FMT_YUV420P;
    encoder->time_base = {1, fps};
    encoder->framerate = {fps, 1};
    encoder->bit_rate = 200000;
    bool ok = avcodec_open2(encoder, codec, nullptr) == 0 &&
              avcodec_parameters_from_context(stream->codecpar, encoder) >= 0;
    stream->time_base = encoder->time_base;
    ok = ok && avio_open(&out->pb, path.c_str(), AVIO_FLAG_WRITE) >= 0 &&
         avformat_write_header(out, nullptr) >= 0;
    frame->format = encoder->pix_fmt;
    frame->width = width;
    frame->height = height;
    ok = ok && av_frame_get_buffer(frame, 0) >= 0;
    const auto drain = [&] {
        while (avcodec_receive_packet(encoder, packet) == 0) {
            av_packet_rescale_ts(packet, encoder->time_base, stream->time_base);
            packet->stream_index = stream->index;
            av_interleaved_write_frame(out, packet);
        }
    };
    for (int i = 0; ok && i < frames; ++i) {
        ok = av_frame_make_writable(frame) >= 0;
        for (int plane = 0; plane < 3; ++plane) {
            const int rows = plane == 0 ? height : height / 2;
            for (int y = 0; y < rows; ++y) {
                std::fill_n(frame->data[plane] + y * frame->linesize[plane], frame->linesize[plane],
                            uint8_t(plane == 0 ? 16 + i * 20 : 128));
            }
        }
        frame->pts = i;
        ok = ok && avcodec_send_frame(encoder, frame) >= 0;
        drain();
    }
    if (ok) {
        avcodec_send_frame(encoder, nullptr);
        drain();
        ok = av_write_trailer(out) >= 0;
    }
    if (out->pb) {
        avio_closep(&out->pb);
    }
    av_packet_free(&packet);
    av_frame_free(&frame);
    avcodec_free_context(&encoder);
    avformat_free_context(out);
    return ok;
}

class ARXMediaFactsTest : public ARXTestEnvironment {
protected:
    Path at(std::string_view name) const { return ARXPath::join(root(), name); }
    // Whatever a damaged file gives, it is no nonsense.
    static void expectSane(const ARXMediaInfo& info) {
        if (info.duration) {
            EXPECT_TRUE(std::isfinite(*info.duration));
            EXPECT_GE(*info.duration, 0.0);
        }
        if (info.pixelSize) {
            EXPECT_GT(info.pixelSize->width, 0);
            EXPECT_GT(info.pixelSize->height, 0);
        }
    }
};

TEST_F(ARXMediaFactsTest, ImageSizesFromTheHeader) {
    writeFile(at("photo.png"), imageBytes(37, 21, "PNG"));
    EXPECT_EQ(ARXMediaFacts::imageSize(at("photo.png")), (ARXPixelSize{37, 21}));
    // The content is what counts, not the name.
    writeFile(at("caf\xe9 without extension"), imageBytes(5, 8, "PNG"));
    EXPECT_EQ(ARXMediaFacts::imageSize(at("caf\xe9 without extension")), (ARXPixelSize{5, 8}));
    // A header that promises 100000 × 100000 pixels and has none: only the header is read, so
    // this neither allocates 40 GB nor fails.
    writeFile(at("huge.png"), pngWithoutPixels(100000, 100000));
    EXPECT_EQ(ARXMediaFacts::imageSize(at("huge.png")), (ARXPixelSize{100000, 100000}));

    const std::string jpeg = imageBytes(64, 40, "JPG");
    if (jpeg.empty()) {
        GTEST_SKIP() << "Qt's JPEG plugin is not installed; PNG was checked";
    }
    writeFile(at("photo.jpg"), jpeg);
    EXPECT_EQ(ARXMediaFacts::imageSize(at("photo.jpg")), (ARXPixelSize{64, 40}));
}

TEST_F(ARXMediaFactsTest, NoImageSizeForWhatIsNoImage) {
    const std::string png = imageBytes(37, 21, "PNG");
    writeFile(at("cut.png"), png.substr(0, 20));
    writeFile(at("text.png"), "hello");
    writeFile(at("empty.png"), "");
    makeFolder(at("folder.png"));
    for (const char* name : {"cut.png", "text.png", "empty.png", "folder.png", "missing.png"}) {
        EXPECT_FALSE(ARXMediaFacts::imageSize(at(name))) << name;
    }
}

TEST_F(ARXMediaFactsTest, AudioDurationFromAWaveFile) {
    writeFile(at("tone.wav"), wav(8000, 12000, 12000));
    const ARXMediaInfo info = ARXMediaFacts::probe(at("tone.wav"));
    ASSERT_TRUE(info.duration);
    EXPECT_NEAR(*info.duration, 1.5, 1e-3);
    EXPECT_FALSE(info.pixelSize);
    // Extensions only hint; a WAV named otherwise is still one.
    writeFile(at("tone"), wav(8000, 4000, 4000));
    EXPECT_NEAR(ARXMediaFacts::probe(at("tone")).duration.value_or(-1), 0.5, 1e-3);
}

TEST_F(ARXMediaFactsTest, DamagedAndHostileFilesGiveNoNonsense) {
    writeFile(at("truncated.wav"), wav(8000, 12000, 100));
    writeFile(at("lying.wav"), wav(8000, 0x7ffffff0, 50));
    writeFile(at("header-only.wav"), wav(44100, 0, 0).substr(0, 30));
    // An MP4 whose first box claims to be 2 GB long.
    writeFile(at("lying.mp4"), be32(0x7fffffff) + "moov" + std::string(64, '\0'));
    std::mt19937 rng(42);
    std::string noise(256 * 1024, '\0');
    for (char& c : noise) {
        c = char(rng() & 0xff);
    }
    writeFile(at("noise.mp4"), noise);
    writeFile(at("empty.mp3"), "");
    makeFolder(at("folder.mkv"));
    for (const char* name : {"truncated.wav", "lying.wav", "header-only.wav", "lying.mp4",
                             "noise.mp4", "empty.mp3", "folder.mkv", "missing.mkv"}) {
        SCOPED_TRACE(name);
        expectSane(ARXMediaFacts::probe(at(name)));
    }
    EXPECT_FALSE(ARXMediaFacts::probe(at("noise.mp4")).pixelSize);
    EXPECT_FALSE(ARXMediaFacts::probe(at("folder.mkv")).duration);
    EXPECT_FALSE(ARXMediaFacts::probe(at("missing.mkv")).duration);
}

TEST_F(ARXMediaFactsTest, VideoSizeAndDuration) {
    const Path video = at("clip \xff.avi");
    if (!writeVideo(video, 64, 48, 10, 10)) {
        GTEST_SKIP() << "this FFmpeg cannot encode MPEG-4 into AVI; no video to measure";
    }
    const ARXMediaInfo info = ARXMediaFacts::probe(video);
    EXPECT_EQ(info.pixelSize, (ARXPixelSize{64, 48}));
    ASSERT_TRUE(info.duration);
    EXPECT_NEAR(*info.duration, 1.0, 0.05);
}

} // namespace
