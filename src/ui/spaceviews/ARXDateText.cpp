#include "ui/spaceviews/ARXDateText.h"

#include <QLocale>

#include <unicode/calendar.h>
#include <unicode/datefmt.h>
#include <unicode/locid.h>
#include <unicode/timezone.h>

#include <map>
#include <tuple>
#include <utility>

namespace {

constexpr double kMillisecondsPerSecond = 1000.0;

icu::DateFormat::EStyle icuStyle(ARXDateStyle style) {
    switch (style) {
    case ARXDateStyle::mediumStyle:
        return icu::DateFormat::kMedium;
    case ARXDateStyle::shortStyle:
        return icu::DateFormat::kShort;
    case ARXDateStyle::none:
        break;
    }
    return icu::DateFormat::kNone;
}

QString toQString(const icu::UnicodeString& text) {
    return QString(reinterpret_cast<const QChar*>(text.getBuffer()), text.length());
}

} // namespace

struct ARXDateText::Formatters {
    icu::Locale locale;
    std::unique_ptr<icu::TimeZone> zone;
    std::unique_ptr<icu::Calendar> calendar;
    // By (date style, time style, relative); made on first use.
    std::map<std::tuple<int, int, bool>, std::unique_ptr<icu::DateFormat>> formats;

    icu::DateFormat* format(ARXDateStylePair styles, bool relative) {
        const auto key = std::make_tuple(int(styles.date), int(styles.time), relative);
        auto found = formats.find(key);
        if (found != formats.end()) {
            return found->second.get();
        }
        icu::DateFormat::EStyle dateStyle = icuStyle(styles.date);
        if (relative && dateStyle != icu::DateFormat::kNone) {
            dateStyle = icu::DateFormat::EStyle(dateStyle | icu::DateFormat::kRelative);
        }
        std::unique_ptr<icu::DateFormat> made(
            icu::DateFormat::createDateTimeInstance(dateStyle, icuStyle(styles.time), locale));
        if (made) {
            made->setTimeZone(*zone);
            // A cell starts with the day name: "Today", "Heute", as at the start of a sentence.
            UErrorCode status = U_ZERO_ERROR;
            made->setContext(UDISPCTX_CAPITALIZATION_FOR_BEGINNING_OF_SENTENCE, status);
        }
        return formats.emplace(key, std::move(made)).first->second.get();
    }

    QString run(ARXDateStylePair styles, bool relative, double seconds) {
        icu::DateFormat* formatter = format(styles, relative);
        if (!formatter) {
            return ARXDateText::noDate();
        }
        icu::UnicodeString text;
        formatter->format(seconds * kMillisecondsPerSecond, text);
        return toQString(text);
    }
};

ARXDateText::ARXDateText(const QString& localeName, const QByteArray& timeZoneId, Clock clock)
    : _formatters(std::make_unique<Formatters>()), _clock(std::move(clock)) {
    const QString name = localeName.isEmpty() ? QLocale().name() : localeName;
    _formatters->locale = icu::Locale(name.toLatin1().constData());
    _formatters->zone.reset(
        timeZoneId.isEmpty()
            ? icu::TimeZone::createDefault()
            : icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(timeZoneId.constData())));
    UErrorCode status = U_ZERO_ERROR;
    _formatters->calendar.reset(
        icu::Calendar::createInstance(_formatters->zone->clone(), _formatters->locale, status));
    if (U_FAILURE(status)) {
        _formatters->calendar.reset();
    }
}

ARXDateText::~ARXDateText() = default;

const std::array<ARXDateStylePair, 3>& ARXDateText::levelStyles() {
    static const std::array<ARXDateStylePair, 3> styles{{
        {ARXDateStyle::mediumStyle, ARXDateStyle::shortStyle},
        {ARXDateStyle::shortStyle, ARXDateStyle::shortStyle},
        {ARXDateStyle::shortStyle, ARXDateStyle::none},
    }};
    return styles;
}

QString ARXDateText::noDate() {
    return QStringLiteral("--");
}

double ARXDateText::now() const {
    return _clock ? _clock() : icu::Calendar::getNow() / kMillisecondsPerSecond;
}

int ARXDateText::dayDifference(double from, double to) const {
    icu::Calendar* calendar = _formatters->calendar.get();
    if (!calendar) {
        return 0;
    }
    UErrorCode status = U_ZERO_ERROR;
    calendar->setTime(from * kMillisecondsPerSecond, status);
    const int32_t first = calendar->get(UCAL_JULIAN_DAY, status);
    calendar->setTime(to * kMillisecondsPerSecond, status);
    const int32_t second = calendar->get(UCAL_JULIAN_DAY, status);
    return U_SUCCESS(status) ? second - first : 0;
}

QString ARXDateText::format(double seconds, ARXDateStylePair styles) const {
    Formatters& f = *_formatters;
    if (!_clock) {
        return f.run(styles, true, seconds);
    }
    // ICU names days against the real clock and takes no "now" of ours. So the date is moved by
    // as many calendar days as lie between our now and the real one (keeping its wall time),
    // which gives it the day name it has from our now; a date that then has no name is shown
    // unmoved, so that its own day and time are what the text says.
    const int shift = dayDifference(now(), icu::Calendar::getNow() / kMillisecondsPerSecond);
    if (shift == 0 || !f.calendar) {
        return f.run(styles, true, seconds);
    }
    UErrorCode status = U_ZERO_ERROR;
    f.calendar->setTime(seconds * kMillisecondsPerSecond, status);
    f.calendar->add(UCAL_DATE, shift, status);
    const double moved = f.calendar->getTime(status) / kMillisecondsPerSecond;
    if (U_FAILURE(status)) {
        return f.run(styles, false, seconds);
    }
    const QString named = f.run(styles, true, moved);
    if (named != f.run(styles, false, moved)) {
        return named;
    }
    return f.run(styles, false, seconds);
}

QString ARXDateText::fitting(std::optional<double> seconds, int width,
                             const Measure& measure) const {
    if (!seconds) {
        return noDate();
    }
    QString text;
    for (const ARXDateStylePair& styles : levelStyles()) {
        text = format(*seconds, styles);
        if (width - 5 > measure(text)) {
            break;
        }
    }
    return text;
}

double ARXDateText::nextDayChange(double now) const {
    icu::Calendar* calendar = _formatters->calendar.get();
    if (!calendar) {
        return now + 86400.0;
    }
    // The next day's date at 00:00; where the clocks skip that hour, the calendar resolves it to
    // the first moment that exists on that day.
    UErrorCode status = U_ZERO_ERROR;
    calendar->setTime(now * kMillisecondsPerSecond, status);
    calendar->add(UCAL_DATE, 1, status);
    calendar->set(UCAL_HOUR_OF_DAY, 0);
    calendar->set(UCAL_MINUTE, 0);
    calendar->set(UCAL_SECOND, 0);
    calendar->set(UCAL_MILLISECOND, 0);
    const UDate next = calendar->getTime(status);
    return U_SUCCESS(status) ? next / kMillisecondsPerSecond : now + 86400.0;
}

double ARXDateText::nextDayChange() const {
    return nextDayChange(now());
}
