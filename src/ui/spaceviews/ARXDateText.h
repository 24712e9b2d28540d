#pragma once

#include <QByteArray>
#include <QString>

#include <array>
#include <functional>
#include <memory>
#include <optional>

// The length of a date or time in a date cell, numbered as date styles usually are (none 0,
// short 1, medium 2).
enum class ARXDateStyle : int { none = 0, shortStyle = 1, mediumStyle = 2 };

struct ARXDateStylePair {
    ARXDateStyle date;
    ARXDateStyle time;
};

// The texts of the list view's date cells, without any widget, so that the fitting and the day
// names can be tested without fonts.
//
// Dates near today carry the day names of the user's language ("Today", "Yesterday", "Tomorrow",
// and in some languages two days either way), as ICU's relative date formatting gives them, with
// the time after them. A cell tries three pairs of styles, longest first, and keeps the first
// text that fits its width.
//
// Formatters are made once per object (making one costs far more than formatting a date), so a
// view keeps one ARXDateText for all its cells. Not thread-safe: main thread only.
class ARXDateText {
public:
    // Seconds since 1970.
    using Clock = std::function<double()>;
    // The width of a text in the cell's font, in the same unit as the cell's width.
    using Measure = std::function<int(const QString&)>;

    // `localeName` is an ICU or Qt locale name ("en_US", "de_DE"); empty means the user's locale
    // (QLocale's default). `timeZoneId` is an Olson id ("Europe/Berlin"); empty means the
    // system's zone. `clock` gives "now" for the day names; none means the real time.
    explicit ARXDateText(const QString& localeName = {}, const QByteArray& timeZoneId = {},
                         Clock clock = {});
    ~ARXDateText();
    ARXDateText(const ARXDateText&) = delete;
    ARXDateText& operator=(const ARXDateText&) = delete;

    // The pairs a cell tries, in order: medium date with short time, short date with short
    // time, short date alone.
    static const std::array<ARXDateStylePair, 3>& levelStyles();
    // What a cell shows for an item that has no date.
    static QString noDate();

    // The date (seconds since 1970) in one pair of styles, with a day name where the language
    // has one for that day.
    QString format(double seconds, ARXDateStylePair styles) const;

    // The text for a cell `width` wide: the first pair of `levelStyles()` whose text leaves more
    // than 5 units of room (width - 5 > measured width); the last pair when none does. No date
    // gives `noDate()`.
    QString fitting(std::optional<double> seconds, int width, const Measure& measure) const;

    // The first midnight after `now` in this object's time zone (the start of the next day,
    // which on a day that skips midnight is the first moment of that day), in seconds since
    // 1970. Day names change then, so a view re-formats its dates at that moment.
    double nextDayChange(double now) const;
    // The same after the clock's present time.
    double nextDayChange() const;

    // The clock's present time in seconds since 1970.
    double now() const;

private:
    struct Formatters;
    // The whole calendar days from `from` to `to` in this time zone.
    int dayDifference(double from, double to) const;

    std::unique_ptr<Formatters> _formatters;
    Clock _clock;
};
