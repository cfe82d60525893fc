#include "import/stack/stack_settings.h"

namespace {

std::string FactorsText(const std::vector<int>& factors) {
    return std::to_string(factors[0]) + " " + std::to_string(factors[1]);
}

std::string Or(const std::string& text, const char* otherwise) {
    return text.empty() ? otherwise : text;
}

}  // namespace

std::string SettingsText(const RUN_REQUEST& request, const std::string& control_file) {
    return "# what all pairs of this stack are made with (velmora-import stack)\nlines " + Or(request.lines, "all") +
           "\nsamples " + Or(request.samples, "all") + "\nshift factors " + FactorsText(request.shift_factors) +
           "\nearth factors " + FactorsText(request.earth_factors) + "\ninterpolation " +
           Or(request.interpolation, "what suits the state vectors") + "\n# control file\n" + control_file;
}
