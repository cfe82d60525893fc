#include <algorithm>
#include <memory>

#include "companions/results.h"
#include "import/commands/commands.h"
#include "import/commands/run_options.h"
#include "import/stack/pair_list.h"
#include "import/stack/stack_import.h"

namespace {

constexpr const char* kStackExample = "  velmora-import stack images.csv pairs.csv dem.pool -o stack\n";

void PrintRange(const std::vector<STACK_PAIR>& pairs, const char* title, const char* unit,
                double (*value)(const PAIR_FIGURES&)) {
    const auto less = [value](const STACK_PAIR& a, const STACK_PAIR& b) { return value(a.figures) < value(b.figures); };
    const auto [least, most] = std::minmax_element(pairs.begin(), pairs.end(), less);
    PrintResult("  %s %.3f to %.3f %s\n", title, value(least->figures), value(most->figures), unit);
}

void PrintSummary(const std::string& stack, const STACK_OUTCOME& outcome) {
    const char* const folder = stack.c_str();
    PrintResult("%s: %zu pairs of %zu images\n", folder, outcome.pairs.size(), outcome.images);
    PrintResult("  new .......... %zu pairs, %zu images\n", outcome.new_pairs, outcome.new_images);
    if (!outcome.pairs.empty()) {
        PrintRange(outcome.pairs, "baselines ....", "m",
                   [](const PAIR_FIGURES& f) { return f.perpendicular_baseline_m; });
        PrintRange(outcome.pairs, "time .........", "days",
                   [](const PAIR_FIGURES& f) { return f.time_difference_s / kSecondsPerDay; });
    }
    if (outcome.not_shown != 0)
        PrintResult(
            "  note ......... of %zu new pairs the slave's image does not show the master's ground; its "
            "orbit does (first: %s)\n",
            outcome.not_shown, outcome.first_not_shown.c_str());
    PrintResult(
        "To run it on this machine:\n  workflow=$(velmora-stack where)\n"
        "  snakemake --snakefile $workflow/Snakefile --profile $workflow/profiles/local --directory %s\n",
        folder);
}

}  // namespace

void AddStackCommand(COMPANION_PROGRAM& program) {
    const auto options = std::make_shared<STACK_REQUEST>();
    COMPANION_COMMAND command =
        program.AddCommand("stack", "Make the folders of many runs from tables of images and pairs", kStackExample,
                           [options] { PrintSummary(options->folder, ImportStack(*options)); });
    command
        .Add("IMAGES", options->images,
             "table (CSV) of names and annotation files, with an orbit file if there is one, or of ready pools: "
             "name,annotation,orbit,pool")
        .Required();
    command
        .Add("PAIRS", options->pairs,
             "table of pairs: master,slave; or of rules: of next,days,baseline (each image with its next so "
             "many, within days, within metres)")
        .Required();
    AddRunOptions(command, *options,
                  {"folder of the stack; what is there already stays",
                   "A:B, lines of every master from A up to B (not included), from 0",
                   "C:D, samples of every master, in the same way", "orbit interpolation in place of those chosen"});
}
