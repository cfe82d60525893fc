#include "lib/baselib/pool/parameter_pool.h"

#include <atomic>

#include "lib/baselib/pool/entry_scanner.h"
#include "lib/baselib/pool/left_over.h"

namespace {

std::atomic<unsigned long> update_count{1};

class LOCKED_FOR_READING {
  public:
    /// @param file null: there is nothing to lock
    explicit LOCKED_FOR_READING(const POOL_FILE* file) : file_(file) {
        if (file_ != nullptr) file_->Lock(POOL_FILE::LOCK::SHARED);
    }
    ~LOCKED_FOR_READING() {
        if (file_ != nullptr) file_->Unlock();
    }
    LOCKED_FOR_READING(const LOCKED_FOR_READING&) = delete;
    LOCKED_FOR_READING& operator=(const LOCKED_FOR_READING&) = delete;

  private:
    const POOL_FILE* file_;
};

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

void PARAMETER_POOL::Open(const std::string& path) {
    file_ = POOL_FILE(path);
    state_ = {};
    (void)State();
}

POOL_FILE& PARAMETER_POOL::File() {
    if (!file_.IsOpen()) {
        Log() << LOGGING_LEVEL::ALARM << "No file pointer given for parameter pool\n";
        throw ERROR_ALGORITHM();
    }
    return file_;
}

void PARAMETER_POOL::CountUpdate() {
    ++update_count;
}

void PARAMETER_POOL::HoldLock() {
    holds_lock_ = true;
    state_ = {};
}

void PARAMETER_POOL::ReleaseLock() {
    holds_lock_ = false;
    file_.Unlock();
}

const std::string& PARAMETER_POOL::Text() {
    return State().text;
}

// A pool is asked for hundreds of keys; one pass over the file serves them all.
const PARAMETER_POOL::STATE_OF_FILE& PARAMETER_POOL::State() {
    if (state_.updates != update_count) state_ = ReadState();
    return state_;
}

PARAMETER_POOL::STATE_OF_FILE PARAMETER_POOL::ReadState() {
    STATE_OF_FILE state;
    state.updates = update_count;
    const POOL_FILE& file = File();
    const LOCKED_FOR_READING lock(holds_lock_ ? nullptr : &file);
    state.text = file.Content();
    CheckLeftOvers(file, state.text);
    file.RequirePool(state.text);
    ENTRY_SCANNER scanner;
    LINE_READER reader;
    for (reader.Start(state.text, 0, 1); reader.Next();) {
        if (scanner.Classify(reader) != POOL_LINE::ENTRY) continue;
        state.places.try_emplace(std::string(KeyOfLine(reader.Line())), PLACE{reader.Offset(), reader.LineNumber()});
    }
    return state;
}

bool PARAMETER_POOL::FindKey(const std::string& key) {
    return State().places.contains(key);
}

std::vector<std::string> PARAMETER_POOL::Keys() {
    std::vector<std::string> keys;
    for (const auto& place : State().places) keys.push_back(place.first);
    return keys;
}

POOL_ENTRY PARAMETER_POOL::ReadHeader(const std::string& key, int expected_type) {
    const STATE_OF_FILE& state = State();
    const auto place = state.places.find(key);
    if (place == state.places.end()) {
        if (not_found_level_ <= LOGGING_LEVEL::ALARM) {
            Log() << not_found_level_ << "parameter pool: parameter key >> " << key << " << not found\n";
            Log().Message(not_found_level_, "parameter pool file %s", FileName().c_str());
        }
        throw PARAMETER_KEY_NOT_FOUND();
    }
    reader_.Start(state.text, place->second.offset, place->second.line_number);
    reader_.Next();
    POOL_ENTRY entry(reader_, FileName(), key, static_cast<long long>(state.text.size()));
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
