#include "app/acquisition/look_direction.h"

#include <optional>
#include <string>

#include "app/keys/pool_values.h"
#include "app/say.h"
#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/logging/logging.h"
#include "lib/baselib/sar/sar_enumerations.h"

namespace {

constexpr POOL_KEY<STRING> kKey = "antenna_look_direction";

void CompareWithMaster(PARAMETER_POOL& master_pool, const PARAMETER_POOL& slave_pool, const std::string& text) {
    const std::optional<STRING> other = ReadIfPresent<STRING>(master_pool, kKey);
    if (!other || other->ToStd() == text) return;
    Log().Message(LOGGING_LEVEL::WARNING, "%s: key \"%s\": \"%s\", but %s says \"%s\", and that is what counts",
                  master_pool.FileName().c_str(), kKey.row.name, other->ToStd().c_str(), slave_pool.FileName().c_str(),
                  text.c_str());
}

double SignOf(const std::string& text) {
    SAR::AntennaLookDirection direction;
    direction.FromFirstList(text);
    if (direction.Id() == SAR::AntennaLookDirection::RIGHT) return 1.0;
    return direction.Id() == SAR::AntennaLookDirection::LEFT ? -1.0 : 0.0;
}

}  // namespace

double ReadLookSign(PARAMETER_POOL& master_pool, PARAMETER_POOL& slave_pool) {
    const VALUE_SOURCE source = SourceOf(slave_pool, kKey);
    const std::string text = Read<STRING>(slave_pool, kKey).ToStd();
    RequireText(source, text, kKey.row.range);
    const double sign = SignOf(text);
    if (sign == 0.0) {
        Explain("Error: Unknown antenna look direction %s", text.c_str());
        LogRefusedText(source, text, kKey.row.range);
        throw ERROR_PARAMETER();
    }
    CompareWithMaster(master_pool, slave_pool, text);
    return sign;
}
