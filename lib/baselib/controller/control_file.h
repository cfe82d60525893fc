/// \file control_file.h
/// The process control file: lines of a key and a value, divided by blanks; what follows the second word is ignored. It
/// may serve many programs, so keys that nobody here knows are nobody's business.
///
///     file := { line };  line := key [ value [ anything ] ] "\n"      at most 1024 characters, a longer line is cut
///     and
///                                                                     its rest is the next line
///
/// Reading goes on where it stopped: keys asked in the order of the file cost one pass in total.

#pragma once

#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class CONTROL_FILE {
  public:
    struct ENTRY {
        std::string key;    ///< empty for a blank line
        std::string value;  ///< empty for a key that stands alone
    };

    /// A pipe (a shell's "<(...)") is taken over into a temporary file, up to 1 MiB, since reading has to wrap round.
    /// @return false when there is no such file or it cannot be read
    [[nodiscard]] bool Open(const std::string& path);
    void Close() { stream_.reset(); }
    [[nodiscard]] bool IsOpen() const { return stream_ != nullptr; }

    /// The next line, or nothing at the end of the file.
    [[nodiscard]] std::optional<ENTRY> NextEntry();
    void Rewind();

    /// All keys of the file; the reading position stays.
    [[nodiscard]] std::vector<std::string> Keys();

  private:
    struct CLOSER {
        void operator()(FILE* stream) const { std::fclose(stream); }
    };
    std::unique_ptr<FILE, CLOSER> stream_;
};
