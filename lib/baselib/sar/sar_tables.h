/// \file sar_tables.h
/// Pool keys, texts and alternative texts of the SAR enumerations.

#pragma once

#include "lib/baselib/sar/sar_enum.h"

namespace SAR {

using ENUM_ROW = BASIC::TYPES::ENUM_BASE::ROW;

inline constexpr ENUM_ROW kQuicklookRows[] = {{0, "-"}, {1, "lowRes"}, {2, "mediumRes"}, {3, "-"}};
inline constexpr ALTERNATIVE_TEXT kQuicklookTexts[] = {{"lres", 1}, {"mres", 2}};
inline constexpr ENUM_TABLE kQuicklook{"quicklook_resolution_class", kQuicklookRows, kQuicklookTexts};

inline constexpr ENUM_ROW kPolarizationRows[] = {{0, "-"}, {1, "V"}, {2, "H"}, {3, "-"}};
inline constexpr ENUM_TABLE kPolarization{"polarization_type", kPolarizationRows};

inline constexpr ENUM_ROW kOrbitDirectionRows[] = {{0, "-"}, {1, "A"}, {2, "D"}, {3, "U"}, {4, "-"}};
inline constexpr ALTERNATIVE_TEXT kOrbitDirectionTexts[] = {{"ascending", 1}, {"descending", 2}, {"undefined", 3},
                                                            {"ASCENDING", 1}, {"DESCENDING", 2}, {"UNDEFINED", 3}};
inline constexpr ENUM_TABLE kOrbitDirection{"orbit_direction", kOrbitDirectionRows, kOrbitDirectionTexts};

inline constexpr ENUM_ROW kLookDirectionRows[] = {{0, "-"}, {1, "L"}, {2, "R"}, {3, "U"}, {4, "-"}};
inline constexpr ALTERNATIVE_TEXT kLookDirectionTexts[] = {
    {"left", 1}, {"right", 2}, {"undefined", 3}, {"elevationLeft", 1}, {"elevationRight", 2}, {"elevationUndefined", 3},
    {"LEFT", 1}, {"RIGHT", 2}, {"UNDEFINED", 3}};
inline constexpr ENUM_TABLE kLookDirection{"antenna_look_direction", kLookDirectionRows, kLookDirectionTexts};

inline constexpr ENUM_ROW kEdgeRows[] = {{0, "-"}, {1, "TOP"}, {2, "RIGHT"}, {3, "BOTTOM"}, {4, "LEFT"}, {5, "-"}};
inline constexpr ENUM_TABLE kEdge{"edge", kEdgeRows};

inline constexpr ENUM_ROW kRangeRows[] = {{0, "-"}, {1, "near"}, {2, "mid"}, {3, "far"}, {4, "-"}};
inline constexpr ENUM_TABLE kRange{"range", kRangeRows};

inline constexpr ENUM_ROW kAzimuthRows[] = {{0, "-"}, {1, "start"}, {2, "center"}, {3, "stop"}, {4, "-"}};
/// The enumerators' second texts, by identifier; those of the real enumerators are read as well.
inline constexpr const char* kAzimuthSecondTexts[] = {"-", "early", "mid", "late", "-"};
inline constexpr ALTERNATIVE_TEXT kAzimuthTexts[] = {
    {kAzimuthSecondTexts[1], 1}, {kAzimuthSecondTexts[2], 2}, {kAzimuthSecondTexts[3], 3}, {"first", 1}, {"last", 3}};
inline constexpr ENUM_TABLE kAzimuth{"azimuth", kAzimuthRows, kAzimuthTexts};

inline constexpr ENUM_ROW kImageTypeRows[] = {{0, "-"}, {1, "PORTRAIT"}, {2, "LANDSCAPE"}, {3, "-"}};
inline constexpr ENUM_TABLE kImageType{"image_type", kImageTypeRows};

inline constexpr ENUM_ROW kImagingRows[] = {{0, "-"},         {1, "StripMap"}, {2, "ScanSAR"},
                                            {3, "SpotLight"}, {4, "TopSAR"},   {5, "-"}};
inline constexpr ALTERNATIVE_TEXT kImagingTexts[] = {{"SM", 1}, {"SC", 2}, {"SL", 3}};
inline constexpr ENUM_TABLE kImaging{"imaging_configuration", kImagingRows, kImagingTexts};

inline constexpr ENUM_ROW kChirpSlopeRows[] = {
    {0, "-"}, {1, "UpChirp"}, {2, "DownChirp"}, {3, "NotApplicable"}, {4, "-"}};
inline constexpr ALTERNATIVE_TEXT kChirpSlopeTexts[] = {{"up", 1}, {"down", 2}};
inline constexpr ENUM_TABLE kChirpSlope{"chirp_slope", kChirpSlopeRows, kChirpSlopeTexts};

inline constexpr ENUM_ROW kChirpTypeRows[] = {{0, "-"}, {1, "ideal"}, {2, "model"}, {3, "replica"}, {4, "-"}};
inline constexpr ALTERNATIVE_TEXT kChirpTypeTexts[] = {
    {"nominalChirp", 1}, {"nominal", 1}, {"idealChirp", 1}, {"modelChirp", 2}};
inline constexpr ENUM_TABLE kChirpType{"chirp_type", kChirpTypeRows, kChirpTypeTexts};

inline constexpr ENUM_ROW kProductFormatRows[] = {{0, "-"}, {1, "PLAIN"}, {2, "QLM_ISP"}, {3, "-"}};
inline constexpr ENUM_TABLE kProductFormat{"product_format_id", kProductFormatRows};

inline constexpr ENUM_ROW kProjectionRows[] = {{0, "-"},   {1, "slant range"}, {2, "ground range"},
                                               {3, "map"}, {4, "undefined"},   {5, "-"}};
inline constexpr ALTERNATIVE_TEXT kProjectionTexts[] = {
    {"SLANTRANGE", 1}, {"GROUNDRANGE", 2}, {"MAP", 3}, {"UNDEFINED", 4}};
inline constexpr ENUM_TABLE kProjection{"projection", kProjectionRows, kProjectionTexts};

inline constexpr ENUM_ROW kMapProjectionRows[] = {{0, "-"}, {1, "UTM"}, {2, "UPS"}, {3, "AUTO"}, {4, "-"}};
inline constexpr ENUM_TABLE kMapProjection{"map_projection", kMapProjectionRows};

inline constexpr ENUM_ROW kTxRxRows[] = {{0, "-"}, {1, "HH"}, {2, "HV"}, {3, "VH"}, {4, "VV"}, {5, "-"}};
inline constexpr ENUM_TABLE kTxRx{"tx_rx_type", kTxRxRows};

}  // namespace SAR
