/// \file string.h
/// Zero-terminated text with its size, the terminating zero included. Text after a zero byte is not kept.

#pragma once

#include <cstddef>
#include <cstring>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>

#include "lib/baselib/containers/core_object.h"

class STRING {
  public:
    STRING() : STRING("") {}
    /// @throws ERROR_NO_MEMORY
    STRING(const char* text) { Assign(text); }
    STRING(const std::string& text) { Assign(text.c_str()); }
    STRING(const STRING& other) { Assign(other.CStr()); }
    STRING(STRING&& other) noexcept { Swap(other); }
    STRING& operator=(const STRING& other) {
        if (this != &other) Assign(other.CStr());
        return *this;
    }
    STRING& operator=(STRING&& other) noexcept {
        STRING taken(std::move(other));
        Swap(taken);
        return *this;
    }
    STRING& operator=(const char* text) {
        Assign(text);
        return *this;
    }
    ~STRING() = default;

    const char* CStr() const { return text_ == nullptr ? "" : text_.get(); }
    std::string ToStd() const { return CStr(); }
    std::size_t Size() const { return size_; }

    /// @throws std::out_of_range for an index that is not below Size()
    char& operator[](std::size_t index) { return text_[Checked(index)]; }
    char operator[](std::size_t index) const { return text_[Checked(index)]; }

    friend bool operator==(const STRING& a, const STRING& b) { return std::strcmp(a.CStr(), b.CStr()) == 0; }
    friend bool operator<(const STRING& a, const STRING& b) { return std::strcmp(a.CStr(), b.CStr()) < 0; }

  private:
    void Assign(const char* text) {
        const std::size_t size = std::strlen(text) + 1;
        std::unique_ptr<char[]> copy(new (std::nothrow) char[size]);
        if (copy == nullptr) FailCoreObject();
        std::memcpy(copy.get(), text, size);
        text_ = std::move(copy);
        size_ = size;
    }

    std::size_t Checked(std::size_t index) const {
        if (index >= size_) throw std::out_of_range("subscript greater than string length");
        return index;
    }

    void Swap(STRING& other) noexcept {
        std::swap(text_, other.text_);
        std::swap(size_, other.size_);
    }

    std::unique_ptr<char[]> text_;  ///< null only in a text that was moved from
    std::size_t size_ = 0;
};
