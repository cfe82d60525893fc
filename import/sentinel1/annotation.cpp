#include "import/sentinel1/annotation.h"

#include <algorithm>

#include "import/orbit_files/text_lines.h"
#include "import/orbit_files/xml_document.h"

namespace {

constexpr long long kMostLines = 1'000'000;
constexpr long long kMostSamples = 1'000'000;

VECTOR_3D<double> Triple(const XML_ELEMENT& element) {
    return {element.Child("x").Real(), element.Child("y").Real(), element.Child("z").Real()};
}

ORBIT_TABLE ReadOrbit(const XML_ELEMENT& root, const std::string& file, const std::string& mission) {
    ORBIT_TABLE table{file, "annotation", mission, {}};
    for (const XML_ELEMENT& orbit : root.Child("generalAnnotation/orbitList").Children("orbit")) {
        const XML_ELEMENT frame = orbit.Child("frame");
        if (frame.Text() != "Earth Fixed") frame.Refuse("\"Earth Fixed\"");
        table.vectors.push_back(
            {orbit.Child("time").Utc(), Triple(orbit.Child("position")), Triple(orbit.Child("velocity"))});
    }
    CheckOrbitTable(table);
    return table;
}

std::vector<long long> IntegersOf(const XML_ELEMENT& element, long long expected_count, long long most) {
    const std::vector<std::string> words = WordsOf(element.Text());
    if (static_cast<long long>(words.size()) != expected_count)
        element.Refuse(std::to_string(expected_count) + " numbers, one for each line of the burst, not " +
                       std::to_string(words.size()));
    std::vector<long long> integers;
    for (const std::string& word : words) integers.push_back(IntegerOf(element.Place(), word, -1, most));
    return integers;
}

/// Lines without a valid sample are marked by -1.
void ReadValidPart(S1_BURST& burst, const XML_ELEMENT& element, const S1_ANNOTATION& image) {
    const long long last_sample = image.samples - 1;
    const auto first = IntegersOf(element.Child("firstValidSample"), image.lines_per_burst, last_sample);
    const auto last = IntegersOf(element.Child("lastValidSample"), image.lines_per_burst, last_sample);
    burst.valid_samples = {image.samples, -1};
    for (std::size_t line = 0; line < first.size(); ++line) {
        if (first[line] < 0 || last[line] < first[line]) continue;
        if (burst.valid_lines.last < 0) burst.valid_lines.first = static_cast<long long>(line);
        burst.valid_lines.last = static_cast<long long>(line);
        burst.valid_samples.first = std::min(burst.valid_samples.first, first[line]);
        burst.valid_samples.last = std::max(burst.valid_samples.last, last[line]);
    }
    if (burst.valid_lines.last < 0)
        throw COMPANION_ERROR(element.Place().file + ": " + element.Place().where + ": has no valid line");
}

void ReadBursts(S1_ANNOTATION& image, const XML_ELEMENT& root) {
    const XML_ELEMENT timing = root.Child("swathTiming");
    const std::vector<XML_ELEMENT> bursts = timing.Child("burstList").Children("burst");
    if (bursts.empty()) return;
    image.lines_per_burst = timing.Child("linesPerBurst").Integer(1, kMostLines);
    const XML_ELEMENT samples = timing.Child("samplesPerBurst");
    if (samples.Integer(1, kMostSamples) != image.samples)
        samples.Refuse("numberOfSamples, " + std::to_string(image.samples));
    if (image.lines_per_burst * static_cast<long long>(bursts.size()) != image.lines)
        timing.Child("linesPerBurst")
            .Refuse("the quotient of numberOfLines (" + std::to_string(image.lines) + ") and the number of bursts (" +
                    std::to_string(bursts.size()) + ")");
    for (const XML_ELEMENT& element : bursts) {
        S1_BURST burst;
        burst.first_line = element.Child("azimuthTime").Utc();
        ReadValidPart(burst, element, image);
        if (!image.bursts.empty() && !(image.bursts.back().first_line < burst.first_line))
            element.Child("azimuthTime").Refuse("a later time than that of the burst before");
        image.bursts.push_back(burst);
    }
}

void ReadHeader(S1_ANNOTATION& image, const XML_ELEMENT& root) {
    const XML_ELEMENT header = root.Child("adsHeader");
    image.mission = header.Child("missionId").Text();
    if (image.mission.size() != 3 || image.mission.rfind("S1", 0) != 0)
        header.Child("missionId").Refuse("S1A, S1B, S1C, ...");
    const XML_ELEMENT product = header.Child("productType");
    if (product.Text() != "SLC") product.Refuse("\"SLC\": only single-look complex images keep the phase");
    image.swath = header.Child("swath").Text();
    image.polarisation = header.Child("polarisation").Text();
    image.absolute_orbit = header.Child("absoluteOrbitNumber").Integer(0, 100'000'000);
    const XML_ELEMENT information = root.Child("generalAnnotation/productInformation");
    image.pass = information.Child("pass").Text();
    const XML_ELEMENT projection = information.Child("projection");
    if (projection.Text() != "Slant Range") projection.Refuse("\"Slant Range\"");
    image.range_sampling_rate_hz = information.Child("rangeSamplingRate").PositiveReal();
    image.radar_frequency_hz = information.Child("radarFrequency").PositiveReal();
}

void ReadImage(S1_ANNOTATION& image, const XML_ELEMENT& root) {
    const XML_ELEMENT information = root.Child("imageAnnotation/imageInformation");
    image.first_line = information.Child("productFirstLineUtcTime").Utc();
    image.last_line = information.Child("productLastLineUtcTime").Utc();
    image.first_range_time_s = information.Child("slantRangeTime").PositiveReal();
    image.line_interval_s = information.Child("azimuthTimeInterval").PositiveReal();
    image.samples = information.Child("numberOfSamples").Integer(1, kMostSamples);
    image.lines = information.Child("numberOfLines").Integer(1, kMostLines);
}

void ReadProcessing(S1_ANNOTATION& image, const XML_ELEMENT& root) {
    const XML_ELEMENT processing = root.Child("imageAnnotation/processingInformation");
    image.semi_major_axis_m = processing.Child("ellipsoidSemiMajorAxis").PositiveReal();
    image.semi_minor_axis_m = processing.Child("ellipsoidSemiMinorAxis").PositiveReal();
    for (const XML_ELEMENT& swath : processing.Child("swathProcParamsList").Children("swathProcParams")) {
        if (swath.Child("swath").Text() != image.swath) continue;
        image.azimuth_bandwidth_hz = swath.Child("azimuthProcessing/processingBandwidth").PositiveReal();
        return;
    }
    throw COMPANION_ERROR(processing.Place().file + ": " + processing.Place().where +
                          "/swathProcParamsList: has no swathProcParams of swath " + Quoted(image.swath));
}

}  // namespace

S1_ANNOTATION ParseAnnotation(const std::string& file, const std::string& content) {
    const XML_DOCUMENT document(file, content);
    const XML_ELEMENT root = document.Root("product");
    S1_ANNOTATION image;
    ReadHeader(image, root);
    ReadImage(image, root);
    ReadProcessing(image, root);
    ReadBursts(image, root);
    image.orbit = ReadOrbit(root, file, image.mission);
    return image;
}
