#include "platform/ARXDesktopLauncher.h"

#include "platform/ARXStartupNotification.h"

#include <gio/gdesktopappinfo.h>
#include <gio/gio.h>

#include <memory>
#include <unistd.h>

// A launch context that gives the started application the id of the user's action, so that its
// window may take the focus, and ends the launch feedback when starting fails. GIO passes the id
// on as DESKTOP_STARTUP_ID, or in the platform data of a D-Bus activation.
struct ARXLaunchContext {
    GAppLaunchContext parent_instance;
};
struct ARXLaunchContextClass {
    GAppLaunchContextClass parent_class;
};
G_DEFINE_TYPE(ARXLaunchContext, arx_launch_context, G_TYPE_APP_LAUNCH_CONTEXT)

namespace {

char* startupNotifyId(GAppLaunchContext*, GAppInfo* info, GList*) {
    const char* executable = g_app_info_get_executable(info);
    QByteArray icon;
    if (GIcon* gicon = g_app_info_get_icon(info); gicon && G_IS_THEMED_ICON(gicon)) {
        const char* const* names = g_themed_icon_get_names(G_THEMED_ICON(gicon));
        icon = names && names[0] ? QByteArray(names[0]) : QByteArray();
    }
    const QByteArray id = ARXStartupNotification::beginLaunch(g_app_info_get_display_name(info),
                                                              executable ? executable : "", icon);
    return id.isEmpty() ? nullptr : g_strdup(id.constData());
}

void launchFailed(GAppLaunchContext*, const char* startupId) {
    ARXStartupNotification::endLaunch(startupId);
}

// In the started program, before it runs: its working folder is the opened item's folder.
void enterFolder(gpointer folder) {
    [[maybe_unused]] int ignored = ::chdir(static_cast<const char*>(folder));
}

std::function<std::optional<QString>(const Path&)>& testLauncher() {
    static std::function<std::optional<QString>(const Path&)> launcher;
    return launcher;
}

QString takeMessage(GError* error) {
    QString reason = error ? QString::fromUtf8(error->message) : QString();
    if (error) {
        g_error_free(error);
    }
    return reason;
}

} // namespace

static void arx_launch_context_class_init(ARXLaunchContextClass* klass) {
    GAppLaunchContextClass* base = G_APP_LAUNCH_CONTEXT_CLASS(klass);
    base->get_startup_notify_id = startupNotifyId;
    base->launch_failed = launchFailed;
}

static void arx_launch_context_init(ARXLaunchContext*) {}

std::optional<QString> ARXDesktopLauncher::openWithDefaultApplication(const Path& path) {
    if (testLauncher()) {
        return testLauncher()(path);
    }
    // GFile takes the path's bytes as they are, so names that are not UTF-8 open too.
    std::unique_ptr<GFile, decltype(&g_object_unref)> file(g_file_new_for_path(path.c_str()),
                                                           g_object_unref);
    GError* error = nullptr;
    std::unique_ptr<GAppInfo, decltype(&g_object_unref)> app(
        g_file_query_default_handler(file.get(), nullptr, &error), g_object_unref);
    if (!app) {
        return takeMessage(error);
    }
    std::unique_ptr<char, decltype(&g_free)> uri(g_file_get_uri(file.get()), g_free);
    GList uris{uri.get(), nullptr, nullptr};
    std::unique_ptr<GAppLaunchContext, decltype(&g_object_unref)> context(
        G_APP_LAUNCH_CONTEXT(g_object_new(arx_launch_context_get_type(), nullptr)), g_object_unref);
    bool launched = false;
    if (G_IS_DESKTOP_APP_INFO(app.get())) {
        auto* desktop = G_DESKTOP_APP_INFO(app.get());
        // The application starts in the folder of what it opens, as from a file manager one
        // expects, unless its desktop entry names a folder of its own (Path=).
        std::unique_ptr<char, decltype(&g_free)> own(g_desktop_app_info_get_string(desktop, "Path"),
                                                     g_free);
        const std::string folder = ARXPath::parentPath(path);
        launched = g_desktop_app_info_launch_uris_as_manager(
            desktop, &uris, context.get(), G_SPAWN_SEARCH_PATH, own ? nullptr : enterFolder,
            const_cast<char*>(folder.c_str()), nullptr, nullptr, &error);
    } else {
        launched = g_app_info_launch_uris(app.get(), &uris, context.get(), &error);
    }
    if (launched) {
        return std::nullopt;
    }
    return takeMessage(error);
}

void ARXDesktopLauncher::setLauncherForTesting(
    std::function<std::optional<QString>(const Path&)> launcher) {
    testLauncher() = std::move(launcher);
}
