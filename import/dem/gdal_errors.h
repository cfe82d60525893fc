/// \file gdal_errors.h
/// GDAL's own words for our messages: its errors are kept, not printed.

#pragma once

#include <string>

/// Registers the drivers, keeps PROJ off the network and GDAL's errors off the screen. Call once before using GDAL.
void StartGdal();

/// The last error since the last call, or "no reason given".
[[nodiscard]] std::string LastGdalError();

/// A progress function and its argument: GDAL's bar on standard error when that is a terminal.
[[nodiscard]] int (*ProgressBar())(double complete, const char* message, void* argument);
