#include "view/gdal_output.h"

#include <cpl_conv.h>

#include "companions/companion_error.h"

void StartGdal() {
    CPLSetConfigOption("GDAL_PAM_ENABLED", "NO");
    CPLSetErrorHandler(CPLQuietErrorHandler);
    GDALAllRegister();
}

void RefuseGdal(const std::string& path, const std::string& step) {
    throw COMPANION_ERROR(path + ": can not " + step + ": " + CPLGetLastErrorMsg());
}

DATASET NewDatasetInMemory(int columns, int rows, int bands, GDALDataType type) {
    GDALDriver* const driver = GetGDALDriverManager()->GetDriverByName("MEM");
    DATASET dataset(driver == nullptr ? nullptr : driver->Create("", columns, rows, bands, type, nullptr));
    if (dataset == nullptr) RefuseGdal("an image in memory", "be made");
    return dataset;
}

void SaveDataset(GDALDataset& dataset, const std::string& path, const char* driver, const CPLStringList& options) {
    GDALDriver* const with = GetGDALDriverManager()->GetDriverByName(driver);
    if (with == nullptr) throw COMPANION_ERROR(path + ": GDAL is here without its " + driver + " driver");
    CPLErrorReset();
    DATASET saved(with->CreateCopy(path.c_str(), &dataset, FALSE, options.List(), nullptr, nullptr));
    if (saved == nullptr) RefuseGdal(path, "write");
    saved.reset();  // closing writes what is left
    if (CPLGetLastErrorType() >= CE_Failure) RefuseGdal(path, "write");
}

void SavePng(const CANVAS& canvas, const std::string& path) {
    const DATASET dataset = NewDatasetInMemory(canvas.Columns(), canvas.Rows(), 3, GDT_Byte);
    static_assert(sizeof(COLOUR) == 3);
    if (dataset->RasterIO(GF_Write, 0, 0, canvas.Columns(), canvas.Rows(), const_cast<COLOUR*>(canvas.Pixels().data()),
                          canvas.Columns(), canvas.Rows(), GDT_Byte, 3, nullptr, 3, 3 * canvas.Columns(), 1,
                          nullptr) != CE_None)
        RefuseGdal(path, "draw");
    SaveDataset(*dataset, path, "PNG");
}
