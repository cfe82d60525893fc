/// \file pair_list.h
/// The names of a stack's pairs, and their rows of STACK/pairs.csv.

#pragma once

#include <string>

#include "import/stack/pair_figures.h"

inline constexpr const char* kPairListNames =
    "pair,master,slave,perpendicular_baseline_m,time_difference_days,height_of_ambiguity_m";

/// MASTER__SLAVE, which is the pair's folder, too.
[[nodiscard]] std::string NameOfPair(const STACK_IMAGE& master, const STACK_IMAGE& slave);

[[nodiscard]] std::string PairListRow(const STACK_IMAGE& master, const STACK_IMAGE& slave, const PAIR_FIGURES& figures);
