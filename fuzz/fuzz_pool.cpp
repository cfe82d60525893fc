/// Fuzz target of the pool reader: any bytes are a pool. Each of its keys is read as the type of its tag and as a wrong
/// one; a value that could be read must survive being written back, and the write must not change any other entry.

#include <algorithm>
#include <iterator>
#include <set>
#include <sstream>
#include <tuple>

#include "fuzz/fuzz_target.h"
#include "lib/baselib/pool/parameter_pool_read_write_change.h"

namespace {

constexpr int kKeysPerPool = 8;  // keeps one input below a millisecond

std::string FileText(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// Whether the entry could be read; any failure must be one of the program's own errors.
template <class T>
bool TryGet(PARAMETER_POOL& pool, const std::string& key, T& value) {
    try {
        pool.Get(key, value);
        return true;
    } catch (const ERROR_EXCEPTION&) {
        return false;
    }
}

template <class T>
void ReadAndWriteBack(const std::string& path, const std::string& key) {
    PARAMETER_POOL_READ_WRITE_CHANGE pool(path);
    T value{};
    if (!TryGet(pool, key, value)) return;
    try {
        pool.Change(key, value);
    } catch (const ERROR_EXCEPTION&) {
        return;  // a written line may be longer than the line it was read from
    }
    pool.Update();
    T again{};
    Require(TryGet(pool, key, again));
    Require(PoolValueText(again) == PoolValueText(value));
    const std::string once = FileText(path);
    pool.Change(key, again);
    pool.Update();
    Require(FileText(path) == once);
}

template <class... TYPES>
void ReadAs(int type, const std::string& path, const std::string& key, std::tuple<TYPES...>*) {
    ((kPoolType<TYPES> == type ? ReadAndWriteBack<TYPES>(path, key) : void()), ...);
    ((kPoolType<ARRAY<TYPES>> == type ? ReadAndWriteBack<ARRAY<TYPES>>(path, key) : void()), ...);
}
template <class... TYPES>
void ReadAsMatrix(int type, const std::string& path, const std::string& key, std::tuple<TYPES...>*) {
    ((kPoolType<MATRIX<TYPES>> == type ? ReadAndWriteBack<MATRIX<TYPES>>(path, key) : void()), ...);
}

using SCALARS = std::tuple<bool, unsigned char, signed char, short, int, long long, float, double, STRING,
                           COMPLEX<float>, COMPLEX<double>, TUPLE<int>, TUPLE<long long>, TUPLE<float>, TUPLE<double>,
                           INDEX<int, int>, INDEX<int, float>, INDEX<int, double>, TUPLE<STRING>>;
using MATRIX_ELEMENTS =
    std::tuple<unsigned char, signed char, short, int, float, double, COMPLEX<float>, COMPLEX<double>, STRING>;

/// First and second words of lines that can be entries, found in another way than the reader's.
std::set<std::pair<std::string, std::string>> KeysAndTags(const std::string& text) {
    std::set<std::pair<std::string, std::string>> result;
    std::string unix_text = text;
    std::replace(unix_text.begin(), unix_text.end(), '\r', '\n');
    std::istringstream lines(unix_text);
    for (std::string line; result.size() < kKeysPerPool && std::getline(lines, line);) {
        std::istringstream words(line);
        std::string key;
        std::string tag;
        if (line[0] != '#' && words >> key >> tag) result.emplace(key.substr(0, 100), tag);
    }
    return result;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const std::string path = Folder() + "/fuzz.pool";
    std::ofstream(path, std::ios::binary) << text;
    for (const auto& [key, tag] : KeysAndTags(text)) {
        const int type = PoolTypeNumber(tag);
        ReadAs(type, path, key, static_cast<SCALARS*>(nullptr));
        ReadAsMatrix(type, path, key, static_cast<MATRIX_ELEMENTS*>(nullptr));
        PARAMETER_POOL pool(path);
        int value = 0;
        (void)TryGet(pool, key, value);
    }
    return 0;
}
