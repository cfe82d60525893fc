#include "simulation/perturbation_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/image/product_set.h"
#include "tests/kit/hexadecimal.h"
#include "tests/kit/log_capture.h"
#include "tests/kit/temporary_folder.h"

namespace {

using testing::HasSubstr;
using testing::Not;

/// 3 columns x 2 rows.
struct MATRIX_3X2 {
    std::vector<double> elements;
    explicit MATRIX_3X2(std::vector<double> values) : elements(std::move(values)) {}
    [[nodiscard]] GRID_VIEW<const double> View(int rows = 2) const { return {elements.data(), 3, rows, 3}; }
};

std::string FloatBytes(std::initializer_list<float> values) {
    std::string bytes;
    for (const float value : values) {
        for (int i = 0; i < 4; ++i) bytes += static_cast<char>(std::bit_cast<std::uint32_t>(value) >> (8 * i));
    }
    return bytes;
}

/// Row by row, as slabs would.
void WriteWhole(const std::string& path, const GRID_VIEW<const double>& matrix, double offset, double precision) {
    PRODUCT_SET products;
    PRODUCT_FILE& file = products.Add({"KEY", path, matrix.columns, matrix.rows});
    LogPerturbationFile(file, offset);
    for (int row = 0; row < matrix.rows; ++row) WritePerturbationRows(file, matrix, row, row + 1, offset, precision);
    products.Place();
    products.Accept();
}

TEST(PerturbationFile, HoldsTheDifferencesToTheOffset) {
    const TEMPORARY_FOLDER folder;
    const MATRIX_3X2 earth({6378137.25, 6378000.0, 6378000.125, 6377999.0, 6378000.0, 0.0});
    const std::string log = LoggedBy([&] { WriteWhole(folder.Path("x"), earth.View(), 6378000.0, 0.1); });
    EXPECT_THAT(log, HasSubstr("INFO  : global : Pertubation file offset = 6378000.000000\n"));
    EXPECT_EQ(Bytes("59a66a95 00000003 00000002 00000020 00000018 00000063 00000000 00000000") +
                  FloatBytes({137.25F, 0.0F, 0.125F, -1.0F, 0.0F, -6378000.0F}),
              Content(folder.Path("x")));
    // 6378000 / 0.1 needs log2(63780000) = 25.93 bits; 24 are there.
    EXPECT_THAT(log, HasSubstr("WARN  : global : Pertubation file precision problem: x=2 y=1 original=0.000000 "
                               "perturbation=-6378000.000000 offset=6378000.000000 SF deficit=0.57996"));
    EXPECT_NEAR(0.57996, std::log10(6378000.0 / 0.1) - 24.0 * std::log10(2.0), 1e-5);
}

TEST(PerturbationFile, WarnsFromTheLimitOf24BitsOn) {
    const TEMPORARY_FOLDER folder;
    const double limit = 0.1 * 16777216.0;
    const MATRIX_3X2 fine({limit - 1e-3, -limit + 1e-3, 0.0, 0.05, -0.1, 1e-300});
    EXPECT_THAT(LoggedBy([&] { WriteWhole(folder.Path("x"), fine.View(), 0.0, 0.1); }), Not(HasSubstr("problem")));
    const MATRIX_3X2 above({0.0, 0.0, 0.0, 0.0, -limit - 1e-3, limit + 1e-3});
    EXPECT_THAT(LoggedBy([&] { WriteWhole(folder.Path("x"), above.View(), 0.0, 0.1); }),
                testing::AllOf(HasSubstr("x=1 y=1 original=-16"), HasSubstr("x=2 y=1 original=16")));
}

TEST(PerturbationFile, TheOffsetIsTheRoundedCentre) {
    EXPECT_EQ(-6378137.0, PerturbationOffset(-6378137.4));
    EXPECT_EQ(2.0, PerturbationOffset(2.5));
}

TEST(PerturbationFile, RefusesWhatNo32BitRealHolds) {
    const TEMPORARY_FOLDER folder;
    const std::string path = folder.Path("x");
    for (const double value : {std::numeric_limits<double>::quiet_NaN(), 1e39}) {
        const MATRIX_3X2 matrix({0, 0, 0, 0, value, 0});
        EXPECT_THAT(LoggedBy([&] { EXPECT_THROW(WriteWhole(path, matrix.View(), 0.0, 0.1), ERROR_INVALID_VALUE); }),
                    HasSubstr(path + ": value "));
        EXPECT_THROW(PerturbationOffset(value), ERROR_INVALID_VALUE);
    }
    const MATRIX_3X2 zeros({0, 0, 0, 0, 0, 0});
    EXPECT_THROW(WriteWhole(path, zeros.View(), 0.0, 0.0), ERROR_ARGUMENT);
    EXPECT_THROW(WriteWhole(path, zeros.View(), 1e300, 0.1), ERROR_INVALID_VALUE);
}

}  // namespace
