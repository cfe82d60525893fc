/// \file pool_block.h
/// Values of vectors and matrices: a range on the entry line, then one element per line in braces.
///
///   vector := KEY TAG FIRST COUNT end  "{" end  { scalar end }  "}" end
///   matrix := KEY TAG ROWS COLUMNS end "{" end  { "{" end { scalar end } "}" end }  "}" end
///
/// Memory grows with the elements that really come, whatever the range promises.

#pragma once

#include <algorithm>
#include <deque>
#include <string>

#include "lib/baselib/containers/array.h"
#include "lib/baselib/containers/matrix.h"
#include "lib/baselib/pool/pool_scalar.h"

/// The two numbers behind the tag. @throws INVALID_PARAMETER_VALUE when one is missing or makes no sense
RANGE<int> ReadVectorRange(POOL_ENTRY& entry);
RANGE<int> ReadMatrixShape(POOL_ENTRY& entry);

/// Reads the line of an opening brace. @param name how messages call the type
void ReadOpeningBrace(POOL_ENTRY& entry, const std::string& name);
/// Reads the line of a closing brace.
void ReadClosingBrace(POOL_ENTRY& entry, const std::string& name);
/// Reads the closing line of a vector of booleans: any line will do, as it always has.
void ReadClosingLine(POOL_ENTRY& entry);

/// Goes to the line of an element. @param index as the message names it
void ReadElementLine(POOL_ENTRY& entry, const std::string& index);
/// A vector of string pairs says so when its block ends early.
void CheckStringPairsLeft(POOL_ENTRY& entry);

[[noreturn]] void FailArray(POOL_ENTRY& entry);
[[noreturn]] void FailMemory(POOL_ENTRY& entry);

template <class T>
void AppendElement(POOL_ENTRY& entry, const std::string& index, std::deque<T>& elements) {
    ReadElementLine(entry, index);
    if constexpr (std::is_same_v<T, TUPLE<STRING>>) CheckStringPairsLeft(entry);
    T element{};
    ReadPoolScalar(entry, element);
    try {
        elements.push_back(std::move(element));
    } catch (const std::bad_alloc&) {
        FailMemory(entry);
    }
}

template <class T>
void ReadPoolValue(POOL_ENTRY& entry, T& value) {
    ReadPoolScalar(entry, value);
}

template <class T>
void ReadPoolValue(POOL_ENTRY& entry, ARRAY<T>& value) {
    const std::string name(PoolTypeNameInMessages(kPoolType<ARRAY<T>>));
    const RANGE<int> range = ReadVectorRange(entry);
    ReadOpeningBrace(entry, name);
    std::deque<T> elements;
    for (int i = 0; i < range.count; ++i) AppendElement(entry, std::to_string(range.first + i), elements);
    if constexpr (std::is_same_v<T, bool>) {
        ReadClosingLine(entry);
    } else {
        ReadClosingBrace(entry, name);
    }
    if (value.Resize(range) != ARRAY<T>::kDone) FailArray(entry);
    std::move(elements.begin(), elements.end(), value.begin());
}

template <class T>
void ReadPoolValue(POOL_ENTRY& entry, MATRIX<T>& value) {
    const std::string name(PoolTypeNameInMessages(kPoolType<MATRIX<T>>));
    const auto [rows, columns] = ReadMatrixShape(entry);
    ReadOpeningBrace(entry, name);
    std::deque<T> elements;
    for (int row = 0; row < rows; ++row) {
        ReadOpeningBrace(entry, name);
        for (int column = 0; column < columns; ++column) {
            AppendElement(entry, std::to_string(row) + " " + std::to_string(column), elements);
        }
        ReadClosingBrace(entry, name);
    }
    ReadClosingBrace(entry, name);
    if (value.Resize(rows, columns) != ARRAY<T>::kDone) FailMemory(entry);
    std::move(elements.begin(), elements.end(), value.Data());
}

template <class T>
std::string PoolValueText(const T& value) {
    return PoolScalarText(value);
}

template <class T>
std::string PoolValueText(const ARRAY<T>& value) {
    std::string text = std::to_string(value.First()) + ' ' + std::to_string(value.Count()) + "\n{\n";
    for (const T& element : value) text += "    " + PoolScalarText(element) + '\n';
    return text + '}';
}

template <class T>
std::string PoolValueText(const MATRIX<T>& value) {
    std::string text = std::to_string(value.Rows()) + ' ' + std::to_string(value.Columns()) + "\n{\n";
    for (int row = 0; row < value.Rows(); ++row) {
        text += "    {\n";
        for (int column = 0; column < value.Columns(); ++column) {
            text += "        " + PoolScalarText(value[row][column]) + '\n';
        }
        text += "    }\n";
    }
    return text + '}';
}
