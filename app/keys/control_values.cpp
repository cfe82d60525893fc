#include "app/keys/control_values.h"

namespace {

VALUE_SOURCE SourceOf(const CONTROL_KEY& key) {
    return {"configuration", key.row.name};
}

}  // namespace

void LogRefusedText(const SOURCED_TEXT& value) {
    LogRefusedText(value.source, value.text, *value.range);
}

bool IsGiven(CONTROLLER_IFC& controller, CONTROL_KEY key) {
    return controller.parameter_exists(key.row.name);
}

SOURCED_TEXT RequiredText(CONTROLLER_IFC& controller, CONTROL_KEY key) {
    return {SourceOf(key), controller.get_parameter(key.row.name), &key.row.range};
}

std::optional<SOURCED_TEXT> OptionalText(CONTROLLER_IFC& controller, CONTROL_KEY key) {
    SOURCED_TEXT value{SourceOf(key), "", &key.row.range};
    if (!controller.get_optional_parameter(key.row.name, value.text)) return std::nullopt;
    return value;
}
