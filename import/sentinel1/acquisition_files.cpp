#include "import/sentinel1/acquisition_files.h"

#include "companions/companion_error.h"
#include "companions/input_file.h"
#include "import/orbit_files/orbit_file.h"
#include "import/orbit_files/orbit_selection.h"
#include "import/orbit_files/xml_document.h"

namespace {

/// "Sentinel-1A" in orbit files, "S1A" in annotations.
void RequireSameSatellite(const ORBIT_TABLE& orbit, const S1_ANNOTATION& image) {
    if (orbit.mission.rfind("Sentinel-1", 0) != 0 || orbit.mission.back() == image.mission.back()) return;
    throw COMPANION_ERROR(orbit.file + ": element Mission: value " + Quoted(orbit.mission) +
                          ": expected the satellite of the image, " + image.mission);
}

void RequireInside(const ORBIT_TABLE& orbit, const IMAGE_GRID& grid) {
    if (orbit.vectors.front().time <= grid.first_line && grid.last_line <= orbit.vectors.back().time) return;
    throw COMPANION_ERROR(orbit.file + ": its state vectors of " +
                          IntervalText(orbit.vectors.front().time, orbit.vectors.back().time) +
                          " do not cover the image of " + IntervalText(grid.first_line, grid.last_line));
}

/// The annotation's own vectors are few and all taken; of an orbit file those around the image.
std::vector<UTC_STATE_VECTOR> VectorsFor(const ORBIT_TABLE& orbit, const S1_ANNOTATION& image, const IMAGE_GRID& grid,
                                         bool from_orbit_file) {
    if (from_orbit_file) {
        RequireSameSatellite(orbit, image);
        return SelectVectors(orbit, {grid.first_line, grid.last_line});
    }
    RequireInside(orbit, grid);
    return orbit.vectors;
}

}  // namespace

S1_ACQUISITION ReadSentinel1(const std::string& annotation, const std::string& orbit_file,
                             const std::optional<int>& burst) {
    S1_ACQUISITION read;
    read.image = ParseAnnotation(annotation, ReadWholeFile(annotation, kXmlLimitBytes));
    read.grid = ImageGridOf(read.image, burst);
    const bool from_orbit_file = !orbit_file.empty();
    read.orbit = from_orbit_file ? ReadOrbitFile(orbit_file) : read.image.orbit;
    read.vectors = VectorsFor(read.orbit, read.image, read.grid, from_orbit_file);
    return read;
}
