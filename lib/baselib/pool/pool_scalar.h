/// \file pool_scalar.h
/// Scalar values as text: one token for numbers and booleans, a quoted text for strings; two of them for complex values
/// (real, imaginary), pairs, and indexed values (index, value).

#pragma once

#include <string>

#include "lib/baselib/pool/pool_entry.h"

/// Reads one field at the cursor. Each logs what was read and what was expected before it throws.
/// @throws INVALID_PARAMETER_VALUE for a text that is no value of the type, PARAMETER_OUT_OF_BOUNDS for one beyond it
void ReadPoolField(POOL_ENTRY& entry, bool& value);
void ReadPoolField(POOL_ENTRY& entry, unsigned char& value);
void ReadPoolField(POOL_ENTRY& entry, signed char& value);
void ReadPoolField(POOL_ENTRY& entry, short& value);
void ReadPoolField(POOL_ENTRY& entry, int& value);
void ReadPoolField(POOL_ENTRY& entry, long& value);
void ReadPoolField(POOL_ENTRY& entry, long long& value);
void ReadPoolField(POOL_ENTRY& entry, float& value);
void ReadPoolField(POOL_ENTRY& entry, double& value);
void ReadPoolField(POOL_ENTRY& entry, std::string& value);
void ReadPoolField(POOL_ENTRY& entry, STRING& value);
/// A pair of strings has a message of its own.
void ReadPoolField(POOL_ENTRY& entry, TUPLE<STRING>& value);

/// The text of one field; it reads back identical (nan as some quiet nan).
/// @throws INVALID_PARAMETER_VALUE, after a line that names the text, for a string with a double quote or line end
std::string PoolFieldText(bool value);
std::string PoolFieldText(unsigned char value);
std::string PoolFieldText(long long value);
std::string PoolFieldText(float value);
std::string PoolFieldText(double value);
std::string PoolFieldText(const std::string& value);
inline std::string PoolFieldText(signed char value) {
    return PoolFieldText(static_cast<long long>(value));
}
inline std::string PoolFieldText(short value) {
    return PoolFieldText(static_cast<long long>(value));
}
inline std::string PoolFieldText(int value) {
    return PoolFieldText(static_cast<long long>(value));
}
inline std::string PoolFieldText(long value) {
    return PoolFieldText(static_cast<long long>(value));
}
inline std::string PoolFieldText(const STRING& value) {
    return PoolFieldText(value.ToStd());
}

/// Calls the function for each field of a scalar, in the order of the file.
template <class SCALAR, class FUNCTION>
void ForEachPoolField(SCALAR& scalar, FUNCTION function) {
    if constexpr (requires { scalar.re; }) {
        function(scalar.re);
        function(scalar.im);
    } else if constexpr (requires { scalar.index; }) {
        function(scalar.index);
        function(scalar.value);
    } else if constexpr (requires { scalar.first; }) {
        function(scalar.first);
        function(scalar.second);
    } else {
        function(scalar);
    }
}

template <class SCALAR>
void ReadPoolScalar(POOL_ENTRY& entry, SCALAR& scalar) {
    if constexpr (std::is_same_v<SCALAR, TUPLE<STRING>>) {
        ReadPoolField(entry, scalar);
    } else {
        ForEachPoolField(scalar, [&entry](auto& field) { ReadPoolField(entry, field); });
    }
}

/// The fields, separated by one blank.
template <class SCALAR>
std::string PoolScalarText(const SCALAR& scalar) {
    std::string text;
    ForEachPoolField(scalar, [&text](const auto& field) {
        if (!text.empty()) text += ' ';
        text += PoolFieldText(field);
    });
    return text;
}
