#include "import/stack/middle_height.h"

#include "companions/companion_error.h"
#include "lib/baselib/pool/parameter_pool.h"

double MiddleHeight_m(const std::string& dem_pool) {
    PARAMETER_POOL pool(dem_pool);
    constexpr const char* kKey = "dem_valid";
    if (!pool.FindKey(kKey)) return 0.0;
    const std::string text = pool.Get<STRING>(kKey).ToStd();
    const VALUE_PLACE place{dem_pool, std::string("key ") + kKey};
    const std::size_t dots = text.find("..");
    if (dots == std::string::npos) RefuseValue(place, text, "LOWEST..HIGHEST");
    return 0.5 * (RealOf(place, text.substr(0, dots)) + RealOf(place, text.substr(dots + 2)));
}
