/// \file mistyped_pool_keys.h
/// Optional keys of a pool that may have been mistyped. A mandatory one needs no hint: its absence ends the run.

#pragma once

#include "app/keys/pool_key.h"
#include "lib/baselib/pool/parameter_pool.h"

/// One WARNING for each key of the pool that is no key of the tables but close to an optional one that is missing.
void WarnAboutMistypedKeys(PARAMETER_POOL& pool, POOL_HOME home);
