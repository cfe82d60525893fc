/// Fuzz target of the import program's readers. The first byte chooses the reader, annotation or orbit file of any
/// kind; the rest is the file. Any file is read or refused by a message; what was read goes through what the program
/// does with it before it writes.

#include <new>

#include "companions/companion_error.h"
#include "fuzz/fuzz_target.h"
#include "import/orbit_files/interpolation_choice.h"
#include "import/orbit_files/orbit_file.h"
#include "import/orbit_files/orbit_selection.h"
#include "import/sentinel1/annotation.h"
#include "import/sentinel1/image_grid.h"

namespace {

void UseOrbit(const ORBIT_TABLE& table) {
    std::vector<double> times_s;
    for (const UTC_STATE_VECTOR& vector : table.vectors)
        times_s.push_back((vector.time - table.vectors.front().time).Seconds());
    Require(!ChooseInterpolation(times_s).text.empty());
    const UNIVERSAL_TIME middle = table.vectors[table.vectors.size() / 2].time;
    Require(SelectVectors(table, {middle, middle}).size() >= 2);
}

void UseAnnotation(const S1_ANNOTATION& image) {
    const IMAGE_GRID grid = ImageGridOf(image, std::nullopt);
    Require(grid.lines >= 1 && grid.samples >= 1 && !(grid.last_line < grid.first_line));
    if (!image.bursts.empty()) Require(ImageGridOf(image, 1).lines == image.lines_per_burst);
    UseOrbit(image.orbit);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::string content(reinterpret_cast<const char*>(data + 1), size - 1);
    try {
        if (data[0] % 2 == 0) {
            UseAnnotation(ParseAnnotation("annotation", content));
        } else {
            UseOrbit(ParseOrbit("orbit", content));
        }
    } catch (const COMPANION_ERROR&) {
    } catch (const char*) {  // a time beyond the year 9999
    }
    return 0;
}
