#include "app/ARXStoredNumber.h"

#include <algorithm>
#include <cmath>

namespace ARXStoredNumber {

std::optional<double> number(const QJsonValue& value, double low, double high) {
    if (!value.isDouble() || std::isnan(value.toDouble())) {
        return std::nullopt;
    }
    return std::clamp(value.toDouble(), low, high);
}

std::optional<qint64> integer(const QJsonValue& value, double low, double high) {
    const std::optional<double> clamped = number(value, low, high);
    if (!clamped) {
        return std::nullopt;
    }
    return qint64(std::trunc(*clamped));
}

} // namespace ARXStoredNumber
