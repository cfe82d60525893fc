/// \file run_velmora.h
/// The driver: process infrastructure, the three stages, the software history, and the one place where failures end.

#pragma once

/// Runs the program and ends the process.
/// Exit status: 0 all stages done; 1 an exception or a fatal signal; 2 a STOP file; 255 a signal before initialisation.
/// A failure logs one reason and the controller message line; no pool is changed, image files already written stay.
[[noreturn]] void RunVelmora(int argc, char** argv);
