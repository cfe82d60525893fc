/// \file json_text.h
/// Builds a JSON text, member by member, indented by two blanks.
/// Threads: one object, one thread.

#pragma once

#include <string>
#include <string_view>

/// A JSON string with its quotes. Bytes that are no UTF-8 become U+FFFD.
[[nodiscard]] std::string JsonString(std::string_view text);

class JSON_TEXT {
  public:
    /// Without a key inside an array, with one inside an object.
    void BeginObject(std::string_view key = "") { Begin(key, '{'); }
    void EndObject() { End('}'); }
    void BeginArray(std::string_view key = "") { Begin(key, '['); }
    void EndArray() { End(']'); }

    void Add(std::string_view key, std::string_view text) { AddRaw(key, JsonString(text)); }
    void Add(std::string_view key, const char* text) { Add(key, std::string_view(text)); }
    void Add(std::string_view key, long long number) { AddRaw(key, std::to_string(number)); }
    void Add(std::string_view key, int number) { AddRaw(key, std::to_string(number)); }
    void Add(std::string_view key, bool value) { AddRaw(key, value ? "true" : "false"); }
    /// As many digits as bring the number back; null when it is not finite.
    void Add(std::string_view key, double number);
    void AddNull(std::string_view key) { AddRaw(key, "null"); }

    /// What there is so far: all that was begun and not ended stays open.
    [[nodiscard]] const std::string& Text() const { return text_; }

  private:
    void Begin(std::string_view key, char bracket);
    void End(char bracket);
    void AddRaw(std::string_view key, std::string_view value);
    void StartLine(std::string_view key);

    std::string text_;
    int depth_ = 0;
    bool first_ = true;  ///< nothing yet in what is open
};
