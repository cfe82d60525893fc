/// \file raster_file.h
/// A raster file of the processor, as rows of real numbers: unsigned 8-bit, 16- and 32-bit integers, 32- and 64-bit
/// reals. Threads: rows of one open file may be read by several threads.

#pragma once

#include <span>
#include <string>

#include "lib/baselib/image/mem_mgr.h"

/// How a 16-bit terrain model marks a sample without a height.
inline constexpr double kVoidHeight = -32768.0;

class RASTER_FILE {
  public:
    /// @throws COMPANION_ERROR for what is no raster file of these types; what the mapping throws
    explicit RASTER_FILE(const std::string& path);

    [[nodiscard]] const std::string& Path() const { return path_; }
    [[nodiscard]] long long Columns() const { return image_.Columns(); }
    [[nodiscard]] long long Rows() const { return image_.Rows(); }
    [[nodiscard]] PIXEL_TYPE PixelType() const { return image_.PixelType(); }
    [[nodiscard]] long long HeaderBytes() const { return image_.HeaderSize(); }

    /// Values of one row. NaN where there is no value: not finite, or a void of 16-bit heights.
    /// @param values  Columns() of them
    void ReadRow(long long row, std::span<double> values) const;

  private:
    std::string path_;
    MEM_MGR image_;
};

/// The pixel type that a raster file's header tells. @throws COMPANION_ERROR when it is no raster file
[[nodiscard]] PIXEL_TYPE PixelTypeOfFile(const std::string& path);

/// What people call a pixel type: "32-bit real".
[[nodiscard]] const char* PixelTypeText(PIXEL_TYPE pixel_type);
