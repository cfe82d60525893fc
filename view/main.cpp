/// \file main.cpp
/// velmora-view: products as pictures, maps and numbers.

#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "companions/companion_error.h"
#include "companions/companion_program.h"
#include "companions/input_file.h"
#include "companions/output_set.h"
#include "companions/results.h"
#include "lib/baselib/sidecar/vrt_sidecar.h"
#include "view/gdal_output.h"
#include "view/geocode.h"
#include "view/picture.h"
#include "view/product_info.h"
#include "view/product_of_file.h"

namespace {

namespace fs = std::filesystem;

struct OPTIONS {
    std::vector<std::string> products;
    std::string kind;
    std::string pool;
    std::string output;
    std::string x, y, z;
    std::optional<double> invalid;
    int longest = kLongestSide;
    bool kmz = false;
    bool force = false;
};

std::string WithEnding(const std::string& path, const char* ending) {
    return fs::path(path).replace_extension(ending).string();
}

std::string OutputPath(const OPTIONS& options, const std::string& product, const char* ending) {
    if (options.output.empty()) return WithEnding(product, ending);
    if (options.products.size() > 1) throw COMPANION_ERROR("-o: names one file: expected one product");
    return options.output;
}

void MakePictures(const OPTIONS& options) {
    StartGdal();
    OUTPUT_SET outputs(options.force);
    for (const std::string& product : options.products) outputs.Protect(product);
    std::string results;
    for (const std::string& product : options.products) {
        const RASTER_FILE raster(product);
        const std::string path = OutputPath(options, product, ".png");
        const CANVAS canvas =
            DrawPicture(raster, ProductOfFile(product, options.kind), options.longest, options.invalid);
        SavePng(canvas, outputs.Add(path));
        results += path + "  " + std::to_string(canvas.Columns()) + " x " + std::to_string(canvas.Rows()) + "\n";
    }
    outputs.Commit();
    PrintResultText(results);
}

VRT_SIDECAR SidecarOf(const std::string& product, const OPTIONS& options) {
    VRT_SIDECAR sidecar;
    sidecar.pixel_type = PixelTypeOfFile(product);
    sidecar.file_name = fs::path(product).filename().string();
    if (GdalTypeName(sidecar.pixel_type) == nullptr || !CanBeNamedInVrt(sidecar.file_name))
        throw COMPANION_ERROR(product + ": its pixel type or its name can not stand in a sidecar");
    MEM_MGR image;
    image.MapFileChecked(product, ACCESS_MODE::READ_ONLY, sidecar.pixel_type);
    sidecar.columns = image.Columns();
    sidecar.rows = image.Rows();
    sidecar.image_offset_bytes = image.HeaderSize();
    if (const PRODUCT_KIND* const kind = ProductOfFile(product, options.kind)) {
        sidecar.description = kind->description;
        sidecar.unit = kind->unit;
        sidecar.product_key = kind->key;
    } else if (sidecar.pixel_type == PIXEL_TYPE::INT_16) {
        sidecar.no_data = kVoidHeight;
    }
    return sidecar;
}

void WriteText(const std::string& path, const std::string& text) {
    std::ofstream file(path, std::ios::binary);
    file << text << std::flush;
    if (!file) throw COMPANION_ERROR(path + ": can not write");
}

void MakeSidecars(const OPTIONS& options) {
    OUTPUT_SET outputs(options.force);
    std::string results;
    for (const std::string& product : options.products) {
        outputs.Protect(product);
        WriteText(outputs.Add(VrtPath(product)), VrtText(SidecarOf(product, options)));
        results += VrtPath(product) + "\n";
    }
    outputs.Commit();
    PrintResultText(results);
}

void PrintInfo(const OPTIONS& options) {
    for (const std::string& product : options.products)
        PrintResultText(
            InfoText(RASTER_FILE(product), ProductOfFile(product, options.kind), options.pool, options.invalid));
}

/// The names that the demo and the import program give, beside the product.
std::string EarthFile(const std::string& option, const std::string& product, const char* name) {
    return option.empty() ? (fs::path(product).parent_path() / name).string() : option;
}

const PRODUCT_KIND& RequiredKind(const std::string& product, const OPTIONS& options) {
    const PRODUCT_KIND* const kind = ProductOfFile(product, options.kind);
    if (kind == nullptr)
        throw COMPANION_ERROR(product + ": its name does not tell which product it is: expected --kind and one of " +
                              ProductKeys());
    return *kind;
}

void Geocode(const OPTIONS& options) {
    StartGdal();
    const std::string& product = options.products.front();
    const PRODUCT_KIND& kind = RequiredKind(product, options);
    const EARTH_FILES files{EarthFile(options.x, product, "x_earth.ras"), EarthFile(options.y, product, "y_earth.ras"),
                            EarthFile(options.z, product, "z_earth.ras"), options.pool};
    OUTPUT_SET outputs(options.force);
    for (const std::string& input : {product, files.x, files.y, files.z, files.pool}) outputs.Protect(input);
    const std::string path = OutputPath(options, product, ".tif");
    const RASTER_FILE raster(product);
    const EARTH_POSITIONS positions = ReadEarthPositions(files);
    PARAMETER_POOL pool(files.pool);
    const GRIDS grids{SamplingOf(kind.product, pool), SamplingOf(PRODUCT::X_EARTH, pool)};
    const DATASET map = MapOfProduct(raster, kind, positions, grids, options.invalid);
    SaveGeoTiff(*map, outputs.Add(path));
    if (options.kmz) SaveKmz(*map, kind, outputs.Add(WithEnding(path, ".kmz")));
    outputs.Commit();
    PrintResult("%s  %d x %d\n", path.c_str(), map->GetRasterXSize(), map->GetRasterYSize());
    if (options.kmz) PrintResult("%s\n", WithEnding(path, ".kmz").c_str());
}

/// @return the products, any number of them
COMMAND_OPTION AddProducts(COMPANION_COMMAND& command, OPTIONS& options) {
    const COMMAND_OPTION products = command.Add("PRODUCT", options.products, "raster files of a run").Required();
    command.Add("--kind", options.kind, "which product it is, where its name does not tell: " + ProductKeys());
    return products;
}

void AddForce(COMPANION_COMMAND& command, OPTIONS& options) {
    command.AddFlag("--force", options.force, "replace outputs that are there already");
}

void AddInvalid(COMPANION_COMMAND& command, OPTIONS& options) {
    command.Add("--invalid", options.invalid, "a value that stands for no value");
}

void AddPicture(COMPANION_PROGRAM& program, OPTIONS& options) {
    COMPANION_COMMAND command =
        program.AddCommand("picture", "a PNG of at most 1600 pixels a side with a colour bar",
                           "  velmora-view picture simu_phase.ras h_earth.ras", [&options] { MakePictures(options); });
    AddProducts(command, options);
    command.Add("-o", options.output, "the PNG [the product's name with .png]");
    command.Add("--longest", options.longest, "pixels of the longest side [1600]")
        .Between(kShortestLongestSide, kLongestSide);
    AddInvalid(command, options);
    AddForce(command, options);
}

void AddVrt(COMPANION_PROGRAM& program, OPTIONS& options) {
    COMPANION_COMMAND command =
        program.AddCommand("vrt", "sidecars through which GDAL and QGIS open products as they are",
                           "  velmora-view vrt *.ras", [&options] { MakeSidecars(options); });
    AddProducts(command, options);
    AddForce(command, options);
}

void AddGeocode(COMPANION_PROGRAM& program, OPTIONS& options) {
    COMPANION_COMMAND command = program.AddCommand("geocode", "a product on the map, as GeoTIFF and for a globe",
                                                   "  velmora-view geocode simu_phase.ras --pool insar.pool --kmz",
                                                   [&options] { Geocode(options); });
    AddProducts(command, options).Takes(1);
    command.Add("--pool", options.pool, "the run's InSAR pool").Required();
    command.Add("--x", options.x, "the run's X_EARTH file [x_earth.ras beside the product]");
    command.Add("--y", options.y, "its Y_EARTH file [y_earth.ras]");
    command.Add("--z", options.z, "its Z_EARTH file [z_earth.ras]");
    command.Add("-o", options.output, "the GeoTIFF [the product's name with .tif]");
    command.AddFlag("--kmz", options.kmz, "also a KMZ for a globe, beside the GeoTIFF");
    AddInvalid(command, options);
    AddForce(command, options);
}

void AddInfo(COMPANION_PROGRAM& program, OPTIONS& options) {
    COMPANION_COMMAND command =
        program.AddCommand("info", "size, type, statistics and offset",
                           "  velmora-view info x_earth.ras --pool insar.pool", [&options] { PrintInfo(options); });
    AddProducts(command, options);
    command.Add("--pool", options.pool, "the run's InSAR pool, which has the offsets of x, y, z");
    AddInvalid(command, options);
}

}  // namespace

int main(int argc, char** argv) {
    OPTIONS options;
    COMPANION_PROGRAM program("velmora-view", "Products of velmora as pictures, maps and numbers.",
                              "  velmora-view picture simu_phase.ras");
    AddPicture(program, options);
    AddVrt(program, options);
    AddGeocode(program, options);
    AddInfo(program, options);
    return program.Run(argc, argv);
}
