/// \file version_record.h
/// What the program says of itself in the log header and in the software history.

#pragma once

#include <string>

struct VERSION_RECORD {
    std::string full_version;
    std::string revision_date;
    std::string version;
    std::string description;
    std::string program_name;  ///< the binary name as the controller reports it
    std::string compile_date;  ///< fixed by CMake, SOURCE_DATE_EPOCH is honoured
    std::string builder;       ///< who configured the build
};
