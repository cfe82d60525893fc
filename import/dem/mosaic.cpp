#include "import/dem/mosaic.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

#include "companions/companion_error.h"
#include "import/dem/gdal_errors.h"
#include "import/dem/warp.h"

namespace {

double Tolerance(const MAP_REFERENCE& map) {
    return map.kind == MAP_KIND::GEO ? kGridTolerance_deg : kGridTolerance_m;
}

bool IsNearGrid(double distance, double spacing, double tolerance) {
    return std::abs(distance - std::round(distance / spacing) * spacing) <= tolerance;
}

/// First and last samples of both stand on one grid, whole turns apart at most.
bool StandsOn(const SAMPLE_GRID& grid, const SAMPLE_GRID& other, const MAP_REFERENCE& map) {
    const double tolerance = Tolerance(map);
    const bool same_spacing = IsNearGrid(other.LastX() - other.x0, grid.dx, tolerance) &&
                              IsNearGrid(other.y0 - other.LastY(), grid.dy, tolerance) &&
                              std::abs(other.dx / grid.dx - 1.0) < 1e-6 && std::abs(other.dy / grid.dy - 1.0) < 1e-6;
    return same_spacing && IsNearGrid(other.x0 - grid.x0, grid.dx, tolerance) &&
           IsNearGrid(other.y0 - grid.y0, grid.dy, tolerance);
}

/// The box on the map's own axes.
DEGREE_BOX OnMap(const DEGREE_BOX& box, const MAP_REFERENCE& map) {
    if (map.kind == MAP_KIND::GEO) return box;
    OGRSpatialReference geographic;
    geographic.SetWellKnownGeogCS("WGS84");
    geographic.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    OGRSpatialReference utm(geographic);
    utm.SetUTM(map.utm_zone, map.southern ? 0 : 1);
    utm.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    const std::unique_ptr<OGRCoordinateTransformation> transformation(
        OGRCreateCoordinateTransformation(&geographic, &utm));
    DEGREE_BOX bounds;
    constexpr int kPointsOnEdge = 41;
    if (transformation == nullptr ||
        transformation->TransformBounds(box.west, box.south, box.east, box.north, &bounds.west, &bounds.south,
                                        &bounds.east, &bounds.north, kPointsOnEdge) == 0)
        throw COMPANION_ERROR("the box can not be brought onto " + map.name + ": " + LastGdalError());
    return bounds;
}

}  // namespace

DEM_MOSAIC::DEM_MOSAIC(std::vector<std::unique_ptr<DEM_SOURCE>> sources, const std::optional<DEGREE_BOX>& box)
    : sources_(std::move(sources)) {
    BringOntoOneGrid();
    if (box) {
        PlaceForBox(OnMap(*box, map_));
    } else {
        std::vector<double> turns_deg(sources_.size(), 0.0);
        if (map_.kind == MAP_KIND::GEO) Unwrap(turns_deg);
        PlaceAll(turns_deg);
    }
    RequireSamples();
}

bool DEM_MOSAIC::AllOnGridOf(const DEM_SOURCE& first) const {
    if (first.Map().kind == MAP_KIND::OTHER || !first.Grid()) return false;
    return std::all_of(sources_.begin(), sources_.end(), [&first](const auto& source) {
        if (!source->Grid() || !source->Map().IsSameMap(first.Map())) return false;
        SAMPLE_GRID grid = *source->Grid();
        if (first.Map().kind != MAP_KIND::GEO) return StandsOn(*first.Grid(), grid, first.Map());
        grid.x0 -= std::round((grid.x0 - first.Grid()->x0) / kTurn_deg) * kTurn_deg;
        return StandsOn(*first.Grid(), grid, first.Map());
    });
}

void DEM_MOSAIC::BringOntoOneGrid() {
    const DEM_SOURCE& first = *sources_.front();
    map_ = first.Map();
    if (AllOnGridOf(first)) {
        base_ = *first.Grid();
        return;
    }
    const bool first_is_geographic = map_.kind == MAP_KIND::GEO && first.Grid().has_value();
    base_ = first_is_geographic ? *first.Grid() : GeographicGridFor(first);
    map_ = {MAP_KIND::GEO, 0, false, "WGS 84"};
    for (auto& source : sources_) {
        const bool stays =
            source->Map().kind == MAP_KIND::GEO && source->Grid() && StandsOn(base_, *source->Grid(), map_);
        if (stays) continue;
        warped_.push_back(source->Name());
        originals_.push_back(std::move(source));
        source = WarpedOnto(base_, *originals_.back());
    }
}

/// The files' longitudes, each in the turn in which they lie side by side: the widest gap of the circle stays outside.
void DEM_MOSAIC::Unwrap(std::vector<double>& turns_deg) const {
    std::vector<std::size_t> order(sources_.size());
    std::iota(order.begin(), order.end(), 0);
    std::vector<double> west_deg;
    for (const auto& source : sources_)
        west_deg.push_back(source->Grid()->x0 - std::floor(source->Grid()->x0 / kTurn_deg) * kTurn_deg);
    std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return west_deg[a] < west_deg[b]; });
    double reached_deg = -kTurn_deg;
    for (const std::size_t i : order)
        reached_deg = std::max(reached_deg, west_deg[i] + sources_[i]->Grid()->LastX() - sources_[i]->Grid()->x0);
    reached_deg -= kTurn_deg;  // where the last files end, a turn before
    double widest_deg = -1.0;
    double start_deg = 0.0;
    for (const std::size_t i : order) {
        if (west_deg[i] - reached_deg > widest_deg) {
            widest_deg = west_deg[i] - reached_deg;
            start_deg = west_deg[i];
        }
        reached_deg = std::max(reached_deg, west_deg[i] + sources_[i]->Grid()->LastX() - sources_[i]->Grid()->x0);
    }
    for (std::size_t i = 0; i < turns_deg.size(); ++i) {
        const double lifted_deg = west_deg[i] < start_deg ? west_deg[i] + kTurn_deg : west_deg[i];
        turns_deg[i] = std::round((lifted_deg - sources_[i]->Grid()->x0) / kTurn_deg) * kTurn_deg;
    }
}

void DEM_MOSAIC::Place(DEM_SOURCE& source, double turn_deg) {
    placed_.push_back({&source, std::llround(base_.Column(source.Grid()->x0 + turn_deg)),
                       std::llround(base_.Row(source.Grid()->y0))});
}

void DEM_MOSAIC::PlaceAll(const std::vector<double>& turns_deg) {
    for (std::size_t i = 0; i < sources_.size(); ++i) Place(*sources_[i], turns_deg[i]);
    CutTo(PlacedSamples());
}

DEM_MOSAIC::SAMPLE_BOX DEM_MOSAIC::PlacedSamples() const {
    constexpr double kMost = 2e9;
    SAMPLE_BOX bounds{kMost, -kMost, kMost, -kMost};
    for (const PLACED& placed : placed_) {
        const SAMPLE_GRID& grid = *placed.source->Grid();
        bounds.first_column = std::min(bounds.first_column, static_cast<double>(placed.column));
        bounds.last_column = std::max(bounds.last_column, static_cast<double>(placed.column + grid.columns - 1));
        bounds.first_row = std::min(bounds.first_row, static_cast<double>(placed.row));
        bounds.last_row = std::max(bounds.last_row, static_cast<double>(placed.row + grid.rows - 1));
    }
    return bounds;
}

/// Files that hold the same longitudes in another turn serve the box as well.
void DEM_MOSAIC::PlaceForBox(const DEGREE_BOX& box) {
    const double east = map_.kind == MAP_KIND::GEO && box.east < box.west ? box.east + kTurn_deg : box.east;
    for (const auto& source : sources_) {
        const SAMPLE_GRID& grid = *source->Grid();
        for (const double turn_deg : {-kTurn_deg, 0.0, kTurn_deg}) {
            if (map_.kind != MAP_KIND::GEO && turn_deg != 0.0) continue;
            const bool overlaps = grid.LastX() + turn_deg >= box.west && grid.x0 + turn_deg <= east &&
                                  grid.y0 >= box.south && grid.LastY() <= box.north;
            if (overlaps) Place(*source, turn_deg);
        }
    }
    if (placed_.empty()) throw COMPANION_ERROR(sources_.front()->Name() + ": no file covers any part of the box");
    constexpr double kSlack = 1e-6;  // a box that ends on a sample needs no further one
    CutTo({std::floor(base_.Column(box.west) + kSlack), std::ceil(base_.Column(east) - kSlack),
           std::floor(base_.Row(box.north) + kSlack), std::ceil(base_.Row(box.south) - kSlack)});
}

void DEM_MOSAIC::CutTo(const SAMPLE_BOX& wanted) {
    const SAMPLE_BOX there = PlacedSamples();
    covers_box_ = wanted.first_column >= there.first_column && wanted.last_column <= there.last_column &&
                  wanted.first_row >= there.first_row && wanted.last_row <= there.last_row;
    const double first_column = std::max(wanted.first_column, there.first_column);
    const double first_row = std::max(wanted.first_row, there.first_row);
    const double columns = std::min(wanted.last_column, there.last_column) - first_column + 1.0;
    const double rows = std::min(wanted.last_row, there.last_row) - first_row + 1.0;
    grid_ = base_;
    grid_.x0 = base_.X(first_column);
    grid_.y0 = base_.Y(first_row);
    grid_.columns = std::llround(std::max(columns, 0.0));
    grid_.rows = std::llround(std::max(rows, 0.0));
    for (PLACED& placed : placed_) {
        placed.column -= std::llround(first_column);
        placed.row -= std::llround(first_row);
    }
}

void DEM_MOSAIC::RequireSamples() const {
    constexpr long long kMost = std::numeric_limits<int>::max();
    const std::string size = std::to_string(grid_.columns) + " columns and " + std::to_string(grid_.rows) + " rows";
    if (grid_.columns < 2 || grid_.rows < 2)
        throw COMPANION_ERROR(sources_.front()->Name() + ": the DEM would have " + size +
                              ": expected at least 2 of each");
    if (grid_.columns > kMost || grid_.rows > kMost || grid_.columns > 4'000'000'000 / grid_.rows)
        throw COMPANION_ERROR(sources_.front()->Name() + ": the DEM would have " + size +
                              ", too many for a raster file: cut it with --box or --around");
}

bool DEM_MOSAIC::IsWholeMetres() const {
    return warped_.empty() &&
           std::all_of(sources_.begin(), sources_.end(), [](const auto& source) { return source->IsWholeMetres(); });
}

void DEM_MOSAIC::ReadRow(long long row, std::vector<double>& heights_m) {
    heights_m.assign(static_cast<std::size_t>(grid_.columns), std::numeric_limits<double>::quiet_NaN());
    for (const PLACED& placed : placed_) {
        const SAMPLE_GRID& grid = *placed.source->Grid();
        const long long source_row = row - placed.row;
        const long long first = std::max(placed.column, 0LL);
        const long long end = std::min(placed.column + grid.columns, grid_.columns);
        if (source_row < 0 || source_row >= grid.rows || first >= end) continue;
        piece_m_.resize(static_cast<std::size_t>(end - first));
        placed.source->ReadRow(source_row, first - placed.column, end - first, piece_m_.data());
        for (std::size_t i = 0; i < piece_m_.size(); ++i) {
            double& height_m = heights_m[static_cast<std::size_t>(first) + i];
            if (std::isnan(height_m)) height_m = piece_m_[i];
        }
    }
}
