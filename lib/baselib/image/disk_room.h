/// \file disk_room.h
/// Whether the disks have room for the files of a run, told before the first byte is written: filling a disk to find
/// that out would disturb its other users. Errors: logged at ALARM with key, path, size, the bytes needed and the bytes
/// there.

#pragma once

#include <sys/types.h>

#include <map>
#include <vector>

struct PRODUCT_REQUEST;

/// Header and pixels. @throws ERROR_IMAGE for sizes that the header can not tell
[[nodiscard]] long long FileBytes(const PRODUCT_REQUEST& product);

/// Refuses the file when its disk has no room for it beside those that were asked before, or the process may not make
/// files so large.
/// @param descriptor  the open file, whose room counts, or its folder
/// @param asked       bytes by device; this file's are added
/// @throws ERROR_NO_DISK_SPACE
void RequireRoom(const PRODUCT_REQUEST& product, int descriptor, std::map<dev_t, long long>& asked);

/// The same for files that nobody has opened. Devices and pipes need no room; a folder that is not there is told
/// elsewhere. Older products stay until the run has ended, so their room does not count.
void RequireRoomForAll(const std::vector<PRODUCT_REQUEST>& products);

/// @param there  bytes that the disk has
/// @param error  the errno value that says what there is none of
[[noreturn]] void RefuseForRoom(const PRODUCT_REQUEST& product, long long there, int error);

/// Bytes that this user may still write on the disk of an open file or folder; 0 when the system does not tell.
[[nodiscard]] long long BytesThere(int descriptor);
