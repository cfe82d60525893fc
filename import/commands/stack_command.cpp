#include <algorithm>
#include <cmath>
#include <memory>

#include "companions/companion_error.h"
#include "companions/input_file.h"
#include "companions/results.h"
#include "import/commands/commands.h"
#include "import/commands/run_options.h"
#include "import/pair/pair_folder.h"
#include "import/pair/pair_inputs.h"
#include "import/stack/pair_table.h"
#include "import/stack/stack_folder.h"
#include "lib/baselib/pool/parameter_pool.h"

namespace {

struct STACK_OPTIONS : RUN_OPTIONS {
    std::string images;
    std::string pairs;
};

struct OUTCOME {
    std::size_t new_images = 0;
    std::size_t new_pairs = 0;
    std::size_t not_shown = 0;    ///< pairs whose slave's image does not show the master's ground
    std::string first_not_shown;  ///< one of them
};

constexpr const char* kStackExample = "  velmora-import stack images.csv pairs.csv dem.pool -o stack\n";
constexpr const char* kTableNames =
    "pair,master,slave,perpendicular_baseline_m,time_difference_days,height_of_ambiguity_m";

std::string NameOf(const STACK_IMAGE& master, const STACK_IMAGE& slave) {
    return master.name + "__" + slave.name;
}

/// The middle of the DEM's valid heights, where its pool tells them; else the ellipsoid.
double MiddleHeight_m(const std::string& dem_pool) {
    PARAMETER_POOL pool(dem_pool);
    constexpr const char* kKey = "dem_valid";
    if (!pool.FindKey(kKey)) return 0.0;
    const std::string text = pool.Get<STRING>(kKey).ToStd();
    const VALUE_PLACE place{dem_pool, std::string("key ") + kKey};
    const std::size_t dots = text.find("..");
    if (dots == std::string::npos) RefuseValue(place, text, "LOWEST..HIGHEST");
    return 0.5 * (RealOf(place, text.substr(0, dots)) + RealOf(place, text.substr(dots + 2)));
}

std::string FactorsText(const std::vector<int>& factors) {
    return std::to_string(factors[0]) + " " + std::to_string(factors[1]);
}

std::string Or(const std::string& text, const char* otherwise) {
    return text.empty() ? otherwise : text;
}

std::string SettingsText(const STACK_OPTIONS& options, const std::string& control_file) {
    return "# what all pairs of this stack are made with (velmora-import stack)\nlines " + Or(options.lines, "all") +
           "\nsamples " + Or(options.samples, "all") + "\nshift factors " + FactorsText(options.shift_factors) +
           "\nearth factors " + FactorsText(options.earth_factors) + "\ninterpolation " +
           Or(options.interpolation, "what suits the state vectors") + "\n# control file\n" + control_file;
}

std::string TableRow(const STACK_IMAGE& master, const STACK_IMAGE& slave, const PAIR_FIGURES& figures) {
    constexpr double kSecondsPerDay = 86400.0;
    char text[120];
    std::snprintf(text, sizeof text, ",%.3f,%.6f,%.3f", figures.perpendicular_baseline_m,
                  figures.time_difference_s / kSecondsPerDay, figures.height_of_ambiguity_m);
    return NameOf(master, slave) + "," + master.name + "," + slave.name + text;
}

/// All of one call to the command.
class STACK_IMPORT {
  public:
    explicit STACK_IMPORT(const STACK_OPTIONS& options)
        : options_(options),
          raster_(DemRasterOf(options)),
          control_file_(ControlFileText(options.folder + "/pairs/A__B", options.dem_pool, raster_)),
          height_m_(MiddleHeight_m(options.dem_pool)),
          rows_(ReadImageTable(options.images)),
          folder_(options.folder, SettingsText(options, control_file_)),
          images_(MakeImages(rows_, folder_.NewImages(), options.interpolation)) {}

    void Run() {
        pairs_ = ReadPairTable(options_.pairs, images_, [this](std::size_t master, std::size_t slave) {
            return Measure(images_[master], images_[slave]);
        });
        for (const STACK_PAIR& pair : pairs_) WritePair(pair);
        folder_.Commit(NewImages());
        std::vector<STACK_FOLDER::ROW> rows;
        for (const STACK_PAIR& pair : pairs_) {
            const STACK_IMAGE& master = images_[pair.master];
            const STACK_IMAGE& slave = images_[pair.slave];
            rows.push_back({NameOf(master, slave), TableRow(master, slave, pair.figures)});
        }
        folder_.AppendToTable(kTableNames, rows);
        PrintSummary();
    }

  private:
    static std::string DemRasterOf(const STACK_OPTIONS& options) {
        RequireRegularFile(options.dem_pool);
        return DemRasterBeside(options.dem_pool);
    }

    [[nodiscard]] IMAGE_PART PartOf(const ACQUISITION_OF_POOL& master) const {
        return {ParseRange("--lines", options_.lines, master.lines),
                ParseRange("--samples", options_.samples, master.samples)};
    }

    [[nodiscard]] PAIR_FIGURES Measure(const STACK_IMAGE& master, const STACK_IMAGE& slave) const {
        RequireOneKind(master.acquisition, slave.acquisition);
        return FiguresOfPair(master, slave, PartOf(master.acquisition), height_m_);
    }

    [[nodiscard]] std::vector<std::string> NewImages() {
        std::vector<std::string> names;
        for (const STACK_IMAGE& image : images_) {
            if (!folder_.HasImage(image.name, image.pool_text)) names.push_back(image.name);
        }
        outcome_.new_images = names.size();
        return names;
    }

    [[nodiscard]] PAIR_SETUP SetupOf(const STACK_IMAGE& master, const STACK_IMAGE& slave) const {
        PAIR_SETUP setup;
        setup.master = master.acquisition;
        setup.slave = slave.acquisition;
        setup.part = PartOf(master.acquisition);
        setup.shift_factors = {options_.shift_factors[0], options_.shift_factors[1]};
        setup.earth_factors = {options_.earth_factors[0], options_.earth_factors[1]};
        return setup;
    }

    void NoteWhatSlaveShows(const std::string& pair, const PAIR_SETUP& setup, const SLAVE_LINES& seen) {
        const double last_line = static_cast<double>(setup.slave.lines - 1);
        if (seen.last >= 0.0 && seen.first <= last_line) return;
        if (outcome_.not_shown++ == 0) outcome_.first_not_shown = pair;
    }

    /// A pair that the stack has stays as it is.
    void WritePair(const STACK_PAIR& pair) {
        const STACK_IMAGE& master = images_[pair.master];
        const STACK_IMAGE& slave = images_[pair.slave];
        const std::string name = NameOf(master, slave);
        if (folder_.HasPair(name)) return;
        const PAIR_SETUP setup = SetupOf(master, slave);
        try {
            NoteWhatSlaveShows(name, setup, LinesSeenBySlave(setup.master, setup.slave, master.side, setup.part));
        } catch (const COMPANION_ERROR& error) {
            throw COMPANION_ERROR(pair.place.file + ": " + pair.place.where + ": pair " + name + ": " + error.what());
        }
        const std::string folder = folder_.AddPair(name) + "/";
        folder_.WriteFile(folder + "master.pool", master.pool_text);
        folder_.WriteFile(folder + "slave.pool", slave.pool_text);
        folder_.WriteFile(folder + "insar.pool", InsarPoolText(setup));
        folder_.WriteFile(folder + "log.pool", kEmptyLogPool);
        folder_.WriteFile(folder + "scene.pcf", control_file_);
        ++outcome_.new_pairs;
    }

    void PrintRange(const char* title, const char* unit, double (*value)(const PAIR_FIGURES&)) const {
        const auto less = [value](const STACK_PAIR& a, const STACK_PAIR& b) {
            return value(a.figures) < value(b.figures);
        };
        const auto [least, most] = std::minmax_element(pairs_.begin(), pairs_.end(), less);
        PrintResult("  %s %.3f to %.3f %s\n", title, value(least->figures), value(most->figures), unit);
    }

    void PrintSummary() const {
        const char* const folder = options_.folder.c_str();
        PrintResult("%s: %zu pairs of %zu images\n", folder, pairs_.size(), images_.size());
        PrintResult("  new .......... %zu pairs, %zu images\n", outcome_.new_pairs, outcome_.new_images);
        if (!pairs_.empty()) {
            PrintRange("baselines ....", "m", [](const PAIR_FIGURES& f) { return f.perpendicular_baseline_m; });
            PrintRange("time .........", "days", [](const PAIR_FIGURES& f) { return f.time_difference_s / 86400.0; });
        }
        if (outcome_.not_shown != 0)
            PrintResult(
                "  note ......... of %zu new pairs the slave's image does not show the master's ground; its "
                "orbit does (first: %s)\n",
                outcome_.not_shown, outcome_.first_not_shown.c_str());
        PrintResult(
            "To run it on this machine:\n  workflow=$(velmora-stack where)\n"
            "  snakemake --snakefile $workflow/Snakefile --profile $workflow/profiles/local --directory %s\n",
            folder);
    }

    STACK_OPTIONS options_;
    std::string raster_;
    std::string control_file_;
    double height_m_;
    std::vector<IMAGE_ROW> rows_;
    STACK_FOLDER folder_;
    std::vector<STACK_IMAGE> images_;
    std::vector<STACK_PAIR> pairs_;
    OUTCOME outcome_;
};

}  // namespace

void AddStackCommand(COMPANION_PROGRAM& program) {
    const auto options = std::make_shared<STACK_OPTIONS>();
    COMPANION_COMMAND command =
        program.AddCommand("stack", "Make the folders of many runs from tables of images and pairs", kStackExample,
                           [options] { STACK_IMPORT(*options).Run(); });
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
