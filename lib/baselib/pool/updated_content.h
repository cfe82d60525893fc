/// \file updated_content.h
/// What a pool's text becomes when entries are changed.

#pragma once

#include <string>

#include "lib/baselib/pool/parameter_pool_list.h"

/// An entry of the text is replaced where it stands (the first one of its key), further ones follow at the end. Every
/// other line stays byte for byte.
[[nodiscard]] std::string UpdatedContent(const std::string& text, PARAMETER_POOL_LIST items);
