#include "app/velmora_version.h"

// CMake gives the build's own two facts to this file alone, so that a new date recompiles nothing else.
VERSION_RECORD VelmoraVersion(const std::string& program_name) {
    return {
        .full_version = "velmora.v0.0.15.linux.gcc6.2.0_noAVX2_64bit.default.20200129150309",
        .revision_date = "$Date: 2020/01/29 15:03:09 $",
        .version = "0.0.15",
        .description = "DEM to InSAR",
        .program_name = program_name,
        .compile_date = VELMORA_COMPILE_DATE,
        .builder = VELMORA_BUILDER,
    };
}
