#include "simulation/perturbation_file.h"

#include <cmath>
#include <limits>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/log_and_throw.h"
#include "lib/baselib/image/product_rows.h"
#include "lib/baselib/logging/logging.h"

namespace {

constexpr double kMantissaDecades = 7.224719895935548;                      // 24 log10(2)
constexpr double kMantissaSteps = 16777216.0;                               // 2^24
constexpr double kLargestValue = std::numeric_limits<float>::max() / 2.0F;  // a difference of two stays a float

bool IsUsable(double value) {
    return std::isfinite(value) && std::fabs(value) <= kLargestValue;
}

class PRECISION_CHECK {
  public:
    PRECISION_CHECK(double precision, double offset)
        : precision_(precision),
          log_precision_(std::log10(precision)),
          certainly_fine_(precision * kMantissaSteps * (1.0 - 1e-9)),
          offset_(offset) {}

    /// Only differences near the limit or above it are worth their logarithm.
    void operator()(long long x, long long y, double original, double difference) const {
        const double size = std::fabs(difference);
        if (size <= precision_ || size < certainly_fine_) return;
        const double decades = std::log10(size) - log_precision_;
        if (!(decades > kMantissaDecades)) return;
        Log().Message(LOGGING_LEVEL::WARNING,
                      "Pertubation file precision problem: x=%lld y=%lld original=%f perturbation=%f offset=%f SF "
                      "deficit=%f",
                      x, y, original, difference, offset_, decades - kMantissaDecades);
    }

  private:
    double precision_;
    double log_precision_;
    double certainly_fine_;
    double offset_;
};

void RefuseValue(const std::string& path, long long x, long long y, double value) {
    LogAndThrow<ERROR_INVALID_VALUE>("%s: value %g at x=%lld y=%lld can not be written as a 32-bit real", path.c_str(),
                                     value, x, y);
}

void CheckParameters(const std::string& path, double offset, double precision) {
    if (!IsUsable(offset)) {
        LogAndThrow<ERROR_INVALID_VALUE>("%s: offset %g is not usable", path.c_str(), offset);
    }
    if (!std::isfinite(precision) || precision <= 0.0 || precision > kLargestValue) {
        LogAndThrow<ERROR_ARGUMENT>("%s: precision %g is not above 0", path.c_str(), precision);
    }
}

}  // namespace

double PerturbationOffset(double centre) {
    if (!IsUsable(centre)) {
        LogAndThrow<ERROR_INVALID_VALUE>("the centre value %g of a matrix is no usable offset", centre);
    }
    return std::rint(centre);
}

void LogPerturbationFile(const PRODUCT_FILE& file, double offset) {
    Log().Message(LOGGING_LEVEL::INFO, "Pertubation file offset = %f", offset);
    file.LogCreation();
}

void WritePerturbationRows(PRODUCT_FILE& file, const GRID_VIEW<const double>& matrix, int first_row, int end_row,
                           double offset, double precision) {
    CheckParameters(file.Path(), offset, precision);
    const PRECISION_CHECK check(precision, offset);
    WriteRowsMade(file, first_row, end_row, matrix.columns, [&](long long y, float* pixels) {
        const double* const row = matrix[static_cast<int>(y)];
        for (int x = 0; x < matrix.columns; ++x) {
            if (!IsUsable(row[x])) RefuseValue(file.Path(), x, y, row[x]);
            const double difference = row[x] - offset;
            check(x, y, row[x], difference);
            pixels[x] = static_cast<float>(difference);
        }
    });
}
