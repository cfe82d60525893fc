#include "app/products/wanted_products.h"

#include "lib/baselib/sidecar/product_kind.h"

std::vector<PRODUCT_REQUEST> WantedProducts(const REQUEST& request, const IMAGE_SIZE& image,
                                            const OUTPUT_SIZES& sizes) {
    std::vector<PRODUCT_REQUEST> products;
    const auto add = [&](PRODUCT product, const SOURCED_TEXT& file, const IMAGE_SIZE& size) {
        const PRODUCT_KIND& kind = KindOf(product);
        if (file.Given()) products.push_back({kind.key, file.text, size.samples, size.lines, kind.pixel_type});
    };
    const EARTH_REQUEST& earth = request.earth;
    const VIEW_REQUEST& views = request.views;
    add(PRODUCT::SIMU_PHASE, request.phase.file, image);
    add(PRODUCT::RG_COREG, request.shifts.range_file, sizes.shift);
    add(PRODUCT::AZ_COREG, request.shifts.azimuth_file, sizes.shift);
    add(PRODUCT::H_EARTH, earth.height_file, sizes.earth);
    add(PRODUCT::X_EARTH, earth.x_file, sizes.earth);
    add(PRODUCT::Y_EARTH, earth.y_file, sizes.earth);
    add(PRODUCT::Z_EARTH, earth.z_file, sizes.earth);
    add(PRODUCT::INCIDENCE, views.incidence_file, sizes.earth);
    add(PRODUCT::LOCAL_INCIDENCE, views.local_incidence_file, sizes.earth);
    add(PRODUCT::LINE_OF_SIGHT_E, views.line_of_sight[0], sizes.earth);
    add(PRODUCT::LINE_OF_SIGHT_N, views.line_of_sight[1], sizes.earth);
    add(PRODUCT::LINE_OF_SIGHT_U, views.line_of_sight[2], sizes.earth);
    add(PRODUCT::PERPENDICULAR_BASELINE, views.baseline_file, sizes.earth);
    add(PRODUCT::HEIGHT_OF_AMBIGUITY, views.ambiguity_file, sizes.earth);
    add(PRODUCT::LAYOVER_SHADOW, request.layover_shadow_file, image);
    return products;
}
