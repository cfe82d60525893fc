/// \file product_statistics.h
/// What a written product holds, read back from its file.

#pragma once

#include <optional>
#include <string>

struct PRODUCT_STATISTICS {
    long long columns = 0;
    long long rows = 0;
    long long bytes = 0;  ///< of the file
    double minimum = 0.0;
    double maximum = 0.0;
    double mean = 0.0;
};

/// @return nothing for what is no regular file (a device, a pipe) or can not be read back
[[nodiscard]] std::optional<PRODUCT_STATISTICS> StatisticsOfProduct(const std::string& path);
