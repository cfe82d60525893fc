#include <cmath>
#include <filesystem>
#include <memory>
#include <optional>

#include "companions/companion_error.h"
#include "companions/output_set.h"
#include "companions/results.h"
#include "import/commands/commands.h"
#include "import/dem/dem_pool.h"
#include "import/dem/dem_raster.h"
#include "import/dem/gdal_errors.h"
#include "import/dem/geoid.h"
#include "import/dem/height_choice.h"
#include "import/dem/mosaic.h"
#include "import/dem/scene_box.h"
#include "import/dem/void_filling.h"

namespace {

struct DEM_OPTIONS {
    std::vector<std::string> files;
    std::string name;
    std::vector<double> box;
    std::vector<std::string> around;
    std::string heights;
    bool fill_voids = false;
    bool as_float = false;
    bool force = false;

    [[nodiscard]] std::string Raster() const { return name + ".ras"; }
    [[nodiscard]] std::string Pool() const { return name + ".pool"; }
};

/// What the summary tells beyond the grid.
struct DEM_OUTCOME {
    HEIGHT_CHOICE heights = HEIGHT_CHOICE::AS_IS;
    std::string contradiction{};  ///< what a file says of its heights otherwise
    long long filled = 0;
    HEIGHT_STATISTICS statistics;
};

constexpr const char* kDemExample =
    "  velmora-import dem N34W119.hgt.zip N34W118.hgt.zip --heights egm96 --fill-voids --around master.pool -o dem\n";

std::vector<std::unique_ptr<DEM_SOURCE>> OpenAll(const std::vector<std::string>& files) {
    std::vector<std::unique_ptr<DEM_SOURCE>> sources;
    for (const std::string& file : files) sources.push_back(std::make_unique<DEM_SOURCE>(file));
    return sources;
}

DEGREE_BOX BoxOfOption(const std::vector<double>& box) {
    const DEGREE_BOX degrees{box[0], box[1], box[2], box[3]};
    for (const double longitude_deg : {degrees.west, degrees.east}) {
        if (!(std::abs(longitude_deg) <= 360.0))
            RefuseValue({"command line", "--box"}, std::to_string(longitude_deg), "a longitude of -360 to 360 degrees");
    }
    if (!(degrees.south >= -90.0 && degrees.north <= 90.0 && degrees.south < degrees.north))
        RefuseValue({"command line", "--box"}, std::to_string(degrees.south) + " " + std::to_string(degrees.north),
                    "W S E N, where S is below N, in degrees");
    return degrees;
}

std::optional<DEGREE_BOX> WantedBox(const DEM_OPTIONS& options) {
    if (!options.box.empty()) return BoxOfOption(options.box);
    if (options.around.empty()) return std::nullopt;
    return SceneBox(options.around.front(), options.around.size() > 1 ? options.around[1] : "");
}

/// All heights at once, for the filling of voids, as the file has them.
std::vector<float> ReadAll(DEM_MOSAIC& mosaic) {
    std::vector<float> all_m;
    all_m.reserve(static_cast<std::size_t>(mosaic.Grid().columns * mosaic.Grid().rows));
    std::vector<double> row_m;
    for (long long row = 0; row < mosaic.Grid().rows; ++row) {
        mosaic.ReadRow(row, row_m);
        for (const double height_m : row_m) all_m.push_back(static_cast<float>(height_m));
    }
    return all_m;
}

/// Fills the voids beforehand when asked to, and takes the rows from the filled heights then.
HEIGHT_ROW_READER RowsOf(DEM_MOSAIC& mosaic, bool fill_voids, long long& filled) {
    if (!fill_voids)
        return [&mosaic](long long row, std::vector<double>& heights_m) { mosaic.ReadRow(row, heights_m); };
    const SAMPLE_GRID& grid = mosaic.Grid();
    const auto all_m = std::make_shared<std::vector<float>>(ReadAll(mosaic));
    filled = FillVoids(*all_m, static_cast<int>(grid.columns), static_cast<int>(grid.rows));
    const long long columns = grid.columns;
    return [all_m, columns](long long row, std::vector<double>& heights_m) {
        const auto first = all_m->begin() + static_cast<std::ptrdiff_t>(row * columns);
        heights_m.assign(first, first + static_cast<std::ptrdiff_t>(columns));
    };
}

std::string GeoidText(const EGM96_GEOID& geoid) {
    char text[120];
    std::snprintf(text, sizeof text, "above the WGS 84 ellipsoid: EGM96 geoid heights of %.2f to %.2f m added",
                  geoid.Lowest_m(), geoid.Highest_m());
    return text;
}

std::string HeightsText(const DEM_OUTCOME& outcome, const std::optional<EGM96_GEOID>& geoid) {
    if (geoid) return GeoidText(*geoid);
    return outcome.heights == HEIGHT_CHOICE::ELLIPSOID ? "above the WGS 84 ellipsoid, as in the files"
                                                       : "as in the files, whatever they refer to";
}

std::string GridText(const DEM_MOSAIC& mosaic) {
    const MAP_REFERENCE& map = mosaic.Map();
    const SAMPLE_GRID& grid = mosaic.Grid();
    char text[200];
    if (map.kind == MAP_KIND::UTM) {
        std::snprintf(text, sizeof text, "UTM zone %d %s, %.10g x %.10g m, ", map.utm_zone,
                      map.southern ? "south" : "north", grid.dx, grid.dy);
    } else {
        std::snprintf(text, sizeof text, "geographic, %.10g x %.10g degrees, ", grid.dx, grid.dy);
    }
    std::string copied = "copied sample for sample";
    if (!mosaic.Warped().empty()) copied = "warped (cubic): " + mosaic.Warped().front();
    if (mosaic.Warped().size() > 1) copied += " and " + std::to_string(mosaic.Warped().size() - 1) + " more";
    return text + copied;
}

std::string PixelText(const DEM_OPTIONS& options, const HEIGHT_STATISTICS& statistics) {
    if (options.as_float) return "32-bit reals (dem_pixel_type \"flt_6\")";
    if (statistics.largest_rounding_error_m == 0.0) return "whole metres, nothing rounded";
    char text[120];
    std::snprintf(text, sizeof text, "whole metres; rounding costs up to %.3f m, --float keeps the fraction",
                  statistics.largest_rounding_error_m);
    return text;
}

/// The value of the key DEM_VALID that holds all heights and no void.
std::string ValidText(const HEIGHT_STATISTICS& statistics) {
    char text[80];
    std::snprintf(text, sizeof text, "%.0f..%.0f", std::floor(statistics.lowest_m), std::ceil(statistics.highest_m));
    return text;
}

void PrintSummary(const DEM_OPTIONS& options, const DEM_MOSAIC& mosaic, const DEM_OUTCOME& outcome,
                  const std::string& heights, const std::vector<std::string>& descriptions) {
    const SAMPLE_GRID& grid = mosaic.Grid();
    const HEIGHT_STATISTICS& statistics = outcome.statistics;
    const char* const unit = mosaic.Map().kind == MAP_KIND::UTM ? "m" : "degrees";
    PrintResult("%s, %s: %lld columns x %lld rows\n", options.Raster().c_str(), options.Pool().c_str(), grid.columns,
                grid.rows);
    for (std::size_t i = 0; i < options.files.size(); ++i)
        PrintResult("  file ......... %s (%s)\n", options.files[i].c_str(), descriptions[i].c_str());
    PrintResult("  grid ......... %s\n", GridText(mosaic).c_str());
    PrintResult("  first sample . %.12g north, %.12g east (%s)\n", grid.y0, EdgesOf(grid, mosaic.Map()).left, unit);
    const DEM_EDGES_OF_POOL edges = EdgesOf(grid, mosaic.Map());
    PrintResult("  edges ........ north %.12g, south %.12g, west %.12g, east %.12g\n", edges.upper, edges.lower,
                edges.left, edges.right);
    PrintResult("  heights ...... %s\n", heights.c_str());
    if (!outcome.contradiction.empty())
        PrintResult("  note ......... --heights overrules a file, which says: %s\n", outcome.contradiction.c_str());
    PrintResult("  stored as .... %s\n", PixelText(options, statistics).c_str());
    PrintResult("  range ........ %.10g to %.10g m\n", statistics.lowest_m, statistics.highest_m);
    PrintResult("  voids ........ %lld filled, %lld left (as %d)\n", outcome.filled, statistics.voids, kVoidSample_m);
    if (!mosaic.CoversBox()) PrintResult("  note ......... the files do not reach over the whole box\n");
    PrintResult("DEM_VALID %s\n", ValidText(statistics).c_str());
}

void ProtectInputs(OUTPUT_SET& outputs, const DEM_OPTIONS& options) {
    for (const std::string& file : options.files) outputs.Protect(file);
    for (const std::string& pool : options.around) outputs.Protect(pool);
}

void Run(const DEM_OPTIONS& options) {
    StartGdal();
    OUTPUT_SET outputs(options.force);
    ProtectInputs(outputs, options);
    const std::optional<DEGREE_BOX> box = WantedBox(options);
    auto sources = OpenAll(options.files);
    std::vector<std::string> descriptions;
    for (const auto& source : sources) descriptions.push_back(source->Description());
    DEM_OUTCOME outcome;
    outcome.heights = ChooseHeights(options.heights, sources);
    for (const auto& source : sources) {
        if (outcome.contradiction.empty()) outcome.contradiction = ContradictionIn(outcome.heights, *source);
    }
    DEM_MOSAIC mosaic(std::move(sources), box);
    const std::string raster = outputs.Add(options.Raster());
    const std::string pool = outputs.Add(options.Pool());

    std::optional<EGM96_GEOID> geoid;
    if (outcome.heights == HEIGHT_CHOICE::EGM96) geoid.emplace(mosaic.Map());
    const HEIGHT_ROW_READER rows = RowsOf(mosaic, options.fill_voids, outcome.filled);
    std::vector<double> x;
    for (long long column = 0; column < mosaic.Grid().columns; ++column)
        x.push_back(mosaic.Grid().X(static_cast<double>(column)));
    outcome.statistics = WriteDemRaster(raster, options.Raster(), mosaic.Grid(), options.as_float,
                                        [&](long long row, std::vector<double>& heights_m) {
                                            rows(row, heights_m);
                                            if (geoid)
                                                geoid->AddTo(x, mosaic.Grid().Y(static_cast<double>(row)), heights_m);
                                        });
    const std::string heights = HeightsText(outcome, geoid);
    WriteDemPool(pool, mosaic.Grid(), mosaic.Map(),
                 {options.as_float, ValidText(outcome.statistics), " heights " + heights});
    outputs.Commit();
    PrintSummary(options, mosaic, outcome, heights, descriptions);
}

}  // namespace

void AddDemCommand(COMPANION_PROGRAM& program) {
    const auto options = std::make_shared<DEM_OPTIONS>();
    COMPANION_COMMAND command = program.AddCommand("dem", "Make the terrain model from DEM files of any kind",
                                                   kDemExample, [options] { Run(*options); });
    command.Add("FILE", options->files, "DEM files: whatever GDAL reads, also in a zip archive").Required();
    command.Add("-o,--output", options->name, "NAME.ras and NAME.pool are written").Required();
    const COMMAND_OPTION box =
        command.Add("--box", options->box, "W S E N in degrees: the part to take; W > E crosses 180 degrees").Takes(4);
    command
        .Add("--around", options->around,
             "MASTER [SLAVE]: pools; the part that the master's image needs, for terrain of -1000 to 9000 m")
        .Takes(1, 2)
        .NotWith(box);
    command.Add("--heights", options->heights, "to what the files' heights refer: ellipsoid, egm96 or as-is")
        .OneOf({"ellipsoid", "egm96", "as-is"});
    command.AddFlag("--fill-voids", options->fill_voids, "fill missing heights from their surroundings");
    command.AddFlag("--float", options->as_float, "32-bit reals instead of whole metres");
    command.AddFlag("--force", options->force, "replace existing outputs");
}
