/// \file pool_entry.h
/// One entry while it is read: where the reader stands, and how a failure names key, value, pool and line.

#pragma once

#include <string>
#include <utility>

#include "lib/baselib/logging/logging.h"
#include "lib/baselib/pool/line_reader.h"
#include "lib/baselib/pool/pool_errors.h"
#include "lib/baselib/pool/pool_type.h"

class POOL_ENTRY {
  public:
    /// @param file_bytes size of the pool file; no entry holds more elements than that
    POOL_ENTRY(LINE_READER& reader, std::string file_name, std::string key, long long file_bytes)
        : reader_(reader), file_name_(std::move(file_name)), key_(std::move(key)), file_bytes_(file_bytes) {}

    [[nodiscard]] LINE_READER& Reader() { return reader_; }
    [[nodiscard]] const std::string& Key() const { return key_; }
    [[nodiscard]] long long FileBytes() const { return file_bytes_; }

    /// The next token of the line; without one fails.
    std::string Token() {
        std::string token;
        if (!reader_.Token(token)) Fail<INVALID_PARAMETER_VALUE>(" << no parameter value in file\n");
        return token;
    }

    /// Logs the key and the parts of the message, the last of which ends the line, then the place.
    template <class ERROR, class... PARTS>
    [[noreturn]] void Fail(const PARTS&... parts) const {
        LogFailure(LOGGING_LEVEL::ALARM, parts...);
        throw ERROR();
    }
    /// The same for a token that is no value of its type, or none that the type can hold.
    template <class ERROR>
    [[noreturn]] void FailToken(const std::string& token, const char* text) const {
        Fail<ERROR>(" << read value is : ", token, text);
    }

    template <class... PARTS>
    void LogFailure(LOGGING_LEVEL level, const PARTS&... parts) const {
        if (level > LOGGING_LEVEL::ALARM) return;
        ((Log() << level << "parameter pool: parameter key >> " << key_) << ... << parts);
        Log().Message(level, "parameter pool file %s, line %lld", file_name_.c_str(), reader_.LineNumber());
    }

  private:
    LINE_READER& reader_;
    std::string file_name_;
    std::string key_;
    long long file_bytes_;
};
