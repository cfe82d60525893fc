/// \file pool_errors.h
/// The failures of parameter pools. The details are logged before the throw; the object carries its class' text only.

#pragma once

#include <algorithm>
#include <cstddef>
#include <string>

#include "lib/baselib/errors/error_exception.h"

namespace POOL_ERRORS {

template <std::size_t kSize>
struct FIXED_TEXT {
    char text[kSize];
    constexpr FIXED_TEXT(const char (&literal)[kSize]) { std::copy_n(literal, kSize, text); }
};

template <FIXED_TEXT kText>
class ERROR_OF_POOL : public ERROR_PARAMETER_POOL {
  public:
    [[nodiscard]] std::string Message() const override { return kText.text; }
};

}  // namespace POOL_ERRORS

class PARAMETER_KEY_NOT_FOUND : public POOL_ERRORS::ERROR_OF_POOL<"pool error - key not found"> {};
class PARAMETER_KEY_TOO_LONG : public POOL_ERRORS::ERROR_OF_POOL<"pool error - key too long"> {};
class PARAMETER_KEY_EXISTS : public POOL_ERRORS::ERROR_OF_POOL<"pool error - key already exists"> {};
class CAN_NOT_OPEN_POOL : public POOL_ERRORS::ERROR_OF_POOL<"pool error - can not open parameter pool"> {};
class NO_UPDATE_PERMISSION_FOR_POOL
    : public POOL_ERRORS::ERROR_OF_POOL<"pool error - parameter pool update(): insufficient file permission"> {};
class CAN_NOT_RENAME_POOL : public POOL_ERRORS::ERROR_OF_POOL<"pool error - Update() : can not rename parameter file"> {
};
class PARAMETER_OUT_OF_BOUNDS : public POOL_ERRORS::ERROR_OF_POOL<"pool error - parameter value out of bounds"> {};
class WRONG_PARAMETER_TYPE : public POOL_ERRORS::ERROR_OF_POOL<"pool error - wrong parameter type"> {};
class INVALID_PARAMETER_VALUE
    : public POOL_ERRORS::ERROR_OF_POOL<"pool error - no or invalid parameter value in file"> {};
class CORRUPTED_PARAMETER_POOL : public POOL_ERRORS::ERROR_OF_POOL<"pool error - corrupted parameter pool file"> {};
