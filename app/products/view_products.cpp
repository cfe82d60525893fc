#include "app/products/view_products.h"

#include <algorithm>
#include <vector>

#include "lib/baselib/image/product_rows.h"
#include "lib/baselib/sidecar/product_kind.h"
#include "simulation/thread_arg.h"
#include "simulation/threads.h"

namespace {

struct VIEW_OF_PRODUCT {
    PRODUCT product;
    VIEW view;
};
constexpr VIEW_OF_PRODUCT kViewsOfProducts[kViews] = {
    {PRODUCT::INCIDENCE, VIEW::INCIDENCE_DEG},
    {PRODUCT::LOCAL_INCIDENCE, VIEW::LOCAL_INCIDENCE_DEG},
    {PRODUCT::LINE_OF_SIGHT_E, VIEW::LINE_OF_SIGHT_EAST},
    {PRODUCT::LINE_OF_SIGHT_N, VIEW::LINE_OF_SIGHT_NORTH},
    {PRODUCT::LINE_OF_SIGHT_U, VIEW::LINE_OF_SIGHT_UP},
    {PRODUCT::PERPENDICULAR_BASELINE, VIEW::PERPENDICULAR_BASELINE_M},
    {PRODUCT::HEIGHT_OF_AMBIGUITY, VIEW::HEIGHT_OF_AMBIGUITY_M},
};

}  // namespace

VIEW_PRODUCTS::VIEW_PRODUCTS(const PRODUCT_SET& files, const IMAGE_SIZE& size, const VIEW_GEOMETRY& geometry)
    : size_(size), geometry_(geometry) {
    for (const VIEW_OF_PRODUCT& row : kViewsOfProducts)
        files_[static_cast<std::size_t>(row.view)] = files.Find(KindOf(row.product).key);
}

bool VIEW_PRODUCTS::AnyWanted() const {
    return std::ranges::any_of(files_, [](const PRODUCT_FILE* file) { return file != nullptr; });
}

void VIEW_PRODUCTS::Abandon() const {
    for (PRODUCT_FILE* file : files_)
        if (file != nullptr) file->Abandon();
}

/// All files of a band before the next band: what a pixel's ground sees is computed once. The band of all files is
/// larger than that of one, or each would be written in small pieces.
void VIEW_PRODUCTS::WriteRows(const GROUND_VIEW_ROWS& views, long long first_row, long long end_row) const {
    const long long row_bytes = static_cast<long long>(kViews * sizeof(float)) * size_.samples;
    constexpr long long kBandBytes = 4 * kProductBufferBytes;
    const long long band_rows = std::clamp(kBandBytes / row_bytes, 1LL, std::max(end_row - first_row, 1LL));
    std::array<std::vector<float>, kViews> bands;
    for (int view = 0; view < kViews; ++view)
        if (files_[view] != nullptr) bands[view].resize(static_cast<std::size_t>(band_rows * size_.samples));
    for (long long first = first_row; first < end_row; first += band_rows) {
        const long long rows = std::min(band_rows, end_row - first);
        for (long long row = 0; row < rows; ++row) {
            GROUND_VIEW_ROWS::ROW places{};
            for (int view = 0; view < kViews; ++view)
                if (files_[view] != nullptr) places[view] = bands[view].data() + row * size_.samples;
            views.View(static_cast<int>(first + row), size_.samples, places);
        }
        for (int view = 0; view < kViews; ++view)
            if (files_[view] != nullptr) files_[view]->WriteRows(first, rows, bands[view].data());
    }
}

int VIEW_PRODUCTS::EndRow(const SCENE& scene) const {
    const GRID_VIEW<float>& heights = scene.earth.radar_dem;
    return std::max(std::min(heights.EndRow(), size_.lines), heights.first_row);
}

void VIEW_PRODUCTS::WriteShare(const SCENE& share) const {
    if (AnyWanted()) WriteRows(GROUND_VIEW_ROWS(share, geometry_), share.earth.radar_dem.first_row, EndRow(share));
}

void VIEW_PRODUCTS::Write(const SCENE& scene) const {
    if (!AnyWanted()) return;
    const GROUND_VIEW_ROWS views(scene, geometry_);
    const auto write = [&](THREAD_ARG* argument) {
        const CONVERGENCE_REPORT report;
        try {
            WriteRows(views, argument->start, static_cast<long long>(argument->start) + argument->length);
        } catch (...) {
            Abandon();  // others may wait for these rows
            throw;
        }
    };
    THREADS<THREAD_ARG, unsigned>(static_cast<unsigned>(scene.earth.radar_dem.first_row),
                                  static_cast<unsigned>(EndRow(scene)), write, THREADS_LOG::SILENT)
        .Run();
}
