#include "model/ARXFileFormat.h"

#include <cmath>
#include <limits>

namespace ARXFileFormat {

QString formatSize(uint64_t size) {
    if (size == std::numeric_limits<uint64_t>::max()) {
        return QStringLiteral("--");
    }
    if (size < 1000) {
        return QStringLiteral("%1 B").arg(size);
    }
    static const char* const kFormats[] = {"%.0f KB", "%.1f MB", "%.2f GB", "%.2f TB"};
    float value = float(size);
    int unit = -1;
    while (value >= 1000.0f && unit < 3) {
        value /= 1000.0f;
        ++unit;
    }
    return QString::asprintf(kFormats[unit], double(value));
}

QString formatDuration(double seconds) {
    // Far beyond any real medium; keeps the cast below defined.
    constexpr double kLongest = 1e12;
    if (!std::isfinite(seconds) || seconds < 0) {
        seconds = 0;
    }
    const auto total = static_cast<long long>(std::min(seconds, kLongest) + 0.5);
    const long long hours = total / 3600;
    const long long minutes = (total % 3600) / 60;
    const long long secs = total % 60;
    if (hours > 0) {
        return QString::asprintf("%02lld:%02lld:%02lld", hours, minutes, secs);
    }
    return QString::asprintf("%02lld:%02lld", minutes, secs);
}

} // namespace ARXFileFormat
