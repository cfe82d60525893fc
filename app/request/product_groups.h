/// \file product_groups.h
/// Products that are asked for together: the presence of one key asks for all.

#pragma once

#include <initializer_list>
#include <optional>
#include <vector>

#include "app/keys/control_values.h"

/// A product that is asked for alone; a key without a path gives a WARNING.
[[nodiscard]] std::optional<SOURCED_TEXT> ReadProduct(CONTROLLER_IFC& controller, CONTROL_KEY key);

/// All paths of the group, in the order of its keys; none when no key is present. A key without a path beside a named
/// one is refused; a group without any path is not written, which a WARNING says.
/// @throws ERROR_PARAMETER after a line for each such key
[[nodiscard]] std::vector<SOURCED_TEXT> ReadProductGroup(CONTROLLER_IFC& controller,
                                                         std::initializer_list<CONTROL_KEY> keys);
