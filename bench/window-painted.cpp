// Waits until a top-level window with a title containing the given text is mapped and painted,
// and exits then: the end of a start-up measurement. One process polling the X server directly
// every 2 ms, so the check costs the same small time for a large window as for a small one
// (a screenshot tool's cost grows with the window, and would favour small windows).
//
// "Painted" is more than 8 colours among a grid of sampled pixels: a window that is only
// cleared to its background shows one or two.
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <optional>
#include <set>
#include <string>
#include <thread>

namespace {

std::string titleOf(Display* display, Window window) {
    XTextProperty property;
    std::string title;
    if (XGetWMName(display, window, &property) && property.value) {
        title.assign(reinterpret_cast<const char*>(property.value), property.nitems);
        XFree(property.value);
    }
    return title;
}

// Depth-first: the program's top-level window may sit below a window manager's frame.
std::optional<Window> findViewable(Display* display, Window parent, const char* title) {
    Window root;
    Window up;
    Window* children = nullptr;
    unsigned count = 0;
    if (!XQueryTree(display, parent, &root, &up, &children, &count)) {
        return std::nullopt;
    }
    std::optional<Window> found;
    for (unsigned i = 0; i < count && !found; ++i) {
        XWindowAttributes attributes;
        if (!XGetWindowAttributes(display, children[i], &attributes) ||
            attributes.map_state != IsViewable) {
            continue;
        }
        if (titleOf(display, children[i]).find(title) != std::string::npos) {
            found = children[i];
        } else {
            found = findViewable(display, children[i], title);
        }
    }
    if (children) {
        XFree(children);
    }
    return found;
}

size_t coloursOf(Display* display, Window window) {
    XWindowAttributes attributes;
    if (!XGetWindowAttributes(display, window, &attributes) || attributes.width < 2) {
        return 0;
    }
    XImage* image =
        XGetImage(display, window, 0, 0, attributes.width, attributes.height, AllPlanes, ZPixmap);
    if (!image) {
        return 0;
    }
    std::set<unsigned long> colours;
    for (int y = 0; y < attributes.height; y += 4) {
        for (int x = 0; x < attributes.width; x += 4) {
            colours.insert(XGetPixel(image, x, y));
        }
    }
    XDestroyImage(image);
    return colours.size();
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: window-painted TITLE [TIMEOUT_SECONDS]\n");
        return 2;
    }
    const double timeout = argc > 2 ? std::atof(argv[2]) : 10.0;
    Display* display = XOpenDisplay(nullptr);
    if (!display) {
        std::fprintf(stderr, "window-painted: no X display\n");
        return 2;
    }
    // A window being destroyed while we look at it is not an error here.
    XSetErrorHandler([](Display*, XErrorEvent*) { return 0; });
    const auto start = std::chrono::steady_clock::now();
    while (std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count() <
           timeout) {
        if (auto window = findViewable(display, DefaultRootWindow(display), argv[1])) {
            if (coloursOf(display, *window) > 8) {
                XCloseDisplay(display);
                return 0;
            }
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    XCloseDisplay(display);
    std::fprintf(stderr, "window-painted: no painted window titled '%s'\n", argv[1]);
    return 1;
}
