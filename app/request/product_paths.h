/// \file product_paths.h
/// The end of stage A looks at the files that stage C will create: a typing error in a path shall cost seconds, not
/// hours.

#pragma once

#include "app/request/request.h"

/// Tries whether every wanted product can be created, without leaving anything behind, and refuses a product that is an
/// input, a pool, the log or another product (same device and inode, links included).
/// @throws ERROR_CAN_NOT_CREATE_FILE after a line that names key, path and reason; ERROR_PARAMETER for a path used
/// twice
void CheckProductPaths(const REQUEST& request);
