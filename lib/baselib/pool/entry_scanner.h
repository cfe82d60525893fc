/// \file entry_scanner.h
/// Tells which lines of a pool belong together. An entry's own lines are its entry line, for a vector or matrix the
/// brace block that follows, whatever column its lines start in, and one directly following empty line. A block that is
/// never closed ends before the next line that is clearly an entry (in the first column, with a type tag as second
/// word), so that a damaged block swallows no other entry.

#pragma once

#include <string>

#include "lib/baselib/pool/line_reader.h"

enum class POOL_LINE {
    OUTSIDE,  ///< comment or blank line of no entry
    ENTRY,    ///< the first line of an entry
    OWN       ///< a further line of the entry before
};

class ENTRY_SCANNER {
  public:
    /// To be called for each line in turn; the reader's cursor is used.
    [[nodiscard]] POOL_LINE Classify(LINE_READER& reader);

  private:
    enum class STATE { OUTSIDE, BRACE_EXPECTED, IN_BLOCK, BEHIND_ENTRY };

    [[nodiscard]] POOL_LINE ClassifyOutside(std::string_view line, int type);

    STATE state_ = STATE::OUTSIDE;
    int open_braces_ = 0;
};
