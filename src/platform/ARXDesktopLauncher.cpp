#include "platform/ARXDesktopLauncher.h"

#include <gio/gio.h>

#include <memory>

namespace {

std::function<std::optional<QString>(const Path&)>& testLauncher() {
    static std::function<std::optional<QString>(const Path&)> launcher;
    return launcher;
}

} // namespace

std::optional<QString> ARXDesktopLauncher::openWithDefaultApplication(const Path& path) {
    if (testLauncher()) {
        return testLauncher()(path);
    }
    // GFile takes the path's bytes as they are, so names that are not UTF-8 open too.
    std::unique_ptr<GFile, decltype(&g_object_unref)> file(g_file_new_for_path(path.c_str()),
                                                           g_object_unref);
    std::unique_ptr<char, decltype(&g_free)> uri(g_file_get_uri(file.get()), g_free);
    GError* error = nullptr;
    if (g_app_info_launch_default_for_uri(uri.get(), nullptr, &error)) {
        return std::nullopt;
    }
    QString reason = error ? QString::fromUtf8(error->message) : QString();
    if (error) {
        g_error_free(error);
    }
    return reason;
}

void ARXDesktopLauncher::setLauncherForTesting(
    std::function<std::optional<QString>(const Path&)> launcher) {
    testLauncher() = std::move(launcher);
}
