#pragma once

#include <QString>

#include <cstdint>

// The texts of sizes and durations, shared by every view, sheet and sidebar that shows them.
namespace ARXFileFormat {

// Decimal units, computed in single precision: "--" for an unknown size (all bits set), "512 B",
// then divided by 1000 up to four times: "%.0f KB", "%.1f MB", "%.2f GB", "%.2f TB".
QString formatSize(uint64_t size);

// "mm:ss", or "hh:mm:ss" from one hour on; seconds rounded half up. 5 s is "00:05", 3725 s is
// "01:02:05". Negative and non-finite values read as 0.
QString formatDuration(double seconds);

} // namespace ARXFileFormat
