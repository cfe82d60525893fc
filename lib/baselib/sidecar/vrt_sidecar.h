/// \file vrt_sidecar.h
/// The text file beside a raster file through which GDAL and what builds on it open it: no conversion, every bit kept.
/// It names the raster by its bare file name, so that both can be moved together.

#pragma once

#include <optional>
#include <string>

#include "lib/baselib/image/pixel_type.h"

struct VRT_SIDECAR {
    std::string file_name;  ///< of the raster, without folders
    long long columns = 0;
    long long rows = 0;
    long long image_offset_bytes = 0;  ///< of the first pixel: header and colour map
    PIXEL_TYPE pixel_type = PIXEL_TYPE::FLT_6;
    std::string description;
    std::string unit;               ///< empty: none
    std::string product_key;        ///< kept as the metadata item VELMORA_PRODUCT; empty: none
    std::optional<double> no_data;  ///< the value that stands for no value
};

/// RASTER.vrt
[[nodiscard]] std::string VrtPath(const std::string& raster_path);

/// GDAL's name of a pixel type, or null for those that it cannot read from such a file (flt_2, c_u_int_8, c_flt_2,
/// rgb).
[[nodiscard]] const char* GdalTypeName(PIXEL_TYPE pixel_type);

/// Whether the name can stand in an XML file: control bytes cannot.
[[nodiscard]] bool CanBeNamedInVrt(const std::string& file_name);

/// The whole file. The pixel type must have a GDAL name, the file name must be one that can be named.
[[nodiscard]] std::string VrtText(const VRT_SIDECAR& sidecar);
