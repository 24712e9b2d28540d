#include "platform/ARXFFmpeg.h"

#include "platform/ARXConsole.h"

#include <dlfcn.h>
#include <string>

namespace {

#define ARX_STRINGIFY2(x) #x
#define ARX_STRINGIFY(x) ARX_STRINGIFY2(x)

void* openLibrary(const char* soname) {
    void* handle = ::dlopen(soname, RTLD_NOW | RTLD_LOCAL);
    if (!handle) {
        ARXConsole::line(std::string("Atrium: media facts are unavailable: ") + ::dlerror());
    }
    return handle;
}

template <typename F>
bool bind(void* library, const char* name, F& slot) {
    slot = reinterpret_cast<F>(::dlsym(library, name));
    if (!slot) {
        ARXConsole::line(std::string("Atrium: media facts are unavailable: no ") + name);
    }
    return slot != nullptr;
}

const ARXFFmpeg* load() {
    static const char kUtil[] = "libavutil.so." ARX_STRINGIFY(LIBAVUTIL_VERSION_MAJOR);
    static const char kFormat[] = "libavformat.so." ARX_STRINGIFY(LIBAVFORMAT_VERSION_MAJOR);
    void* util = openLibrary(kUtil);
    void* format = util ? openLibrary(kFormat) : nullptr;
    if (!format) {
        return nullptr;
    }
    static ARXFFmpeg f{};
    bool ok = bind(util, "av_log_set_level", f.av_log_set_level) &&
              bind(util, "av_malloc", f.av_malloc) && bind(util, "av_free", f.av_free) &&
              bind(util, "av_freep", f.av_freep) &&
              bind(util, "av_display_rotation_get", f.av_display_rotation_get) &&
              bind(format, "avio_alloc_context", f.avio_alloc_context) &&
              bind(format, "avio_context_free", f.avio_context_free) &&
              bind(format, "avformat_alloc_context", f.avformat_alloc_context) &&
              bind(format, "avformat_open_input", f.avformat_open_input) &&
              bind(format, "avformat_find_stream_info", f.avformat_find_stream_info) &&
              bind(format, "avformat_close_input", f.avformat_close_input);
#if LIBAVCODEC_VERSION_INT >= AV_VERSION_INT(60, 31, 102)
    ok = ok && bind(format, "av_packet_side_data_get", f.av_packet_side_data_get);
#else
    ok = ok && bind(format, "av_stream_get_side_data", f.av_stream_get_side_data);
#endif
    if (!ok) {
        return nullptr;
    }
    f.av_log_set_level(AV_LOG_QUIET);
    return &f;
}

} // namespace

const ARXFFmpeg* ARXFFmpeg::get() {
    static const ARXFFmpeg* loaded = load();
    return loaded;
}
