#include "platform/ARXStartupNotification.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QInputEvent>
#include <QObject>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <unistd.h>
#include <xcb/xcb.h>

namespace ARXStartupNotification {

namespace {

std::atomic<uint32_t> userTime{0};

// Notes the time of each key and button press. On X11 an input event's timestamp is the X server
// time, the clock of the window manager's focus rules.
class UserTimeFilter : public QObject {
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        switch (event->type()) {
        case QEvent::KeyPress:
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
        case QEvent::TouchBegin:
            userTime = uint32_t(static_cast<QInputEvent*>(event)->timestamp());
            break;
        default:
            break;
        }
        return QObject::eventFilter(watched, event);
    }
};

xcb_connection_t* connection() {
    auto* x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    return x11 ? x11->connection() : nullptr;
}

xcb_window_t rootWindow(xcb_connection_t* c) {
    return xcb_setup_roots_iterator(xcb_get_setup(c)).data->root;
}

xcb_atom_t atom(xcb_connection_t* c, const char* name) {
    xcb_intern_atom_reply_t* reply =
        xcb_intern_atom_reply(c, xcb_intern_atom(c, 0, uint16_t(std::strlen(name)), name), nullptr);
    const xcb_atom_t result = reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
    std::free(reply);
    return result;
}

// The window the protocol's messages come from: one of Atrium's own, never shown, by which the
// window manager tells one sender's pieces from another's.
xcb_window_t messageWindow(xcb_connection_t* c) {
    static xcb_window_t window = XCB_WINDOW_NONE;
    if (window == XCB_WINDOW_NONE) {
        window = xcb_generate_id(c);
        xcb_create_window(c, XCB_COPY_FROM_PARENT, window, rootWindow(c), -100, -100, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    }
    return window;
}

void send(xcb_connection_t* c, const QByteArray& text) {
    const xcb_atom_t begin = atom(c, "_NET_STARTUP_INFO_BEGIN");
    const xcb_atom_t more = atom(c, "_NET_STARTUP_INFO");
    const xcb_window_t from = messageWindow(c);
    bool first = true;
    for (const QByteArray& piece : pieces(text)) {
        xcb_client_message_event_t event{};
        event.response_type = XCB_CLIENT_MESSAGE;
        event.format = 8;
        event.window = from;
        event.type = first ? begin : more;
        std::memcpy(event.data.data8, piece.constData(), 20);
        xcb_send_event(c, 0, rootWindow(c), XCB_EVENT_MASK_PROPERTY_CHANGE,
                       reinterpret_cast<const char*>(&event));
        first = false;
    }
    xcb_flush(c);
}

QByteArray quoted(const QByteArray& value) {
    if (!value.contains(' ') && !value.contains('"') && !value.contains('\\')) {
        return value;
    }
    QByteArray result = "\"";
    for (const char c : value) {
        if (c == '"' || c == '\\') {
            result += '\\';
        }
        result += c;
    }
    return result + '"';
}

} // namespace

bool isX11() {
    return connection() != nullptr;
}

uint32_t lastUserTime() {
    return userTime;
}

void followUserTime() {
    static UserTimeFilter* filter = nullptr;
    if (filter || !QCoreApplication::instance()) {
        return;
    }
    filter = new UserTimeFilter(QCoreApplication::instance());
    QCoreApplication::instance()->installEventFilter(filter);
}

uint32_t timeOf(const QByteArray& startupId) {
    const qsizetype at = startupId.lastIndexOf("_TIME");
    if (at < 0) {
        return 0;
    }
    bool ok = false;
    const qulonglong time = startupId.mid(at + 5).toULongLong(&ok);
    return ok && time <= 0xffffffffULL ? uint32_t(time) : 0;
}

QByteArray message(const char* kind, const QList<QPair<QByteArray, QByteArray>>& keys) {
    QByteArray text = QByteArray(kind) + ':';
    for (const auto& [key, value] : keys) {
        text += ' ' + key + '=' + quoted(value);
    }
    return text;
}

QList<QByteArray> pieces(const QByteArray& message) {
    QByteArray whole = message + '\0';
    whole.append((20 - whole.size() % 20) % 20, '\0');
    QList<QByteArray> result;
    for (qsizetype at = 0; at < whole.size(); at += 20) {
        result.append(whole.mid(at, 20));
    }
    return result;
}

QByteArray beginLaunch(const QByteArray& name, const QByteArray& binary, const QByteArray& icon) {
    xcb_connection_t* c = connection();
    if (!c) {
        return {};
    }
    static int launches = 0;
    char host[256] = {};
    ::gethostname(host, sizeof(host) - 1);
    QByteArray id = "atrium-" + QByteArray::number(::getpid()) + '-' + QByteArray(host) + '-' +
                    binary.mid(binary.lastIndexOf('/') + 1) + '-' + QByteArray::number(++launches);
    if (const uint32_t time = lastUserTime()) {
        id += "_TIME" + QByteArray::number(time);
    }
    QList<QPair<QByteArray, QByteArray>> keys{{"ID", id}, {"NAME", name}, {"BIN", binary}};
    if (!icon.isEmpty()) {
        keys.append(qMakePair(QByteArray("ICON"), icon));
    }
    keys.append(qMakePair(QByteArray("SCREEN"), QByteArray("0")));
    send(c, message("new", keys));
    return id;
}

void endLaunch(const QByteArray& startupId) {
    if (xcb_connection_t* c = connection(); c && !startupId.isEmpty()) {
        send(c, message("remove", {{"ID", startupId}}));
    }
}

void activateWindow(uint32_t window, const QByteArray& startupId) {
    xcb_connection_t* c = connection();
    if (!c || window == 0 || startupId.isEmpty()) {
        return;
    }
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, window, atom(c, "_NET_STARTUP_ID"),
                        atom(c, "UTF8_STRING"), 8, uint32_t(startupId.size()),
                        startupId.constData());
    // The request carries the time of the user's action in the asking program, which is what
    // lets a window manager that prevents focus stealing give this window the focus.
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = atom(c, "_NET_ACTIVE_WINDOW");
    event.data.data32[0] = 1; // from an application
    event.data.data32[1] = timeOf(startupId);
    xcb_send_event(c, 0, rootWindow(c),
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&event));
    endLaunch(startupId);
}

} // namespace ARXStartupNotification
