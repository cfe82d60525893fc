#include "view/map_spacing.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr double kMostMapPixels = 4.0;  ///< per product pixel

/// Lengths are counted in degrees of latitude.
class GROUND {
  public:
    explicit GROUND(const EARTH_POSITIONS& positions)
        : positions_(positions), cosine_(std::max(std::cos(MiddleLatitude()), 1e-3)) {}

    [[nodiscard]] double Cosine() const { return cosine_; }

    /// Mean distance of neighbours.
    [[nodiscard]] double MeanStep(int columns, int rows) const {
        double sum = 0.0;
        long long count = 0;
        for (int row = 0; row + rows < positions_.rows; ++row) {
            for (int column = 0; column + columns < positions_.columns; ++column, ++count)
                sum += Distance(Index(column, row), Index(column + columns, row + rows));
        }
        return sum / static_cast<double>(count);
    }

    /// Of the box around all positions.
    [[nodiscard]] double Area() const {
        const auto [west, east] = std::ranges::minmax(positions_.longitudes_deg);
        const auto [south, north] = std::ranges::minmax(positions_.latitudes_deg);
        return (east - west) * cosine_ * (north - south);
    }

  private:
    [[nodiscard]] std::size_t Index(int column, int row) const {
        return static_cast<std::size_t>(row) * positions_.columns + column;
    }
    [[nodiscard]] double Distance(std::size_t from, std::size_t to) const {
        return std::hypot((positions_.longitudes_deg[to] - positions_.longitudes_deg[from]) * cosine_,
                          positions_.latitudes_deg[to] - positions_.latitudes_deg[from]);
    }
    [[nodiscard]] double MiddleLatitude() const {
        return positions_.latitudes_deg[Index(positions_.columns / 2, positions_.rows / 2)] * std::numbers::pi / 180.0;
    }

    const EARTH_POSITIONS& positions_;
    double cosine_;
};

}  // namespace

MAP_SPACING MapSpacing(const EARTH_POSITIONS& positions, const PIXEL_STEPS& steps, double product_pixels) {
    const GROUND ground(positions);
    const double finer = std::min(ground.MeanStep(1, 0) * steps.columns, ground.MeanStep(0, 1) * steps.rows);
    const double least = std::sqrt(ground.Area() / (kMostMapPixels * product_pixels));
    const double spacing = std::max(finer, least);
    return {spacing / ground.Cosine(), spacing};
}
