/// \file exception_text.h

#pragma once

#include <string>

/// What the exception being handled says of itself: the message of the error classes, the text of a thrown character
/// string, what() of the standard classes. To be called inside a catch clause only.
[[nodiscard]] std::string CurrentExceptionText();
