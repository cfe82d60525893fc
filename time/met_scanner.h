/// \file met_scanner.h
/// Reads mission elapsed times: [sign] days / hours : minutes : seconds [. fraction], canonically
/// +0012/03:04:05.006007. The sign defaults to '+'; the separators may be any of / : - T and backslash; the fraction is
/// read as in UTC texts.

#pragma once

#include <string>

#include "time/mission_elapsed_time.h"

class MET_SCANNER {
  public:
    /// @throws ERROR_DATA after logging what is wrong and the whole text
    [[nodiscard]] MISSION_ELAPSED_TIME Scan(const std::string& text) const;

    /// For lists, whose reader goes on after a bad entry: fills the fields in their order; those that a failure leaves
    /// unread stay as they are.
    /// @throws const char* the message
    void ScanFields(const std::string& text, MISSION_ELAPSED_TIME& time) const;
};
