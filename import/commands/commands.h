/// \file commands.h
/// The commands of velmora-import, one file each.

#pragma once

#include "companions/companion_program.h"

void AddDemCommand(COMPANION_PROGRAM& program);
void AddSentinel1Command(COMPANION_PROGRAM& program);
void AddOrbitCommand(COMPANION_PROGRAM& program);
void AddPairCommand(COMPANION_PROGRAM& program);
void AddStackCommand(COMPANION_PROGRAM& program);
