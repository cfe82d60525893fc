/// \file error_exception.h
/// The failure channel: one tree of exception classes, each with a fixed text. The detailed message is logged first,
/// then the exception is thrown by value; only the program's driver catches.

#pragma once

#include <string>

/// The texts of the classes, one entry each; all objects of a class share its entry.
struct ERROR_TEXTS {
    const char* exception = "error occurred";
    const char* data = "data error";
    const char* image = "image data error";
    const char* parameter = "parameter error";
    const char* not_supported_pixel_type = "not supported pixel type";
    const char* memory = "allocation error";
    const char* no_memory = "not enough memory";
    const char* processing = "processing error";
    const char* argument = "wrong argument";
    const char* algorithm = "algorithm error";
    const char* unhandled_case = "case not handled in if or switch block";
    const char* not_implemented = "fct or algorithm not implemented";
    const char* invalid_value = "invalid value";
    const char* i_o = "I/O error";
    const char* can_not_open_file = "can not open file";
    const char* can_not_create_file = "can not create file";
    const char* can_not_read_file = "can not read from file";
    const char* can_not_write_file = "can not write into file";
    const char* can_not_lseek_file = "can not lseek in file";
    const char* no_disk_space = "not enough disk space";
    const char* can_not_mmap = "mmap failed";
    const char* can_not_msync = "msync failed";
    const char* parameter_pool = "parameter pool error";
    const char* enum_base = "enumeration data type error";
    const char* enum_base_invalid_id = "enumeration data type - invalid id";
    const char* enum_base_type_mismatch = "enumeration data type - type mismatch";
    const char* enum_base_limit_of_enumeration_expired = "enumeration data type - limit of enumeration expired";
};
inline constexpr ERROR_TEXTS kErrorTexts;

class ERROR_EXCEPTION {
  public:
    ERROR_EXCEPTION() = default;
    ERROR_EXCEPTION(const ERROR_EXCEPTION&) = default;
    ERROR_EXCEPTION& operator=(const ERROR_EXCEPTION&) = default;
    virtual ~ERROR_EXCEPTION() = default;
    /// What went wrong, for the log's last lines.
    [[nodiscard]] virtual std::string Message() const { return kErrorTexts.exception; }
};

/// A class of the tree: its base and its entry in the table of texts.
template <class BASE, const char* ERROR_TEXTS::*kText>
class ERROR_WITH_TEXT : public BASE {
  public:
    [[nodiscard]] std::string Message() const override { return kErrorTexts.*kText; }
};

class ERROR_DATA : public ERROR_WITH_TEXT<ERROR_EXCEPTION, &ERROR_TEXTS::data> {};
class ERROR_IMAGE : public ERROR_WITH_TEXT<ERROR_DATA, &ERROR_TEXTS::image> {};
class ERROR_PARAMETER : public ERROR_WITH_TEXT<ERROR_DATA, &ERROR_TEXTS::parameter> {};
class ERROR_NOT_SUPPORTED_PIXEL_TYPE : public ERROR_WITH_TEXT<ERROR_DATA, &ERROR_TEXTS::not_supported_pixel_type> {};

class ERROR_MEMORY : public ERROR_WITH_TEXT<ERROR_EXCEPTION, &ERROR_TEXTS::memory> {};
class ERROR_NO_MEMORY : public ERROR_WITH_TEXT<ERROR_MEMORY, &ERROR_TEXTS::no_memory> {};

class ERROR_PROCESSING : public ERROR_WITH_TEXT<ERROR_EXCEPTION, &ERROR_TEXTS::processing> {};
class ERROR_ARGUMENT : public ERROR_WITH_TEXT<ERROR_PROCESSING, &ERROR_TEXTS::argument> {};
class ERROR_ALGORITHM : public ERROR_WITH_TEXT<ERROR_PROCESSING, &ERROR_TEXTS::algorithm> {};
class ERROR_UNHANDLED_CASE : public ERROR_WITH_TEXT<ERROR_ALGORITHM, &ERROR_TEXTS::unhandled_case> {};
class ERROR_NOT_IMPLEMENTED : public ERROR_WITH_TEXT<ERROR_ALGORITHM, &ERROR_TEXTS::not_implemented> {};
class ERROR_INVALID_VALUE : public ERROR_WITH_TEXT<ERROR_PROCESSING, &ERROR_TEXTS::invalid_value> {};

class ERROR_I_O : public ERROR_WITH_TEXT<ERROR_EXCEPTION, &ERROR_TEXTS::i_o> {};
class ERROR_CAN_NOT_OPEN_FILE : public ERROR_WITH_TEXT<ERROR_I_O, &ERROR_TEXTS::can_not_open_file> {};
class ERROR_CAN_NOT_CREATE_FILE : public ERROR_WITH_TEXT<ERROR_I_O, &ERROR_TEXTS::can_not_create_file> {};
class ERROR_CAN_NOT_READ_FILE : public ERROR_WITH_TEXT<ERROR_I_O, &ERROR_TEXTS::can_not_read_file> {};
class ERROR_CAN_NOT_WRITE_FILE : public ERROR_WITH_TEXT<ERROR_I_O, &ERROR_TEXTS::can_not_write_file> {};
class ERROR_CAN_NOT_LSEEK_FILE : public ERROR_WITH_TEXT<ERROR_I_O, &ERROR_TEXTS::can_not_lseek_file> {};
class ERROR_NO_DISK_SPACE : public ERROR_WITH_TEXT<ERROR_I_O, &ERROR_TEXTS::no_disk_space> {};
class ERROR_CAN_NOT_MMAP : public ERROR_WITH_TEXT<ERROR_I_O, &ERROR_TEXTS::can_not_mmap> {};
class ERROR_CAN_NOT_MSYNC : public ERROR_WITH_TEXT<ERROR_I_O, &ERROR_TEXTS::can_not_msync> {};

/// Base of the pool errors; each derived class carries the text of its own failure.
class ERROR_PARAMETER_POOL : public ERROR_WITH_TEXT<ERROR_EXCEPTION, &ERROR_TEXTS::parameter_pool> {};
