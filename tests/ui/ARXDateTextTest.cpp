#include "ui/spaceviews/ARXDateText.h"

#include "support/ARXTestEnvironment.h"

#include <gtest/gtest.h>

namespace {

// 2024-03-15 12:00 in New York (EDT, UTC-4).
constexpr double kNow = 1710518400;
constexpr double kThisMorning = 1710509400;     // 2024-03-15 09:30
constexpr double kLastNight = 1710475140;       // 2024-03-14 23:59
constexpr double kTomorrowMorning = 1710590700; // 2024-03-16 08:05
constexpr double kFiveDaysAgo = 1710077400;     // 2024-03-10 09:30

// ICU puts a narrow no-break space before "AM" in newer data and a plain space in older data.
QString plain(QString text) {
    return text.replace(QChar(0x202F), u' ').replace(QChar(0x00A0), u' ');
}

class ARXDateTextTest : public ARXTestEnvironment {
protected:
    ARXDateText text{QStringLiteral("en_US"), "America/New_York", [] { return kNow; }};

    QString format(double seconds, int level) const {
        return plain(text.format(seconds, ARXDateText::levelStyles()[size_t(level)]));
    }
};

TEST_F(ARXDateTextTest, NamesTheDaysAroundNowAndDatesTheOthers) {
    EXPECT_EQ(format(kThisMorning, 0), QStringLiteral("Today, 9:30 AM"));
    EXPECT_EQ(format(kLastNight, 0), QStringLiteral("Yesterday, 11:59 PM"));
    EXPECT_EQ(format(kTomorrowMorning, 1), QStringLiteral("Tomorrow, 8:05 AM"));
    EXPECT_EQ(format(kThisMorning, 2), QStringLiteral("Today"));
    EXPECT_EQ(format(kLastNight, 2), QStringLiteral("Yesterday"));

    // Further away, the real date and time in each style, not moved by the fixed clock.
    EXPECT_EQ(format(kFiveDaysAgo, 0), QStringLiteral("Mar 10, 2024, 9:30 AM"));
    EXPECT_EQ(format(kFiveDaysAgo, 1), QStringLiteral("3/10/24, 9:30 AM"));
    EXPECT_EQ(format(kFiveDaysAgo, 2), QStringLiteral("3/10/24"));

    // The day is the time zone's: 23:59 in New York is already the next day in UTC.
    const ARXDateText utc(QStringLiteral("en_US"), "UTC", [] { return kNow; });
    EXPECT_EQ(plain(utc.format(kLastNight, ARXDateText::levelStyles()[2])),
              QStringLiteral("Today"));

    // The names are the language's own, capitalised as a cell starts.
    const ARXDateText german(QStringLiteral("de_DE"), "Europe/Berlin", [] { return kNow; });
    EXPECT_EQ(german.format(kNow - 86400, ARXDateText::levelStyles()[2]),
              QStringLiteral("Gestern"));
    EXPECT_EQ(german.format(kNow - 2 * 86400, ARXDateText::levelStyles()[2]),
              QStringLiteral("Vorgestern"));
}

TEST_F(ARXDateTextTest, TheRealClockNamesToday) {
    const ARXDateText real(QStringLiteral("en_US"));
    EXPECT_TRUE(real.format(real.now(), ARXDateText::levelStyles()[2]).startsWith(u"Today"));
}

TEST_F(ARXDateTextTest, KeepsTheFirstStyleThatLeavesFiveUnitsOfRoom) {
    // Ten units a character, so widths can be reasoned about.
    const auto measure = [](const QString& s) { return int(s.size()) * 10; };
    const QString longest = text.format(kFiveDaysAgo, ARXDateText::levelStyles()[0]);
    const QString middle = text.format(kFiveDaysAgo, ARXDateText::levelStyles()[1]);
    const QString shortest = text.format(kFiveDaysAgo, ARXDateText::levelStyles()[2]);

    EXPECT_EQ(text.fitting(kFiveDaysAgo, measure(longest) + 6, measure), longest);
    // Exactly five units of room is not enough: the next style is tried.
    EXPECT_EQ(text.fitting(kFiveDaysAgo, measure(longest) + 5, measure), middle);
    EXPECT_EQ(text.fitting(kFiveDaysAgo, measure(middle) + 6, measure), middle);
    EXPECT_EQ(text.fitting(kFiveDaysAgo, measure(shortest) + 6, measure), shortest);
    // Too narrow for all three: the last one stays.
    EXPECT_EQ(text.fitting(kFiveDaysAgo, 10, measure), shortest);
    // No date: "--", whatever the width.
    EXPECT_EQ(text.fitting(std::nullopt, 500, measure), QStringLiteral("--"));
    // Day names fit the same way.
    EXPECT_EQ(plain(text.fitting(kThisMorning, 60, measure)), QStringLiteral("Today"));
}

TEST_F(ARXDateTextTest, TheDayChangesAtTheNextMidnightOfTheZone) {
    EXPECT_EQ(text.nextDayChange(), 1710561600);           // 2024-03-16 00:00 EDT
    EXPECT_EQ(text.nextDayChange(1710561600), 1710648000); // from midnight: the next one
    // The night clocks go forward, the day is still a calendar day: 00:00 EST.
    EXPECT_EQ(text.nextDayChange(1710003600), 1710046800);
    // Where the clocks skip midnight itself, the day starts at the first moment it has.
    const ARXDateText chile(QStringLiteral("es_CL"), "America/Santiago", {});
    EXPECT_EQ(chile.nextDayChange(1725724800), 1725768000); // 2024-09-08 01:00 -03
}

} // namespace
