/// \file utc_scanner.h
/// Reads UTC texts. The form is told by the characters at fixed positions:
///     1  05-MAR-2012/14:03:07.123456      the default printed form
///     2  MAR 05 14:03:07 2012             in any case of letters
///     3  2012-03-05/14:03:07.123456
///     4  2012-03-05T14:03:07.123456       the ISO printed form
///     5  20120305T140307
///     6  05-MAR-2012 14:03:07.123456
/// The fraction has any number of digits, those beyond the microsecond are dropped, and may be missing; a final 'Z' and
/// blanks are allowed. Second 60 to 62 is accepted at 23:59 of any day.

#pragma once

#include <string>

#include "time/universal_time.h"

class TIME_SCANNER;

enum class UTC_FORM : int {
    UNKNOWN = 0,
    DAY_MONTH_YEAR = 1,
    MONTH_DAY_TIME_YEAR = 2,
    YEAR_MONTH_DAY = 3,
    ISO = 4,
    COMPACT = 5,
    DAY_MONTH_YEAR_BLANK = 6
};

class UTC_SCANNER {
  public:
    virtual ~UTC_SCANNER() = default;

    /// @throws ERROR_DATA for anything that is no time, ERROR_ARGUMENT for an unknown month name; both after logging
    /// what is wrong and the whole text
    [[nodiscard]] UNIVERSAL_TIME Scan(const std::string& text) const;

  protected:
    /// A derived scanner may know other positions.
    [[nodiscard]] virtual UTC_FORM DetectForm(const std::string& text) const;

  private:
    [[nodiscard]] UNIVERSAL_TIME ScanForm(const std::string& text) const;
};
