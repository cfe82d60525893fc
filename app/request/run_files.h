/// \file run_files.h
/// Every file that a run reads or writes, with its role: what is written may be no other file of the run, except that
/// the log pool may be the InSAR pool. What is only read may be one file in several roles.
///
/// Two paths are one file when they lead to one device and inode or, where there is no file yet, to one name in one
/// folder; links are followed, also those that lead to nothing yet. The device /dev/null may have any number of roles.

#pragma once

#include <string>
#include <vector>

#include "app/acquisition/acquisitions.h"
#include "app/request/request.h"

enum class FILE_USE {
    READ,
    WRITTEN,  ///< created, replaced or changed
    REPLACED  ///< the same, but a link under its name is replaced, not followed
};

enum class NAMED_BY { CONTROLLER, PARAMETER, POOL };

struct FILE_ROLE {
    const char* key;
    const char* name;  ///< for people
    FILE_USE use;
    NAMED_BY named_by;
};

/// Products, all written, and the sidecars beside them stand in lib/baselib/sidecar/product_kind.h.
inline constexpr FILE_ROLE kFileRoles[] = {
    {"pcf", "control file", FILE_USE::READ, NAMED_BY::CONTROLLER},
    {"lfn", "log file", FILE_USE::WRITTEN, NAMED_BY::CONTROLLER},
    {"status", "OK file", FILE_USE::REPLACED, NAMED_BY::CONTROLLER},
    {"status", "ERROR file", FILE_USE::REPLACED, NAMED_BY::CONTROLLER},
    {"status", "STOP file", FILE_USE::READ, NAMED_BY::CONTROLLER},
    {"REPORT", "report", FILE_USE::WRITTEN, NAMED_BY::PARAMETER},
    {"MASTER_POOL", "master pool", FILE_USE::READ, NAMED_BY::PARAMETER},
    {"SLAVE_POOL", "slave pool", FILE_USE::READ, NAMED_BY::PARAMETER},
    {"INSAR_POOL", "InSAR pool", FILE_USE::WRITTEN, NAMED_BY::PARAMETER},
    {"log_pp", "log pool", FILE_USE::WRITTEN, NAMED_BY::PARAMETER},
    {"DEM_POOL", "pool of the DEM", FILE_USE::READ, NAMED_BY::PARAMETER},
    {"DEM", "DEM", FILE_USE::READ, NAMED_BY::PARAMETER},
    {"MASTER_POOL", "record database of the master's orbit", FILE_USE::READ, NAMED_BY::POOL},
    {"SLAVE_POOL", "record database of the slave's orbit", FILE_USE::READ, NAMED_BY::POOL},
};

/// Looks at all files that can be known before the first one is changed, from all texts that the parameters may have.
/// For CONTROLLER_IFC::SetCheckFiles.
[[nodiscard]] FILE_PROBLEMS CheckFilesOfParameters(const CONTROLLER_IFC& controller);

/// The same with the texts that the run took, and the record databases that the pools name; also that the report can be
/// written. @throws ERROR_PARAMETER, ERROR_CAN_NOT_CREATE_FILE after lines that name roles, keys and paths
void CheckFilesOfRun(const REQUEST& request, const ACQUISITIONS& acquisitions);
