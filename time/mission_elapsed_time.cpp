#include "time/mission_elapsed_time.h"

#include <cstdio>
#include <cstdlib>

#include "lib/baselib/logging/logging.h"
#include "time/calendar.h"
#include "time/met_scanner.h"

namespace {

constexpr long long kMicrosecondsPerUnit[] = {kMicrosecondsPerDay, 3'600'000'000, 60'000'000, 1'000'000, 1000, 1};

/// @param of_day magnitude and sign of the part below a day; may exceed a day
MISSION_ELAPSED_TIME FromDaysAndMicroseconds(long long days, long long of_day) {
    days += of_day / kMicrosecondsPerDay;
    of_day %= kMicrosecondsPerDay;
    if (days > 0 && of_day < 0) {  // one sign for both parts
        --days;
        of_day += kMicrosecondsPerDay;
    } else if (days < 0 && of_day > 0) {
        ++days;
        of_day -= kMicrosecondsPerDay;
    }
    const int sign = days < 0 || of_day < 0 ? -1 : 1;
    days = std::llabs(days);
    of_day = std::llabs(of_day);
    CheckMetDays(days);
    const int seconds = static_cast<int>(of_day / 1'000'000);
    const int fraction = static_cast<int>(of_day % 1'000'000);
    return {sign,         static_cast<int>(days), seconds / 3600, seconds / 60 % 60,
            seconds % 60, fraction / 1000,        fraction % 1000};
}

long long MicrosecondsOfDay(const MISSION_ELAPSED_TIME& time) {
    return time.hours * 3'600'000'000LL + time.minutes * 60'000'000LL + time.seconds * 1'000'000LL +
           time.milliseconds * 1000LL + time.microseconds;
}

MISSION_ELAPSED_TIME Sum(const MISSION_ELAPSED_TIME& time, MET_UNIT unit, long long count) {
    const long long signed_days = static_cast<long long>(time.sign) * time.days;
    const long long signed_of_day = time.sign * MicrosecondsOfDay(time);
    if (unit == MET_UNIT::DAYS) return FromDaysAndMicroseconds(signed_days + count, signed_of_day);
    const long long microseconds = count * kMicrosecondsPerUnit[static_cast<int>(unit)];  // at most 7.8e18: no overflow
    return FromDaysAndMicroseconds(signed_days + microseconds / kMicrosecondsPerDay,
                                   signed_of_day + microseconds % kMicrosecondsPerDay);
}

}  // namespace

void CheckMetDays(long long days) {
    if (days <= MISSION_ELAPSED_TIME::kMostDays) return;
    Log().Message(LOGGING_LEVEL::ALARM, "MET_VALUES: exceeding representable range (days=%lld)", days);
    throw "can not represent MET value";
}

MISSION_ELAPSED_TIME MISSION_ELAPSED_TIME::FromText(const std::string& text) {
    return MET_SCANNER().Scan(text);
}

MISSION_ELAPSED_TIME MISSION_ELAPSED_TIME::FromMicroseconds(long long microseconds) {
    return FromDaysAndMicroseconds(0, microseconds);
}

std::string MISSION_ELAPSED_TIME::ToText() const {
    char text[128];
    std::snprintf(text, sizeof text, "+%.4d/%.2d:%.2d:%.2d.%.3d%.3d", days, hours, minutes, seconds, milliseconds,
                  microseconds);
    text[0] = sign < 0 ? '-' : '+';
    return std::string(text).substr(0, kTextLength);
}

long long MISSION_ELAPSED_TIME::Microseconds() const {
    return sign * (days * kMicrosecondsPerDay + MicrosecondsOfDay(*this));
}

void MISSION_ELAPSED_TIME::Add(MET_UNIT unit, int count) {
    *this = Sum(*this, unit, count);
}

void MISSION_ELAPSED_TIME::Subtract(MET_UNIT unit, int count) {
    *this = Sum(*this, unit, -static_cast<long long>(count));
}

MISSION_ELAPSED_TIME::operator double() const {
    throw "can not cast from MET to double";
}

MISSION_ELAPSED_TIME operator+(const MISSION_ELAPSED_TIME&, const MISSION_ELAPSED_TIME&) {
    throw "time operation not permitted";
}
