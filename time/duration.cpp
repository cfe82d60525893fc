#include "time/duration.h"

#include <limits>

#include "lib/baselib/logging/logging.h"
#include "time/calendar.h"

namespace {

constexpr long long kMillisecondsPerDay = 86'400'000;

[[noreturn]] void ThrowRangeError(long long days, long long milliseconds, long long microseconds) {
    Log().Message(LOGGING_LEVEL::ALARM, "DURATION: exceeding representable range (d=%lld ms=%lld us=%lld)", days,
                  milliseconds, microseconds);
    throw "duration range error";
}

/// The quotient of a division that leaves a remainder of 0 to divisor - 1, which replaces the dividend.
long long TakeCarry(long long& dividend, long long divisor) {
    long long carry = dividend / divisor;
    dividend -= carry * divisor;
    if (dividend < 0) {
        dividend += divisor;
        --carry;
    }
    return carry;
}

}  // namespace

DURATION DURATION::Normalised(long long days, long long milliseconds, long long microseconds) {
    const long long given_milliseconds = milliseconds;
    const long long given_microseconds = microseconds;
    // Carries apart first, so that no sum of two arguments can overflow.
    const long long microsecond_carry = TakeCarry(microseconds, 1000);
    long long day_carry = TakeCarry(milliseconds, kMillisecondsPerDay);
    milliseconds += microsecond_carry % kMillisecondsPerDay;
    day_carry += microsecond_carry / kMillisecondsPerDay;
    day_carry += TakeCarry(milliseconds, kMillisecondsPerDay);

    long long total_days = 0;
    if (__builtin_add_overflow(days, day_carry, &total_days)) {
        ThrowRangeError(days, given_milliseconds, given_microseconds);
    }
    if (total_days < std::numeric_limits<int>::min() || total_days > std::numeric_limits<int>::max()) {
        ThrowRangeError(total_days, given_milliseconds, given_microseconds);
    }
    return {static_cast<int>(total_days), static_cast<int>(milliseconds), static_cast<int>(microseconds)};
}

double DURATION::Seconds() const {
    constexpr int kExactDays = 100'000;  // 2^53 us are 104 249 days
    const long long day_microseconds = milliseconds * 1000LL + microseconds;
    if (days >= -kExactDays && days <= kExactDays) {
        return static_cast<double>(days * kMicrosecondsPerDay + day_microseconds) / 1e6;
    }
    return days * 86400.0 + static_cast<double>(day_microseconds) / 1e6;
}

DURATION operator+(const DURATION& a, const DURATION& b) {
    return DURATION::Normalised(static_cast<long long>(a.days) + b.days,
                                static_cast<long long>(a.milliseconds) + b.milliseconds,
                                static_cast<long long>(a.microseconds) + b.microseconds);
}

DURATION operator-(const DURATION& a) {
    return DURATION::Normalised(-static_cast<long long>(a.days), -static_cast<long long>(a.milliseconds),
                                -static_cast<long long>(a.microseconds));
}

DURATION operator-(const DURATION& a, const DURATION& b) {
    return DURATION::Normalised(static_cast<long long>(a.days) - b.days,
                                static_cast<long long>(a.milliseconds) - b.milliseconds,
                                static_cast<long long>(a.microseconds) - b.microseconds);
}
