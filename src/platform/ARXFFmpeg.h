#pragma once

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/display.h>
#include <libavutil/log.h>
}

// FFmpeg, loaded the first time media facts are asked for. Linking it outright would load some
// hundred libraries (every codec's) into each start of Atrium, which costs more at start-up than
// all of Atrium's own set-up; most sessions never look into a video. The libraries are the ones
// the build compiled against (their major versions are in the sonames).
struct ARXFFmpeg {
    decltype(&::av_log_set_level) av_log_set_level;
    decltype(&::av_malloc) av_malloc;
    decltype(&::av_free) av_free;
    decltype(&::av_freep) av_freep;
    decltype(&::av_display_rotation_get) av_display_rotation_get;
    decltype(&::avio_alloc_context) avio_alloc_context;
    decltype(&::avio_context_free) avio_context_free;
    decltype(&::avformat_alloc_context) avformat_alloc_context;
    decltype(&::avformat_open_input) avformat_open_input;
    decltype(&::avformat_find_stream_info) avformat_find_stream_info;
    decltype(&::avformat_close_input) avformat_close_input;
#if LIBAVCODEC_VERSION_INT >= AV_VERSION_INT(60, 31, 102)
    decltype(&::av_packet_side_data_get) av_packet_side_data_get;
#else
    decltype(&::av_stream_get_side_data) av_stream_get_side_data;
#endif

    // The loaded functions, or null (with one console line) when the libraries are missing.
    static const ARXFFmpeg* get();
};
