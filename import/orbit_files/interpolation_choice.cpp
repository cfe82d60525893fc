#include "import/orbit_files/interpolation_choice.h"

#include <algorithm>
#include <cstdio>

namespace {

std::string Described(std::size_t count, double spacing_s, const char* reason) {
    char text[160];
    std::snprintf(text, sizeof text, "%zu vectors every %g s: %s", count, spacing_s, reason);
    return text;
}

}  // namespace

INTERPOLATION_CHOICE ChooseInterpolation(const std::vector<double>& times_s) {
    constexpr double kDense_s = 20.5;
    constexpr double kMeasured_s = 60.5;
    constexpr double kShortArc_s = 300.0;
    constexpr std::size_t kFitVectors = 12;
    constexpr std::size_t kLocalVectors = 8;
    double widest_s = 0.0;
    for (std::size_t i = 1; i < times_s.size(); ++i) widest_s = std::max(widest_s, times_s[i] - times_s[i - 1]);
    const std::size_t count = times_s.size();
    const double arc_s = times_s.back() - times_s.front();
    const auto described = [&](const char* reason) {
        return Described(count, arc_s / static_cast<double>(count - 1), reason);
    };
    const bool dense = widest_s <= kDense_s;
    if (dense && count >= kFitVectors && arc_s <= kShortArc_s)
        return {"polyfit_7", described("a short arc, where one fit also smooths the microseconds of the times")};
    if (dense && count >= kLocalVectors)
        return {"localpolynom_0_8", described("polynomials through 8 neighbours are as good as the data")};
    const std::string hermite = "hermite_0_" + std::to_string(std::min<std::size_t>(count, 4));
    if (count < 4) return {hermite, described("few, so velocities are used, too; accuracy unknown")};
    if (dense) return {hermite, described("too few for 8 neighbours, so velocities are used, too")};
    if (widest_s <= kMeasured_s) return {hermite, described("far apart, so velocities are used, too")};
    return {hermite, described("farther apart than 60 s, where accuracy is unknown; velocities are used, too")};
}
