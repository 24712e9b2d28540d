#include "platform/ARXConsole.h"

#include <cstdio>
#include <mutex>

namespace ARXConsole {

namespace {
std::mutex gMutex;
}

void line(std::string_view text) {
    std::lock_guard lock(gMutex);
    std::fwrite(text.data(), 1, text.size(), stderr);
    std::fputc('\n', stderr);
    std::fflush(stderr);
}

void line(const QString& text) {
    const QByteArray utf8 = text.toUtf8();
    line(std::string_view(utf8.constData(), size_t(utf8.size())));
}

} // namespace ARXConsole
