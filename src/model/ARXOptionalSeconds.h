#pragma once

#include <cmath>
#include <limits>
#include <optional>

// A moment in seconds since 1970, or none, in the size of one double: none is kept as NaN, which
// no file time can be. Every listed entry holds four dates, and at 100,000 entries the flag
// bytes of std::optional add up; the interface is std::optional's, so callers read it the same.
class ARXOptionalSeconds {
public:
    ARXOptionalSeconds() = default;
    ARXOptionalSeconds(std::nullopt_t) {}
    ARXOptionalSeconds(double seconds) : _value(seconds) {}
    ARXOptionalSeconds(std::optional<double> seconds)
        : _value(seconds ? *seconds : std::numeric_limits<double>::quiet_NaN()) {}

    void reset() { _value = std::numeric_limits<double>::quiet_NaN(); }
    bool has_value() const { return !std::isnan(_value); }
    explicit operator bool() const { return has_value(); }
    double operator*() const { return _value; }
    double value_or(double fallback) const { return has_value() ? _value : fallback; }
    operator std::optional<double>() const {
        return has_value() ? std::optional<double>(_value) : std::nullopt;
    }

    bool operator==(const ARXOptionalSeconds& other) const {
        return has_value() == other.has_value() && (!has_value() || _value == other._value);
    }

private:
    double _value = std::numeric_limits<double>::quiet_NaN();
};
