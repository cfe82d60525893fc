/// Fuzz target of the time scanners and of the other short texts of an orbit. The first byte chooses the reader, the rest
/// is its text. Any text is read or refused by one of the program's own errors; a value that was read prints as a text
/// that reads back to it, and moves along its axis and back.

#include <cstdint>
#include <cstdlib>
#include <string>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/logging/logging.h"
#include "orbit/interpolation_request.h"
#include "orbit/reference_time.h"
#include "time/time_axis.h"

namespace {

void Require(bool condition) {
    if (!condition) std::abort();
}

template <class S>
void CheckAxis(const S& time, double shift_s) {
    using AXIS = TIME_AXIS<S>;
    Require(AXIS::FromText(AXIS::ToText(time)) == time);
    try {
        const S moved = AXIS::Plus(time, shift_s);
        Require(AXIS::FromText(AXIS::ToText(moved)) == moved);
        Require(AXIS::SecondsSince(moved, time) == -AXIS::SecondsSince(time, moved));
    } catch (const char*) {  // beyond the range of the type
    }
}

void ScanUtc(const std::string& text) {
    const UNIVERSAL_TIME time = UNIVERSAL_TIME::FromText(text);
    for (const double shift_s : {1.0, -86400.0, 1e9, -0.999999}) CheckAxis(time, shift_s);
    if (time.year >= 1000) Require(UNIVERSAL_TIME::FromText(time.ToIsoText()) == time);
}

void ScanMet(const std::string& text) {
    const MISSION_ELAPSED_TIME time = MISSION_ELAPSED_TIME::FromText(text);
    Require(time.ToText().size() == MISSION_ELAPSED_TIME::kTextLength);
    for (const double shift_s : {1.0, -86400.0, 1e8, -0.999999}) CheckAxis(time, shift_s);
}

void ScanReferenceTime(const std::string& text) {
    const ANY_TIME time = ReferenceTimeFromText(text);
    Require(SecondsBetween(time, time) == 0.0);
}

void ScanInterpolation(const std::string& text) {
    const INTERPOLATION_REQUEST request = ParseInterpolationText(text);
    Require(request.poly_fit_order >= -1 && request.poly_fit_order <= kHighestOrder);
    Require(request.support_point_count >= -1 && request.support_point_count <= kMostSupportPoints);
    Require(FewestStateVectors(request) >= 2);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    Log().SetScreenThreshold(static_cast<int>(LOGGING_LEVEL::NO_MESSAGE));
    Log().SetFileThreshold(static_cast<int>(LOGGING_LEVEL::NO_MESSAGE));
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::string text(reinterpret_cast<const char*>(data + 1), size - 1);
    try {
        switch (data[0] % 4) {
            case 0:
                ScanUtc(text);
                break;
            case 1:
                ScanMet(text);
                break;
            case 2:
                ScanReferenceTime(text);
                break;
            default:
                ScanInterpolation(text);
        }
    } catch (const ERROR_EXCEPTION&) {
    }
    return 0;
}
