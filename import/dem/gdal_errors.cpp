#include "import/dem/gdal_errors.h"

#include <cpl_conv.h>
#include <cpl_error.h>
#include <cpl_progress.h>
#include <gdal.h>
#include <ogr_srs_api.h>
#include <unistd.h>

#include "companions/companion_error.h"

void StartGdal() {
    GDALAllRegister();
    CPLSetErrorHandler(CPLQuietErrorHandler);
    OSRSetPROJEnableNetwork(0);
    // Files that name their vertical datum shall tell it.
    CPLSetConfigOption("GTIFF_REPORT_COMPD_CS", "YES");
    CPLSetConfigOption("REPORT_COMPD_CS", "YES");
}

std::string LastGdalError() {
    const std::string text = CPLGetLastErrorMsg();
    CPLErrorReset();
    return text.empty() ? "no reason given" : Trimmed(text);
}

int (*ProgressBar())(double complete, const char* message, void* argument) {
    return isatty(STDERR_FILENO) != 0 ? GDALTermProgress : GDALDummyProgress;
}
