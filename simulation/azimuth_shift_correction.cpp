#include "simulation/azimuth_shift_correction.h"

#include <algorithm>
#include <cmath>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/log_and_throw.h"

namespace {

constexpr double kLargestTermSeconds = 100.0;

/// Logarithms, since the powers themselves may overflow.
bool IsTooLarge(double coefficient, std::size_t power, double argument_s) {
    if (!std::isfinite(coefficient)) return true;
    if (coefficient == 0.0 || (power > 0 && argument_s == 0.0)) return false;
    const double logarithm = power == 0 ? 0.0 : static_cast<double>(power) * std::log10(argument_s);
    return std::log10(std::abs(coefficient)) + logarithm > std::log10(kLargestTermSeconds);
}

}  // namespace

double AzimuthShiftCorrection(const AZIMUTH_SHIFT_CORRECTION& correction, double travel_time_s) {
    const std::vector<double>& p = correction.coefficients;
    const long double u = travel_time_s - correction.fast_time_reference_s;
    long double sum = 0.0L;  // coefficients of high powers are large numbers
    for (auto coefficient = p.rbegin(); coefficient != p.rend(); ++coefficient) sum = sum * u + *coefficient;
    return static_cast<double>(sum);
}

void CheckAzimuthShiftCorrection(const AZIMUTH_SHIFT_CORRECTION& correction, const ACQUISITION_SCENE& slave) {
    const double reference_s = correction.fast_time_reference_s;
    if (!std::isfinite(reference_s)) {
        LogAndThrow<ERROR_PARAMETER>(
            "slave pool: key \"focussed_slow_time_corr_poly_fast_time_reference\": value %g is not finite",
            reference_s);
    }
    const double argument_s =
        std::max(std::abs(slave.near_range_time_s - reference_s), std::abs(slave.far_range_time_s - reference_s));
    for (std::size_t i = 0; i < correction.coefficients.size(); ++i) {
        if (!IsTooLarge(correction.coefficients[i], i, argument_s)) continue;
        LogAndThrow<ERROR_PARAMETER>(
            "slave pool: key \"focussed_slow_time_corr_poly_coefficients\": element %zu, %g, moves the slave by "
            "more than %g s at a range time %g s from "
            "\"focussed_slow_time_corr_poly_fast_time_reference\" (%g s)",
            i, correction.coefficients[i], kLargestTermSeconds, argument_s, reference_s);
    }
}
