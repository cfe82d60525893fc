#include "lib/baselib/pool/pool_block.h"

#include <limits>

namespace {

RANGE<int> ReadTwoNumbers(POOL_ENTRY& entry, const char* text_without_second) {
    RANGE<int> numbers;
    ReadPoolField(entry, numbers.first);
    const std::size_t cursor = entry.Reader().Cursor();
    std::string second;
    if (!entry.Reader().Token(second)) entry.Fail<INVALID_PARAMETER_VALUE>(text_without_second);
    entry.Reader().SetCursor(cursor);
    ReadPoolField(entry, numbers.count);
    return numbers;
}

constexpr char kNoVectorRange[] = " << no correct range for VECTOR or MATRIX\n";
constexpr char kNoMatrixRange[] = " << no correct range for MATRIX\n";

}  // namespace

RANGE<int> ReadVectorRange(POOL_ENTRY& entry) {
    const RANGE<int> range = ReadTwoNumbers(entry, kNoVectorRange);
    // An element takes two bytes at least, so a count above the file's size is no count.
    if (range.count < 0 || range.count > entry.FileBytes() ||
        static_cast<long long>(range.first) + range.count - 1 > std::numeric_limits<int>::max()) {
        Log().Message(LOGGING_LEVEL::ALARM, "first index %d and count %d do not fit the pool", range.first,
                      range.count);
        entry.Fail<INVALID_PARAMETER_VALUE>(kNoVectorRange);
    }
    return range;
}

RANGE<int> ReadMatrixShape(POOL_ENTRY& entry) {
    const auto [rows, columns] = ReadTwoNumbers(entry, kNoMatrixRange);
    if (rows < 0 || columns < 0 || rows > entry.FileBytes() ||
        static_cast<long long>(rows) * columns > entry.FileBytes()) {
        Log().Message(LOGGING_LEVEL::ALARM, "%d rows and %d columns do not fit the pool", rows, columns);
        entry.Fail<INVALID_PARAMETER_VALUE>(kNoMatrixRange);
    }
    return {rows, columns};
}

void ReadOpeningBrace(POOL_ENTRY& entry, const std::string& name) {
    if (!entry.Reader().Next()) entry.Fail<INVALID_PARAMETER_VALUE>(" << no { due to end of file\n");
    std::string token;
    if (!entry.Reader().Token(token)) entry.Fail<INVALID_PARAMETER_VALUE>(" << { expected for ", name, "\n");
    if (token != "{") entry.Fail<INVALID_PARAMETER_VALUE>(" << { expected instead of ", token, " for ", name, "\n");
}

void ReadClosingLine(POOL_ENTRY& entry) {
    if (!entry.Reader().Next()) entry.Fail<INVALID_PARAMETER_VALUE>(" << no } due to end of file\n");
}

void ReadClosingBrace(POOL_ENTRY& entry, const std::string& name) {
    ReadClosingLine(entry);
    std::string token;
    if (!entry.Reader().Token(token)) entry.Fail<INVALID_PARAMETER_VALUE>(" << no } at end of ", name, "\n");
    if (token != "}") entry.Fail<INVALID_PARAMETER_VALUE>(" << } expected instead of ", token, " for ", name, "\n");
}

void ReadElementLine(POOL_ENTRY& entry, const std::string& index) {
    if (!entry.Reader().Next()) {
        entry.Fail<INVALID_PARAMETER_VALUE>(" << no value for index ", index, " due to end of file\n");
    }
}

void CheckStringPairsLeft(POOL_ENTRY& entry) {
    std::string token;
    if (entry.Reader().Token(token) && token == "}") {
        entry.Fail<INVALID_PARAMETER_VALUE>(" << STR_STR_V length does not match entry count\n");
    }
    entry.Reader().SetCursor(0);
}

void FailArray(POOL_ENTRY& entry) {
    Log().Message(LOGGING_LEVEL::ALARM, "can not change array size: out of memory");
    entry.Fail<ERROR_NO_MEMORY>(" << not enough memory to create ARRAY\n");
}
void FailMemory(POOL_ENTRY& entry) {
    entry.Fail<ERROR_NO_MEMORY>(" << not enough memory\n");
}
