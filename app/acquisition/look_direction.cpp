#include "app/acquisition/look_direction.h"

#include <string>

#include "app/keys/pool_values.h"
#include "app/say.h"
#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/sar/sar_enumerations.h"

double ReadLookSign(PARAMETER_POOL& slave_pool) {
    constexpr POOL_KEY<STRING> kKey = "antenna_look_direction";
    const VALUE_SOURCE source = SourceOf(slave_pool, kKey);
    const std::string text = Read<STRING>(slave_pool, kKey).ToStd();
    RequireText(source, text, kKey.row.range);
    SAR::AntennaLookDirection direction;
    direction.FromFirstList(text);
    if (direction.Id() == SAR::AntennaLookDirection::RIGHT) return 1.0;
    if (direction.Id() == SAR::AntennaLookDirection::LEFT) return -1.0;
    Explain("Error: Unknown antenna look direction %s", text.c_str());
    LogRefusedText(source, text, kKey.row.range);
    throw ERROR_PARAMETER();
}
