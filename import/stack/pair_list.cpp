#include "import/stack/pair_list.h"

#include <cstdio>

std::string NameOfPair(const STACK_IMAGE& master, const STACK_IMAGE& slave) {
    return master.name + "__" + slave.name;
}

std::string PairListRow(const STACK_IMAGE& master, const STACK_IMAGE& slave, const PAIR_FIGURES& figures) {
    char text[120];
    std::snprintf(text, sizeof text, ",%.3f,%.6f,%.3f", figures.perpendicular_baseline_m,
                  figures.time_difference_s / kSecondsPerDay, figures.height_of_ambiguity_m);
    return NameOfPair(master, slave) + "," + master.name + "," + slave.name + text;
}
