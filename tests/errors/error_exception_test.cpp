#include "lib/baselib/errors/error_exception.h"

#include <gtest/gtest.h>

#include "lib/baselib/errors/enum_base.h"

namespace {

/// Throws a CLASS and catches it as its BASE: one row of the tree.
template <class CLASS, class BASE>
void ExpectInTree(const std::string& text) {
    try {
        throw CLASS();
    } catch (const BASE& error) {
        EXPECT_EQ(error.Message(), text);
    }
}

using namespace BASIC::TYPES;

TEST(ErrorTree, EachClassIsCaughtAsItsBaseAndSaysItsText) {
    ExpectInTree<ERROR_EXCEPTION, ERROR_EXCEPTION>("error occurred");
    ExpectInTree<ERROR_DATA, ERROR_EXCEPTION>("data error");
    ExpectInTree<ERROR_IMAGE, ERROR_DATA>("image data error");
    ExpectInTree<ERROR_PARAMETER, ERROR_DATA>("parameter error");
    ExpectInTree<ERROR_NOT_SUPPORTED_PIXEL_TYPE, ERROR_DATA>("not supported pixel type");
    ExpectInTree<ERROR_MEMORY, ERROR_EXCEPTION>("allocation error");
    ExpectInTree<ERROR_NO_MEMORY, ERROR_MEMORY>("not enough memory");
    ExpectInTree<ERROR_PROCESSING, ERROR_EXCEPTION>("processing error");
    ExpectInTree<ERROR_ARGUMENT, ERROR_PROCESSING>("wrong argument");
    ExpectInTree<ERROR_ALGORITHM, ERROR_PROCESSING>("algorithm error");
    ExpectInTree<ERROR_UNHANDLED_CASE, ERROR_ALGORITHM>("case not handled in if or switch block");
    ExpectInTree<ERROR_NOT_IMPLEMENTED, ERROR_ALGORITHM>("fct or algorithm not implemented");
    ExpectInTree<ERROR_INVALID_VALUE, ERROR_PROCESSING>("invalid value");
    ExpectInTree<ERROR_I_O, ERROR_EXCEPTION>("I/O error");
    ExpectInTree<ERROR_CAN_NOT_OPEN_FILE, ERROR_I_O>("can not open file");
    ExpectInTree<ERROR_CAN_NOT_CREATE_FILE, ERROR_I_O>("can not create file");
    ExpectInTree<ERROR_CAN_NOT_READ_FILE, ERROR_I_O>("can not read from file");
    ExpectInTree<ERROR_CAN_NOT_WRITE_FILE, ERROR_I_O>("can not write into file");
    ExpectInTree<ERROR_CAN_NOT_LSEEK_FILE, ERROR_I_O>("can not lseek in file");
    ExpectInTree<ERROR_NO_DISK_SPACE, ERROR_I_O>("not enough disk space");
    ExpectInTree<ERROR_CAN_NOT_MMAP, ERROR_I_O>("mmap failed");
    ExpectInTree<ERROR_CAN_NOT_MSYNC, ERROR_I_O>("msync failed");
    ExpectInTree<ERROR_PARAMETER_POOL, ERROR_EXCEPTION>("parameter pool error");
    ExpectInTree<ERROR_ENUM_BASE, ERROR_EXCEPTION>("enumeration data type error");
    ExpectInTree<ERROR_ENUM_BASE_INVALID_ID, ERROR_ENUM_BASE>("enumeration data type - invalid id");
    ExpectInTree<ERROR_ENUM_BASE_TYPE_MISMATCH, ERROR_ENUM_BASE>("enumeration data type - type mismatch");
    ExpectInTree<ERROR_ENUM_BASE_LIMIT_OF_ENUMERATION_EXPIRED, ERROR_ENUM_BASE>(
        "enumeration data type - limit of enumeration expired");
}

}  // namespace
