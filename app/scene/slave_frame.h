/// \file slave_frame.h
/// Whether the slave image shows the scene at all: start times or an orbit of another image give products that are
/// right by the numbers and of no use.

#pragma once

#include <string>
#include <vector>

#include "app/acquisition/acquisitions.h"
#include "app/scene/radar_pair.h"
#include "app/scene/scene_border.h"

/// One WARNING when the whole border of the scene lies beyond one side of the slave image and of a neighbourhood around
/// it that is as large as the image, 5000 pixels at least. Silent where the slave orbit's data do not reach: where the
/// slave would be then is not known. The positions of a single-pass slave are good to some tens of lines here.
void WarnAboutForeignSlave(const std::vector<BORDER_PLACE>& border, const RADAR_PAIR& pair,
                           const ACQUISITIONS& acquisitions);
