/// \file error_exception.h
/// The failure channel: one tree of exception classes, each with a fixed text. The detailed message is logged first, then
/// the exception is thrown; only the program's driver catches.

#pragma once

#include <string>

class ERROR_EXCEPTION {
  public:
    virtual ~ERROR_EXCEPTION() = default;
    /// The fixed text of the class.
    virtual std::string Message() const { return "error occurred"; }
};

/// Declares one class of the tree: its name, its base and its text.
#define VELMORA_ERROR_CLASS(NAME, BASE, TEXT)                        \
    class NAME : public BASE {                                       \
      public:                                                        \
        std::string Message() const override { return TEXT; }        \
    }

VELMORA_ERROR_CLASS(ERROR_DATA, ERROR_EXCEPTION, "data error");
VELMORA_ERROR_CLASS(ERROR_IMAGE, ERROR_DATA, "image data error");
VELMORA_ERROR_CLASS(ERROR_PARAMETER, ERROR_DATA, "parameter error");
VELMORA_ERROR_CLASS(ERROR_NOT_SUPPORTED_PIXEL_TYPE, ERROR_DATA, "not supported pixel type");
VELMORA_ERROR_CLASS(ERROR_MEMORY, ERROR_EXCEPTION, "allocation error");
VELMORA_ERROR_CLASS(ERROR_NO_MEMORY, ERROR_MEMORY, "not enough memory");
VELMORA_ERROR_CLASS(ERROR_PROCESSING, ERROR_EXCEPTION, "processing error");
VELMORA_ERROR_CLASS(ERROR_ARGUMENT, ERROR_PROCESSING, "wrong argument");
VELMORA_ERROR_CLASS(ERROR_ALGORITHM, ERROR_PROCESSING, "algorithm error");
VELMORA_ERROR_CLASS(ERROR_UNHANDLED_CASE, ERROR_ALGORITHM, "case not handled in if or switch block");
VELMORA_ERROR_CLASS(ERROR_NOT_IMPLEMENTED, ERROR_ALGORITHM, "fct or algorithm not implemented");
VELMORA_ERROR_CLASS(ERROR_INVALID_VALUE, ERROR_PROCESSING, "invalid value");
VELMORA_ERROR_CLASS(ERROR_I_O, ERROR_EXCEPTION, "I/O error");
VELMORA_ERROR_CLASS(ERROR_CAN_NOT_OPEN_FILE, ERROR_I_O, "can not open file");
VELMORA_ERROR_CLASS(ERROR_CAN_NOT_CREATE_FILE, ERROR_I_O, "can not create file");
VELMORA_ERROR_CLASS(ERROR_CAN_NOT_READ_FILE, ERROR_I_O, "can not read from file");
VELMORA_ERROR_CLASS(ERROR_CAN_NOT_WRITE_FILE, ERROR_I_O, "can not write into file");
VELMORA_ERROR_CLASS(ERROR_CAN_NOT_LSEEK_FILE, ERROR_I_O, "can not lseek in file");
VELMORA_ERROR_CLASS(ERROR_NO_DISK_SPACE, ERROR_I_O, "not enough disk space");
VELMORA_ERROR_CLASS(ERROR_CAN_NOT_MMAP, ERROR_I_O, "mmap failed");
VELMORA_ERROR_CLASS(ERROR_CAN_NOT_MSYNC, ERROR_I_O, "msync failed");
VELMORA_ERROR_CLASS(ERROR_PARAMETER_POOL, ERROR_EXCEPTION, "parameter pool error");
