#include "lib/baselib/pool/parameter_pool.h"

#include <atomic>
#include <cerrno>
#include <cstring>

#include "lib/baselib/pool/entry_scanner.h"
#include "lib/baselib/pool/left_over.h"

namespace {

std::atomic<unsigned long> update_count{1};

std::string DirectoryOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

FILE* OpenStream(const std::string& path, const char* mode) {
    FILE* stream = nullptr;
    do {
        stream = std::fopen(path.c_str(), mode);
    } while (stream == nullptr && errno == EINTR);
    return stream;
}

}  // namespace

PARAMETER_POOL::PARAMETER_POOL() {
    Log() << LOGGING_LEVEL::TRACE << "init pool\n";
}

PARAMETER_POOL::PARAMETER_POOL(const std::string& path) {
    Log().Message(LOGGING_LEVEL::DEBUG, "open pool: %s", path.c_str());
    try {
        Open(path);
    } catch (const char*) {
        Log().Message(LOGGING_LEVEL::ALARM, "can not open parameter file %s", path.c_str());
        throw;
    }
}

PARAMETER_POOL::~PARAMETER_POOL() {
    if (stream_ != nullptr) std::fclose(stream_);
}

void PARAMETER_POOL::Open(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) {
        if (S_ISDIR(status.st_mode)) {
            Log() << LOGGING_LEVEL::ALARM << "parameter file " << path << " is a directory!\n";
        } else {  // a pipe would block the first lookup, a device cannot be updated
            Log().Message(LOGGING_LEVEL::ALARM, "parameter file %s is no regular file", path.c_str());
        }
        throw CAN_NOT_OPEN_POOL();
    }
    if (stream_ != nullptr) std::fclose(stream_);
    file_name_ = path;
    directory_ = DirectoryOf(path);
    index_ = {};
    writable_ = true;
    stream_ = OpenStream(path, "r+e");
    // "x": when the first attempt fails for a passing reason only, an existing pool must not be emptied.
    if (stream_ == nullptr) stream_ = OpenStream(path, "w+xe");
    if (stream_ == nullptr) {
        stream_ = OpenStream(path, "re");
        writable_ = false;
    }
    if (stream_ == nullptr) {
        const int error = errno;
        Log().Message(LOGGING_LEVEL::ALARM, "can not open parameter file %s", path.c_str());
        Log().Message(LOGGING_LEVEL::ALARM, "%s", std::strerror(error));
        throw CAN_NOT_OPEN_POOL();
    }
    WarnOfLeftOvers(directory_, fileno(stream_));
}

void PARAMETER_POOL::ReopenIfReplaced() {
    struct stat opened {};
    struct stat named {};
    if (fstat(fileno(Stream()), &opened) != 0 || stat(file_name_.c_str(), &named) != 0) return;
    if (opened.st_dev != named.st_dev || opened.st_ino != named.st_ino) Open(std::string(file_name_));
}

FILE* PARAMETER_POOL::Stream() const {
    if (stream_ == nullptr) {
        Log() << LOGGING_LEVEL::ALARM << "No file pointer given for parameter pool\n";
        throw ERROR_ALGORITHM();
    }
    return stream_;
}

void PARAMETER_POOL::CountUpdate() {
    ++update_count;
}

bool PARAMETER_POOL::FindKey(const std::string& key) {
    RefreshIndex();
    return index_.places.contains(key);
}

bool PARAMETER_POOL::Locate(const std::string& key) {
    // Twice: another process may have rewritten the file within the resolution of its time stamp.
    for (int attempt = 0; attempt < 2; ++attempt) {
        if (!FindKey(key)) return false;
        const PLACE place = index_.places.at(key);
        reader_.Start(stream_, file_name_, place.offset, place.line_number);
        if (reader_.Next() && KeyOfLine(reader_.Line()) == key) return true;
        index_ = {};
    }
    return false;
}

// A pool is asked for hundreds of keys; one pass over the file serves them all until the file changes.
void PARAMETER_POOL::RefreshIndex() {
    struct stat status {};
    if (fstat(fileno(Stream()), &status) != 0) status = {};
    if (index_.bytes == status.st_size && index_.updates == update_count &&
        index_.changed.tv_sec == status.st_mtim.tv_sec && index_.changed.tv_nsec == status.st_mtim.tv_nsec) {
        return;
    }
    index_ = {};
    ENTRY_SCANNER scanner;
    reader_.Start(stream_, file_name_, 0, 1);
    while (reader_.Next()) {
        if (scanner.Classify(reader_) != POOL_LINE::ENTRY) continue;
        index_.places.try_emplace(std::string(KeyOfLine(reader_.Line())),
                                  PLACE{reader_.Offset(), reader_.LineNumber()});
    }
    index_.changed = status.st_mtim;
    index_.bytes = status.st_size;
    index_.updates = update_count;
}

POOL_ENTRY PARAMETER_POOL::ReadHeader(const std::string& key, int expected_type) {
    if (!Locate(key)) {
        if (not_found_level_ <= LOGGING_LEVEL::ALARM) {
            Log() << not_found_level_ << "parameter pool: parameter key >> " << key << " << not found\n";
            Log().Message(not_found_level_, "parameter pool file %s", file_name_.c_str());
        }
        throw PARAMETER_KEY_NOT_FOUND();
    }
    POOL_ENTRY entry(reader_, file_name_, key, index_.bytes);
    std::string token;
    reader_.Token(token);  // the key
    if (!reader_.Token(token) || PoolTypeNumber(token) != expected_type) {
        entry.Fail<WRONG_PARAMETER_TYPE>(" << type ", kPoolTypes[expected_type].text, " expected\n");
    }
    const std::size_t value = reader_.Cursor();
    if (!reader_.Token(token)) entry.Fail<INVALID_PARAMETER_VALUE>(" << no parameter value in file\n");
    reader_.SetCursor(value);
    return entry;
}
