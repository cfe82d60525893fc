/// \file product_groups.h
/// Products that are asked for together: the presence of one key asks for all.

#pragma once

#include <initializer_list>

#include "app/keys/control_values.h"

/// A key that stands without a path beside a named one of its group is refused; a group without any path is not
/// written, which one WARNING says.
/// @throws ERROR_PARAMETER after a line for each such key
void CheckProductGroup(std::initializer_list<SOURCED_TEXT> files);
