#include "platform/ARXSoundPlayer.h"

#include "platform/ARXConsole.h"

#include <QThreadPool>

#include <canberra.h>

#include <atomic>
#include <dlfcn.h>
#include <mutex>

// libcanberra is linked, not loaded at run time: it pulls in only a handful of small libraries
// (Ogg Vorbis, tdb, ltdl), and it loads its own output back-end (PulseAudio, ALSA, ...) by
// itself the first time a context is opened, so a process that never plays a sound pays almost
// nothing for it.

namespace ARXSoundPlayer {

namespace {

std::mutex gSinkMutex;
std::function<void(ARXSoundEffect)> gSink;

// The one context of the process, made on the sound thread at the first sound. A context that
// failed to open is dropped, so that a sound server started later is found on the next try.
ca_context* gContext = nullptr;
std::atomic<bool> gFailureTold{false};

void tellFailureOnce(const char* what, int code) {
    if (!gFailureTold.exchange(true)) {
        ARXConsole::line(QStringLiteral("Atrium: no event sounds (%1: %2)")
                             .arg(QLatin1String(what), QString::fromUtf8(ca_strerror(code))));
    }
}

// Opening a context may connect to a sound server, and an ALSA back-end may play the whole
// sample before it returns: a thread of its own keeps that away from the caller, and one thread
// only, so that the context is never used by two at once. The pool is never destroyed: a sound
// still playing at exit is cut off with the process rather than joined by a static destructor
// that runs after Qt's own have gone.
QThreadPool& soundThread() {
    static QThreadPool* pool = [] {
        auto* p = new QThreadPool;
        p->setMaxThreadCount(1);
        return p;
    }();
    return *pool;
}

// ALSA writes every configuration error straight to standard error, eight lines per attempt on
// a machine without a sound card. Atrium uses ALSA for nothing but these sounds, so where the
// library is present its error handler is made quiet; the one line of tellFailureOnce says enough.
extern "C" void quietAlsaError(const char*, int, const char*, int, const char*, ...) {}

void quietenAlsa() {
    using SetHandler = int (*)(void (*)(const char*, int, const char*, int, const char*, ...));
    if (void* alsa = ::dlopen("libasound.so.2", RTLD_LAZY | RTLD_LOCAL)) {
        if (auto set = reinterpret_cast<SetHandler>(::dlsym(alsa, "snd_lib_error_set_handler"))) {
            set(quietAlsaError);
        }
        // Kept loaded: the handler must stay in place for as long as the back-end uses ALSA.
    }
}

void playOnSoundThread(const char* id) {
    if (!gContext) {
        static std::once_flag quiet;
        std::call_once(quiet, quietenAlsa);
        ca_context* context = nullptr;
        int result = ca_context_create(&context);
        if (result == CA_SUCCESS) {
            ca_context_change_props(context, CA_PROP_APPLICATION_NAME, "Atrium",
                                    CA_PROP_APPLICATION_ID, "com.brightmoor.atrium", nullptr);
            result = ca_context_open(context);
        }
        if (result != CA_SUCCESS) {
            if (context) {
                ca_context_destroy(context);
            }
            tellFailureOnce("opening the sound context", result);
            return;
        }
        gContext = context;
    }
    const int result = ca_context_play(gContext, 0, CA_PROP_EVENT_ID, id, nullptr);
    if (result != CA_SUCCESS) {
        tellFailureOnce(id, result);
    }
}

} // namespace

// The freedesktop sound theme has no event for a file arriving or leaving, so the nearest ones
// stand in: a copy, move or duplicate that ended is a task that completed ("complete"); items
// thrown away and an emptied trash both sound like paper going into the bin ("trash-empty"), which
// is also what the macOS sounds of those moments are.
const char* eventId(ARXSoundEffect effect) {
    switch (effect) {
    case ARXSoundEffect::silence:
        return nullptr;
    case ARXSoundEffect::file_added:
        return "complete";
    case ARXSoundEffect::file_removed:
    case ARXSoundEffect::empty_trash:
        return "trash-empty";
    }
    return nullptr;
}

void play(ARXSoundEffect effect) {
    {
        std::lock_guard lock(gSinkMutex);
        if (gSink) {
            gSink(effect);
            return;
        }
    }
    const char* id = eventId(effect);
    if (!id) {
        return;
    }
    soundThread().start([id] { playOnSoundThread(id); });
}

void setSink(std::function<void(ARXSoundEffect)> sink) {
    std::lock_guard lock(gSinkMutex);
    gSink = std::move(sink);
}

} // namespace ARXSoundPlayer
