/// Fuzz target of the time scanners and of the other short texts of an orbit. The first byte chooses the reader, the
/// rest is its text. Any text is read or refused by one of the program's own errors; a value that was read prints as a
/// text that reads back to it, and moves along its axis and back.

#include <iterator>
#include <type_traits>

#include "fuzz/fuzz_target.h"
#include "orbit/interpolation/interpolation_request.h"
#include "orbit/samples/axis_zero.h"
#include "time/time_axis.h"

namespace {

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

template <class S>
void ScanTime(const std::string& text) {
    const S time = S::FromText(text);
    for (const double shift_s : {1.0, -86400.0, 1e8, -0.999999}) CheckAxis(time, shift_s);
    if constexpr (std::is_same_v<S, UNIVERSAL_TIME>) {
        if (time.year >= 1000) Require(S::FromText(time.ToIsoText()) == time);
    } else {
        Require(time.ToText().size() == S::kTextLength);
    }
}

void ScanReferenceTime(const std::string& text) {
    const ANY_TIME time = ReferenceTimeFromText(text);
    Require(SecondsSince({time}, time) == 0.0);
}

void ScanInterpolation(const std::string& text) {
    const INTERPOLATION_REQUEST request = ParseInterpolationText(text);
    Require(request.poly_fit_order >= -1 && request.poly_fit_order <= kHighestOrder);
    Require(request.support_point_count >= -1 && request.support_point_count <= kMostSupportPoints);
    Require(FewestStateVectors(request) >= 2);
}

constexpr void (*kScans[])(const std::string&) = {ScanTime<UNIVERSAL_TIME>, ScanTime<MISSION_ELAPSED_TIME>,
                                                  ScanReferenceTime, ScanInterpolation};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::string text(reinterpret_cast<const char*>(data + 1), size - 1);
    try {
        kScans[data[0] % std::size(kScans)](text);
    } catch (const ERROR_EXCEPTION&) {
    }
    return 0;
}
