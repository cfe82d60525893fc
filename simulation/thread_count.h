/// \file thread_count.h
/// How many threads a parallel loop may use.

#pragma once

/// The environment variable PARALLEL, read as a base-10 integer by strtol's rules (blanks before it and text after it
/// are ignored), else the number of online processors. A PARALLEL below 1 or without a number is told at WARNING, once
/// per run, and counts as 1. Threads: may be called from any thread while nobody changes the environment.
[[nodiscard]] int ThreadCount();
