/// \file gdal_output.h
/// What the companion writes through GDAL. Errors: COMPANION_ERROR with GDAL's own text.

#pragma once

#include <gdal_priv.h>

#include <memory>
#include <string>

#include "view/canvas.h"

struct DATASET_CLOSER {
    void operator()(GDALDataset* dataset) const { GDALClose(dataset); }
};
using DATASET = std::unique_ptr<GDALDataset, DATASET_CLOSER>;

/// Once, before anything else here: drivers; messages are kept for the errors; no side files of GDAL's own.
void StartGdal();

/// @throws COMPANION_ERROR naming the file and the step, with GDAL's last message
[[noreturn]] void RefuseGdal(const std::string& path, const std::string& step);

/// An empty image in memory. @throws COMPANION_ERROR
[[nodiscard]] DATASET NewDatasetInMemory(int columns, int rows, int bands, GDALDataType type);

/// Writes a whole file with a driver. @param options  NAME=VALUE, the driver's creation options
void SaveDataset(GDALDataset& dataset, const std::string& path, const char* driver, const CPLStringList& options = {});

void SavePng(const CANVAS& canvas, const std::string& path);
