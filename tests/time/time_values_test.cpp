#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "lib/baselib/errors/error_exception.h"
#include "tests/kit/log_capture.h"
#include "time/calendar.h"
#include "time/leap_seconds.h"
#include "time/time_axis.h"

namespace {

using testing::HasSubstr;

UNIVERSAL_TIME Utc(const char* text) {
    return UNIVERSAL_TIME::FromText(text);
}
MISSION_ELAPSED_TIME Met(const char* text) {
    return MISSION_ELAPSED_TIME::FromText(text);
}

TEST(Calendar, DayNumbersAgreeWithTheSystemCalendar) {
    // timegm counts days since 1970 by its own method; every day of the years 1600 to 2000 is tried.
    const long long day_of_epoch = DayNumber(1970, 1, 1);
    for (int year = 1600; year <= 2000; ++year) {
        for (int month = 1; month <= 12; ++month) {
            for (int day = 1; day <= DaysOfMonth(year, month); ++day) {
                std::tm date{};
                date.tm_year = year - 1900;
                date.tm_mon = month - 1;
                date.tm_mday = day;
                ASSERT_EQ(timegm(&date) / 86400, DayNumber(year, month, day) - day_of_epoch);
                ASSERT_EQ(date.tm_mday, day) << "a day that the month does not have";
                ASSERT_EQ(date.tm_yday + 1, DayOfYear(year, month, day));
                const CALENDAR_DATE back = DateOfDayNumber(DayNumber(year, month, day));
                ASSERT_EQ(std::tie(back.year, back.month, back.day), std::tie(year, month, day));
            }
        }
    }
    for (const int no_month : {-1, 0, 13}) EXPECT_EQ(DaysOfMonth(2011, no_month), -1);
}

struct DIFFERENCE {
    const char* earlier;
    const char* later;
    double seconds;
    int leap_seconds;
};

constexpr DIFFERENCE kDifferences[] = {
    {"01-JAN-2017/00:00:00", "01-JAN-2017/00:00:00.000001", 1e-6, 0},
    {"31-DEC-2016/23:59:59", "01-JAN-2017/00:00:00", 2.0, 1},
    {"31-DEC-2016/23:59:59", "31-DEC-2016/23:59:60", 2.0, 1},  // the instant counts as the second after it
    {"31-DEC-2016/23:59:60", "01-JAN-2017/00:00:00", 0.0, 0},
    {"01-JAN-1971/00:00:00", "01-JAN-2020/00:00:00", 17897 * 86400.0 + 27, 27},  // every item of the table
    {"01-JAN-2017/00:00:00", "01-JAN-2030/00:00:00", 4748 * 86400.0, 0},
    {"01-JAN-1972/00:00:00", "31-DEC-1972/00:00:00", 365 * 86400.0 + 1, 1},
    {"01-JAN-0000/00:00:00", "31-DEC-9999/23:59:59.999999", 3652425 * 86400.0 + 27 - 1e-6, 27},
    // The two items of 31 June count when 1 July ends, not when it begins.
    {"30-JUN-2012/23:59:59", "01-JUL-2012/00:00:00", 1.0, 0},
    {"01-JUL-2012/23:59:59", "02-JUL-2012/00:00:00", 2.0, 1},
    {"30-JUN-2015/23:59:50", "02-JUL-2015/00:00:10", 86400 + 21.0, 1},
};

TEST(UniversalTime, DifferencesCountLeapSecondsInBothDirections) {
    for (const DIFFERENCE& c : kDifferences) {
        SCOPED_TRACE(std::string(c.earlier) + " to " + c.later);
        EXPECT_DOUBLE_EQ(TIME_AXIS<UNIVERSAL_TIME>::SecondsSince(Utc(c.earlier), Utc(c.later)), c.seconds);
        EXPECT_DOUBLE_EQ(TIME_AXIS<UNIVERSAL_TIME>::SecondsSince(Utc(c.later), Utc(c.earlier)), -c.seconds);
        EXPECT_EQ(LeapSecondCount(Utc(c.earlier), Utc(c.later)), c.leap_seconds);
        EXPECT_EQ(LeapSecondCount(Utc(c.later), Utc(c.earlier)), -c.leap_seconds);
        const auto count = [&] { (void)LeapSecondCount(Utc(c.earlier), Utc(c.later)); };
        EXPECT_EQ(
            CountOf("leap secs = " + std::to_string(c.leap_seconds) + "\n", LoggedBy(count, LOGGING_LEVEL::TRACE)), 1);
    }
}

TEST(LeapSeconds, AreThoseThatWerePublishedByAllEightFields) {
    // IERS Bulletin C; those of 2012 and 2015 are below.
    const int days[] = {19720630, 19721231, 19731231, 19741231, 19751231, 19761231, 19771231, 19781231, 19791231,
                        19810630, 19820630, 19830630, 19850630, 19871231, 19891231, 19901231, 19920630, 19930630,
                        19940630, 19951231, 19970630, 19981231, 20051231, 20081231, 20161231};
    for (const int day : days) {
        const UNIVERSAL_TIME time = {day / 10000, day / 100 % 100, day % 100, 23, 59, 60, 0, 0};
        EXPECT_TRUE(IsLeapSecond(time)) << day;
    }
    EXPECT_EQ(LeapSecondTable()[27].year, 0) << "the end";
    EXPECT_FALSE(IsLeapSecond(Utc("31-DEC-2016/23:59:60.000001")));
    EXPECT_FALSE(IsLeapSecond(Utc("31-DEC-2014/23:59:60")));
    EXPECT_FALSE(IsLeapSecond(Utc("30-JUN-2012/23:59:60"))) << "the table says 31 June";
    for (const int year : {2012, 2015}) EXPECT_TRUE(IsLeapSecond(UNIVERSAL_TIME{year, 6, 31, 23, 59, 60, 0, 0}));
}

TEST(UniversalTime, OrdersByYearDayAndTimeOfDay) {
    const UNIVERSAL_TIME spare_minute{2012, 3, 5, 10, 60, 0, 0, 0};
    EXPECT_TRUE((spare_minute <=> UNIVERSAL_TIME{2012, 3, 5, 10, 59, 0, 0, 0}) == 0) << "minute 60 counts as 59";
    const char* ascending[] = {"31-DEC-2011/23:59:59.999999", "01-JAN-2012/00:00:00",        "29-FEB-2012/23:00:00",
                               "01-MAR-2012/00:00:00",        "01-MAR-2012/00:00:00.000001", "01-MAR-2012/00:00:00.001",
                               "01-MAR-2012/00:01:00",        "01-MAR-2012/01:00:00",        "01-JAN-2013/00:00:00"};
    for (size_t i = 0; i + 1 < std::size(ascending); ++i) {
        EXPECT_LT(Utc(ascending[i]), Utc(ascending[i + 1])) << ascending[i];
    }
}

TEST(UniversalTime, PlusIsTheInverseOfTheDifference) {
    std::mt19937 random(20161231);
    std::uniform_int_distribution<long long> microseconds(-2'000'000'000'000'000, 2'000'000'000'000'000);
    const UNIVERSAL_TIME start = Utc("15-AUG-1994/06:07:08.9");
    for (int i = 0; i < 20000; ++i) {
        const double seconds = static_cast<double>(microseconds(random)) / 1e6;
        const UNIVERSAL_TIME moved = TIME_AXIS<UNIVERSAL_TIME>::Plus(start, seconds);
        ASSERT_DOUBLE_EQ(TIME_AXIS<UNIVERSAL_TIME>::SecondsSince(start, moved), seconds) << moved.ToText();
        ASSERT_EQ(Utc(moved.ToText().c_str()), moved);
        ASSERT_EQ(Utc(moved.ToIsoText().c_str()), moved);
    }
    const std::tuple<const char*, double, const char*> sums[] = {
        {"31-DEC-2016/23:59:59.5", 1.0, "31-DEC-2016/23:59:60.500000"},
        {"01-JAN-2017/00:00:00", -1e-6, "31-DEC-2016/23:59:60.999999"},
        {"01-JAN-2017/00:00:00", -1.000001, "31-DEC-2016/23:59:59.999999"},
        {"01-JUL-2012/23:59:59", 1.25, "01-JUL-2012/23:59:60.250000"},
        {"28-FEB-2012/23:59:59", 1.0000004, "29-FEB-2012/00:00:00.000000"},
        {"31-DEC-9999/23:59:59", 0.999999, "31-DEC-9999/23:59:59.999999"},
    };
    for (const auto& [from, seconds, expected] : sums) {
        EXPECT_EQ(TIME_AXIS<UNIVERSAL_TIME>::Plus(Utc(from), seconds).ToText(), expected) << from;
    }
    for (const double seconds : {1.0, 1e300, -4e11, std::numeric_limits<double>::quiet_NaN()}) {
        EXPECT_EQ(TextThrownBy([&] { (void)TIME_AXIS<UNIVERSAL_TIME>::Plus(Utc("31-DEC-9999/23:59:59"), seconds); }),
                  "can not represent UTC value")
            << seconds;
    }
    // 2^64 microseconds are 213 503 982 days and a third: a sum that wrapped round would look good.
    for (const int days : {213503982, -213503982}) {
        EXPECT_EQ(TextThrownBy([&] { (void)(Utc("05-MAR-2012/14:03:07") + DURATION::Normalised(days, 0, 0)); }),
                  "can not represent UTC value");
    }
}

TEST(UniversalTime, CurrentTimeIsTheSystemClock) {
    const UNIVERSAL_TIME epoch = Utc("01-JAN-1970/00:00:00");
    const auto before_s = static_cast<double>(std::time(nullptr));
    const UNIVERSAL_TIME now = UNIVERSAL_TIME::Now();
    const double now_s = TIME_AXIS<UNIVERSAL_TIME>::SecondsSince(epoch, now) - LeapSecondCount(epoch, now);
    EXPECT_GE(now_s, before_s - 0.1);  // the clock of whole seconds may be some milliseconds late
    EXPECT_LT(now_s, static_cast<double>(std::time(nullptr)) + 1.1);
}

TEST(MissionElapsedTime, CarriesAndBorrows) {
    const std::tuple<const char*, MET_UNIT, int, const char*> sums[] = {
        {"+0012/23:59:59.999999", MET_UNIT::MICROSECONDS, 1, "+0013/00:00:00.000000"},
        {"+0013/00:00:00.000000", MET_UNIT::MILLISECONDS, -1, "+0012/23:59:59.999000"},
        {"+0001/00:00:00.000000", MET_UNIT::HOURS, -25, "-0000/01:00:00.000000"},
        {"-0001/00:00:00.000001", MET_UNIT::DAYS, 1, "-0000/00:00:00.000001"},
        {"+0001/12:00:00.000000", MET_UNIT::DAYS, -3, "-0001/12:00:00.000000"},
        {"+0000/00:00:00.000000", MET_UNIT::MINUTES, 9999 * 1440 + 1439, "+9999/23:59:00.000000"},
    };
    for (const auto& [start, unit, count, expected] : sums) {
        MISSION_ELAPSED_TIME sum = Met(start);
        sum.Add(unit, count);
        EXPECT_EQ(sum.ToText(), expected);
        sum.Subtract(unit, count);
        EXPECT_EQ(sum.ToText(), start);
    }
}

TEST(MissionElapsedTime, EndsWithDay9999) {
    MISSION_ELAPSED_TIME last = Met("+9999/00:00:00");
    const int most = std::numeric_limits<int>::max();
    for (const int count : {24, most}) {
        EXPECT_EQ(TextThrownBy([&] { last.Add(MET_UNIT::HOURS, count); }), "can not represent MET value");
        EXPECT_EQ(last.ToText(), "+9999/00:00:00.000000") << "left as it was";
    }
    EXPECT_EQ(TextThrownBy([&] { last.Subtract(MET_UNIT::DAYS, std::numeric_limits<int>::min()); }),
              "can not represent MET value");
    EXPECT_EQ(TextThrownBy([&] { last.Add(MET_UNIT::DAYS, 213503982); }), "can not represent MET value")
        << "2^64 microseconds, but for some hours";
    EXPECT_EQ(Met("-0000/00:00:00"), Met("+0000/00:00:00"));
    EXPECT_LT(Met("-0001/00:00:00"), Met("-0000/23:59:59"));
    const std::tuple<const char*, const char*, double> differences[] = {
        {"-0001/00:00:00", "+0001/00:00:00.5", 172800.5},
        {"+0002/00:00:00", "+0001/23:59:59.999999", -1e-6},  // borrows through every field
        {"+0000/00:59:59.5", "+0000/01:00:00.25", 0.75},
        {"-0001/00:00:00", "-0000/23:59:59.999999", 1e-6},
        {"+9999/23:59:59", "-9999/23:59:59", -2 * (9999 * 86400.0 + 86399)},
    };
    for (const auto& [from, to, seconds] : differences)
        EXPECT_DOUBLE_EQ(TIME_AXIS<MISSION_ELAPSED_TIME>::SecondsSince(Met(from), Met(to)), seconds) << from;
    EXPECT_EQ(TIME_AXIS<MISSION_ELAPSED_TIME>::Plus(Met("+0000/00:00:01"), -2.5).ToText(), "-0000/00:00:01.500000");
}

TEST(Duration, CarriesAndCountsForwardFromNegativeDays) {
    const std::tuple<long long, long long, long long, DURATION, double> sums[] = {
        {0, -1500, 0, {-1, 86'398'500, 0}, -1.5}, {1, -90'000'000, 2500, {-1, 82'800'002, 500}, -3599.9975},
        {0, 0, -1, {-1, 86'399'999, 999}, -1e-6}, {0, 86'400'000, -1000, {0, 86'399'999, 0}, 86'399.999},
        {-1, 86'399'999, 1000, {0, 0, 0}, 0.0},   {-2, 0, 0, {-2, 0, 0}, -172'800.0},
    };
    for (const auto& [days, milliseconds, microseconds, expected, seconds] : sums) {
        const DURATION d = DURATION::Normalised(days, milliseconds, microseconds);
        EXPECT_EQ(d, expected) << seconds;
        EXPECT_DOUBLE_EQ(d.Seconds(), seconds);
        EXPECT_EQ(-(-d), d);
        EXPECT_EQ(d < DURATION(), seconds < 0.0);
    }
    EXPECT_EQ((DURATION{1, 0, 0} - DURATION{0, 0, 1}), (DURATION{0, 86'399'999, 999}));
    const int most = std::numeric_limits<int>::max();
    std::string text;
    const auto overflow = [&] {
        text = TextThrownBy([&] { (void)(DURATION{most, 86'399'999, 999} + DURATION{0, 0, 1}); });
    };
    EXPECT_THAT(LoggedBy(overflow), HasSubstr("DURATION: exceeding representable range (d=2147483648 ms="));
    EXPECT_EQ(text, "duration range error");
    EXPECT_EQ(DURATION::Normalised(most, 0, 0).Seconds(), most * 86400.0);
    EXPECT_EQ(DURATION::Normalised(-most - 1LL, 0, 0).days, -most - 1);
    EXPECT_EQ(TextThrownBy([&] { (void)DURATION::Normalised(-most - 1LL, -1, 0); }), "duration range error");
    const long long least = std::numeric_limits<long long>::min();
    EXPECT_EQ(TextThrownBy([&] { (void)DURATION::Normalised(least, least, least); }), "duration range error");
}

TEST(TimeAxis, RefusesWhatHasNoMeaning) {
    const UNIVERSAL_TIME utc = Utc("05-MAR-2012/14:03:07");
    const MISSION_ELAPSED_TIME met = Met("+0001/00:00:00");
    EXPECT_EQ(TextThrownBy([&] { (void)static_cast<double>(utc); }), "can not cast from UTC to double");
    EXPECT_EQ(TextThrownBy([&] { (void)(utc + utc); }), "time operation not permitted");
    EXPECT_EQ(TextThrownBy([&] { (void)ConvertTime<UNIVERSAL_TIME>(met); }), "not allowed time conversion");
    EXPECT_EQ(ConvertTime<UNIVERSAL_TIME>(utc), utc);
    EXPECT_EQ(TIME_AXIS<double>::FromText(TIME_AXIS<double>::ToText(0.1)), 0.1);
    for (const char* text : {"", "abc", "1.5s", "nan", "inf", "1e400"}) {
        EXPECT_THROW((void)TIME_AXIS<double>::FromText(text), ERROR_DATA) << text;
    }
}

}  // namespace
