#include "orbit/interpolation/interpolation_request.h"

#include <algorithm>
#include <vector>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/log_and_throw.h"
#include "lib/baselib/errors/parse_number.h"
#include "lib/baselib/logging/logging.h"

namespace {

constexpr const char* kSeparators = "_,;:-()";
constexpr int kUnused = -1;

/// One row per interpolation id; kUnused where it has no such parameter.
struct PARAMETERS {
    int default_order;
    int default_count;
    int fewest_support_points;
};

constexpr PARAMETERS kParameters[kInterpolations] = {
    {kUnused, kUnused, 0},  // polynom
    {9, kUnused, 0},        // polyfit
    {kUnused, kUnused, 0},  // spline
    {kUnused, 8, 2},        // localpolynom
    {7, 9, 2},              // localpolyfit
    {9, kUnused, 0},        // chebyshev
    {7, 9, 2},              // localchebyshev
    {kUnused, 4, 1},        // hermite
    {kUnused, 4, 2},        // localhermite
    {6, kUnused, 0},        // everett
};

const PARAMETERS& ParametersOf(INTERPOLATION_ID id) {
    return kParameters[static_cast<int>(id)];
}

std::vector<std::string> Words(const std::string& text) {
    std::vector<std::string> words;
    size_t start = text.find_first_not_of(kSeparators);
    while (start != std::string::npos) {
        const size_t end = text.find_first_of(kSeparators, start);
        words.push_back(text.substr(start, end - start));
        start = text.find_first_not_of(kSeparators, end);
    }
    return words;
}

/// A word of the text and what the log calls it.
struct WORD {
    const std::string& text;  ///< the whole interpolation text
    const char* name;         ///< "poly fit order"
    int smallest;
    int largest;
};

bool IsDecimal(const std::string& word) {
    return !word.empty() && std::all_of(word.begin(), word.end(), [](char c) { return c >= '0' && c <= '9'; });
}

int NumberOrRefuse(const std::string& word, const WORD& description) {
    long long value = 0;
    const bool is_number = IsDecimal(word) && ParseInteger(word, value) == PARSE_RESULT::OK;
    if (!is_number || value < description.smallest || value > description.largest) {
        LogAndThrow<ERROR_ARGUMENT>("ORBIT: interpolation \"%s\": the %s \"%s\" is no number from %d to %d",
                                    description.text.c_str(), description.name, word.c_str(), description.smallest,
                                    description.largest);
    }
    return static_cast<int>(value);
}

/// @return the number to use, kUnused where the interpolation has no use for the word
int ParameterOfWord(const std::vector<std::string>& words, size_t position, int default_value,
                    const WORD& description) {
    if (position >= words.size()) {
        if (default_value != kUnused) {
            Log().Message(LOGGING_LEVEL::INFO, "ORBIT: interpolation \"%s\" gives no %s: %d is used",
                          description.text.c_str(), description.name, default_value);
        }
        return default_value;
    }
    const std::string& word = words[position];
    if (default_value == kUnused) {
        if (IsDecimal(word)) {
            Log().Message(LOGGING_LEVEL::PARAMETER, "ORBIT: detected %s: %s", description.name, word.c_str());
        }
        return kUnused;
    }
    const int value = NumberOrRefuse(word, description);
    Log().Message(LOGGING_LEVEL::PARAMETER, "ORBIT: detected %s: %d", description.name, value);
    return value;
}

}  // namespace

INTERPOLATION_REQUEST ParseInterpolationText(const std::string& text) {
    const std::vector<std::string> words = Words(text);
    if (words.empty()) {
        LogAndThrow<ERROR_ARGUMENT>("ORBIT: can not determine interpolation type from: %s", text.c_str());
    }
    INTERPOLATION_REQUEST request;
    request.id = InterpolationIdFromText(words[0]);
    const PARAMETERS& parameters = ParametersOf(request.id);
    request.poly_fit_order =
        ParameterOfWord(words, 1, parameters.default_order, {text, "poly fit order", 0, kHighestOrder});
    request.support_point_count =
        ParameterOfWord(words, 2, parameters.default_count,
                        {text, "support point count", parameters.fewest_support_points, kMostSupportPoints});
    return request;
}

int FewestStateVectors(const INTERPOLATION_REQUEST& request) {
    constexpr int kFewest = 2;
    switch (request.id) {
        case INTERPOLATION_ID::HERMITE:
            return std::max(kFewest, request.support_point_count);
        case INTERPOLATION_ID::EVERETT:  // a central difference of each order needs order + 1 points
            return std::max(kFewest, request.poly_fit_order + 1);
        default:
            return kFewest;
    }
}
