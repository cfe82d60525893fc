#include "lib/baselib/sar/sar_enum.h"

#include "lib/baselib/logging/logging.h"

namespace SAR {

void SAR_ENUM::FromText(const std::string& text) {
    for (const ALTERNATIVE_TEXT& alternative : Table().alternative_texts) {
        if (text == alternative.text) return AssignId(alternative.id, true);
    }
    AssignText(text, true);
}

void SAR_ENUM::FromFirstList(const std::string& text) {
    AssignId(FirstId(), true);
    int previous = FirstId();
    for (const ALTERNATIVE_TEXT& alternative : Table().alternative_texts) {
        if (alternative.id <= previous) return;  // each list names the enumerators in their order
        if (text == alternative.text) return AssignId(alternative.id, true);
        previous = alternative.id;
    }
}

void SAR_ENUM::ReadFromParameterPool(PARAMETER_POOL& pool) {
    const auto text = pool.Get<std::string>(Table().pool_key);
    try {
        FromText(text);
    } catch (const BASIC::TYPES::ERROR_ENUM_BASE_INVALID_VALUE&) {
        Log().Message(LOGGING_LEVEL::ALARM, "%s: key \"%s\": unknown value \"%s\"", pool.FileName().c_str(),
                      Table().pool_key, text.c_str());
        throw;
    }
}

}  // namespace SAR
