/// \file memory.h
/// The memory of the machine.

#pragma once

/// Bytes of memory, without swap space; 0 when the system does not tell.
[[nodiscard]] double MachineBytes();

/// Bytes that a process can still get: what the system calls available, with its free swap space, and not more than its
/// control group has left. Infinite when the system does not tell.
[[nodiscard]] double AvailableBytes();
