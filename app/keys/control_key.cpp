#include "app/keys/control_key.h"

std::vector<std::string> ControlKeyNames() {
    std::vector<std::string> names;
    for (const CONTROL_KEY_ROW& row : kControlKeys)
        if (row.need != KEY_NEED::ENVIRONMENT) names.emplace_back(row.name);
    return names;
}
