#include "import/orbit_files/orbit_selection.h"

#include <algorithm>
#include <cstdio>

#include "companions/companion_error.h"
#include "time/time_axis.h"

double OrbitMargin_s(const ORBIT_TABLE& table) {
    constexpr double kLeastMargin_s = 60.0;
    constexpr double kVectorsOnEachSide = 4.0;
    return std::max(kLeastMargin_s, kVectorsOnEachSide * VectorSpacing(table.vectors));
}

std::vector<UTC_STATE_VECTOR> SelectVectors(const ORBIT_TABLE& table, const UTC_INTERVAL& image) {
    const double margin_s = OrbitMargin_s(table);
    const UNIVERSAL_TIME from = TIME_AXIS<UNIVERSAL_TIME>::Plus(image.from, -margin_s);
    const UNIVERSAL_TIME to = TIME_AXIS<UNIVERSAL_TIME>::Plus(image.to, margin_s);
    const std::vector<UTC_STATE_VECTOR>& all = table.vectors;
    if (all.front().time > from || all.back().time < to) {
        char margin[32];
        std::snprintf(margin, sizeof margin, "%g s", margin_s);
        throw COMPANION_ERROR(table.file + ": offers state vectors of " +
                              IntervalText(all.front().time, all.back().time) + "; wanted are " +
                              IntervalText(from, to) + " (the interval " + IntervalText(image.from, image.to) +
                              " and " + margin + " on both sides)");
    }
    const auto is_before = [](const UTC_STATE_VECTOR& vector, const UNIVERSAL_TIME& time) {
        return vector.time < time;
    };
    auto first = std::lower_bound(all.begin(), all.end(), from, is_before);
    auto last = std::lower_bound(all.begin(), all.end(), to, is_before);
    if (first != all.begin() && first->time > from) --first;
    return {first, last + 1};
}
