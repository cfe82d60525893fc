#include "import/stack/stack_import.h"

#include <utility>

#include "companions/companion_error.h"
#include "companions/input_file.h"
#include "import/pair/pair_folder.h"
#include "import/pair/pair_inputs.h"
#include "import/stack/middle_height.h"
#include "import/stack/pair_list.h"
#include "import/stack/stack_folder.h"
#include "import/stack/stack_settings.h"

namespace {

/// All of one call to the command.
class STACK_IMPORT {
  public:
    explicit STACK_IMPORT(const STACK_REQUEST& request)
        : request_(request),
          raster_(DemRasterOf(request)),
          control_file_(ControlFileText(request.folder + "/pairs/A__B", request.dem_pool, raster_)),
          height_m_(MiddleHeight_m(request.dem_pool)),
          rows_(ReadImageTable(request.images)),
          folder_(request.folder, SettingsText(request, control_file_)),
          images_(MakeImages(rows_, folder_.NewImages(), request.interpolation)) {}

    [[nodiscard]] STACK_OUTCOME Run() {
        pairs_ = ReadPairTable(request_.pairs, images_, [this](std::size_t master, std::size_t slave) {
            return Measure(images_[master], images_[slave]);
        });
        for (const STACK_PAIR& pair : pairs_) WritePair(pair);
        folder_.Commit(NewImages());
        std::vector<STACK_FOLDER::ROW> rows;
        for (const STACK_PAIR& pair : pairs_) {
            const STACK_IMAGE& master = images_[pair.master];
            const STACK_IMAGE& slave = images_[pair.slave];
            rows.push_back({NameOfPair(master, slave), PairListRow(master, slave, pair.figures)});
        }
        folder_.AppendToTable(kPairListNames, rows);
        outcome_.images = images_.size();
        outcome_.pairs = std::move(pairs_);
        return std::move(outcome_);
    }

  private:
    static std::string DemRasterOf(const STACK_REQUEST& request) {
        RequireRegularFile(request.dem_pool);
        return DemRasterBeside(request.dem_pool);
    }

    [[nodiscard]] IMAGE_PART PartOf(const ACQUISITION_OF_POOL& master) const {
        return {ParseRange("--lines", request_.lines, master.lines),
                ParseRange("--samples", request_.samples, master.samples)};
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
        setup.shift_factors = {request_.shift_factors[0], request_.shift_factors[1]};
        setup.earth_factors = {request_.earth_factors[0], request_.earth_factors[1]};
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
        const std::string name = NameOfPair(master, slave);
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

    STACK_REQUEST request_;
    std::string raster_;
    std::string control_file_;
    double height_m_;
    std::vector<IMAGE_ROW> rows_;
    STACK_FOLDER folder_;
    std::vector<STACK_IMAGE> images_;
    std::vector<STACK_PAIR> pairs_;
    STACK_OUTCOME outcome_;
};

}  // namespace

STACK_OUTCOME ImportStack(const STACK_REQUEST& request) {
    return STACK_IMPORT(request).Run();
}
