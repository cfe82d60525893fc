#include "import/pair/image_cut.h"

#include "companions/companion_error.h"

namespace {

long long Bound(const VALUE_PLACE& place, const std::string& text, long long missing, long long count) {
    if (text.empty()) return missing;
    const long long value = IntegerOf(place, text, -count, count);
    return value < 0 ? value + count : value;
}

}  // namespace

HALF_OPEN_RANGE ParseRange(const std::string& option, const std::string& text, long long count) {
    if (text.empty()) return {0, count};
    const VALUE_PLACE place{"command line", option};
    const std::string expected = "A:B with 0 <= A < B <= " + std::to_string(count) + ", B not included";
    const std::size_t colon = text.find(':');
    if (colon == std::string::npos) RefuseValue(place, text, expected);
    const HALF_OPEN_RANGE range{Bound(place, text.substr(0, colon), 0, count),
                                Bound(place, text.substr(colon + 1), count, count)};
    if (range.Count() < 1) RefuseValue(place, text, expected);
    return range;
}
