/// \file pair_table.h
/// The table of a stack's pairs: columns master and slave, one pair per row; or a rule per row, of the columns next,
/// days and baseline. A pair of images in the order of time, the earlier one as master, is taken when it keeps all
/// limits of a row: the slave is among the `next` images after the master, within so many days, and within so many
/// metres of perpendicular baseline. An empty field is no limit.

#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "import/stack/csv_table.h"
#include "import/stack/pair_figures.h"

struct STACK_PAIR {
    std::size_t master = 0;  ///< index of the image
    std::size_t slave = 0;
    VALUE_PLACE place;  ///< of the row that asks for it
    PAIR_FIGURES figures;
};

using PAIR_MEASURE = std::function<PAIR_FIGURES(std::size_t master, std::size_t slave)>;

/// In the order of the table, or of time. Each pair is measured once.
/// @throws COMPANION_ERROR with line and column for unknown images, an image with itself, a pair that stands twice,
/// rules
///         without a limit, more than a million pairs; what measuring throws, with the line
[[nodiscard]] std::vector<STACK_PAIR> ReadPairTable(const std::string& file, const std::vector<STACK_IMAGE>& images,
                                                    const PAIR_MEASURE& measure);
