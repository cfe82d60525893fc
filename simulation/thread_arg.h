/// \file thread_arg.h
/// The fields with which every argument of a thread begins; the runner (threads.h) fills them.

#pragma once

#include <cstdint>

struct THREAD_ARG {
    std::uint64_t status = 0;  ///< not 0: the thread failed
    std::uint32_t start = 0;   ///< first row of the block
    std::uint32_t length = 0;  ///< number of rows of the block
    std::uint32_t thread_number = 0;
};
