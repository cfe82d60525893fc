/// \file product_kind.h
/// What the processor's products are called and what they hold: the text for people beside each.
/// Threads: constant tables.

#pragma once

#include <span>
#include <string_view>

#include "lib/baselib/image/pixel_type.h"

enum class PRODUCT {
    SIMU_PHASE,
    RG_COREG,
    AZ_COREG,
    H_EARTH,
    X_EARTH,
    Y_EARTH,
    Z_EARTH,
    LOCAL_INCIDENCE,
    INCIDENCE,
    LINE_OF_SIGHT_E,
    LINE_OF_SIGHT_N,
    LINE_OF_SIGHT_U,
    PERPENDICULAR_BASELINE,
    HEIGHT_OF_AMBIGUITY,
    LAYOVER_SHADOW
};

struct PRODUCT_KIND {
    PRODUCT product;
    const char* key;  ///< of the control file that names the product's path; the last two letters of LINE_OF_SIGHT_E,
                      ///< _N and _U stand for the files that LINE_OF_SIGHT asks for
    const char* description;
    const char* unit;
    PIXEL_TYPE pixel_type = PIXEL_TYPE::FLT_6;
};

/// In the order in which a run writes them.
[[nodiscard]] std::span<const PRODUCT_KIND> ProductKinds();

[[nodiscard]] const PRODUCT_KIND& KindOf(PRODUCT product);

/// @return null for a text that is no product's key
[[nodiscard]] const PRODUCT_KIND* FindProductKind(std::string_view key);
