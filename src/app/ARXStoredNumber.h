#pragma once

#include <QJsonValue>

#include <optional>

// Numbers read from files (settings, workspace records, tables other programs may write) can be
// anything JSON can spell, 1e300 included, and converting a double outside the range of an
// integer type is undefined behaviour. So every number read from a file comes through here and
// is clamped to the range its user can take before anything converts it.
namespace ARXStoredNumber {

// The range of a stored number whose meaning gives none narrower: any int holds it, and so does
// the sum of two of them, as a frame's origin and size.
inline constexpr double kLimit = 1e9;

// A JSON number clamped to [low, high]; nullopt for anything that is no number.
std::optional<double> number(const QJsonValue& value, double low = -kLimit, double high = kLimit);

// A JSON number clamped to [low, high] and then cut towards zero, as a number cast to an integer
// is; nullopt for anything that is no number.
std::optional<qint64> integer(const QJsonValue& value, double low = -kLimit, double high = kLimit);

} // namespace ARXStoredNumber
