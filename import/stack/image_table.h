/// \file image_table.h
/// The table of a stack's images: columns name, annotation, orbit, pool. A row has an annotation, with or without an
/// orbit file, or a ready pool. Paths count from the table's folder.

#pragma once

#include <string>
#include <vector>

#include "import/stack/csv_table.h"

struct IMAGE_ROW {
    std::string name;
    std::string annotation;  ///< one of these two is empty
    std::string pool;
    std::string orbit;  ///< empty: the annotation's own state vectors
    VALUE_PLACE place;  ///< of the annotation, or of the pool
};

/// A name becomes part of file names, which have to differ on every file system and stay readable in every shell:
/// letters, digits, ".", "-" and "_", at most 100, not "." or "-" first, not "." last, "_" between others only and
/// never twice; and no two names that differ in capitals only. MASTER__SLAVE is then no other pair's folder.
/// @throws COMPANION_ERROR for such a name, a row with both or neither of annotation and pool
[[nodiscard]] std::vector<IMAGE_ROW> ReadImageTable(const std::string& file);
