/// \file control_file.h
/// The process control file: lines of a key and a value, divided by blanks; what follows the second word is ignored. It
/// may serve many programs, so keys that nobody here knows are nobody's business.
///
///     file := { line };  line := key [ value [ anything ] ] "\n"      at most 1024 characters, a longer line is cut
///     and
///                                                                     its rest is the next line
///
/// Reading goes on where it stopped: keys asked in the order of the file cost one pass in total. The file is read whole
/// when it is opened: a shell's "<(...)" can be read once only, and a read error must not pass for the end of the file.

#pragma once

#include <optional>
#include <string>
#include <vector>

class CONTROL_FILE {
  public:
    struct ENTRY {
        std::string key;    ///< empty for a blank line
        std::string value;  ///< empty for a key that stands alone
    };
    static constexpr std::size_t kLongestFile = std::size_t{16} << 20;
    static constexpr int kLongestSilenceSeconds = 60;

    /// @param longest_silence_s a pipe into which nobody writes for so long is given up
    /// @return false when there is no such file; or when there is one that can not be read to its end: then Problem()
    ///         tells why
    [[nodiscard]] bool Open(const std::string& path, int longest_silence_s = kLongestSilenceSeconds);
    void Close();
    [[nodiscard]] bool IsOpen() const { return is_open_; }
    /// Empty unless there is something that could not be opened or not be read.
    [[nodiscard]] const std::string& Problem() const { return problem_; }

    /// The next line, or nothing at the end of the file.
    [[nodiscard]] std::optional<ENTRY> NextEntry();
    void Rewind() { position_ = 0; }

    /// All keys of the file; the reading position stays.
    [[nodiscard]] std::vector<std::string> Keys() const;
    /// The values of all lines of this key.
    [[nodiscard]] std::vector<std::string> ValuesOf(const std::string& key) const;

  private:
    [[nodiscard]] std::vector<ENTRY> Entries() const;

    bool is_open_ = false;
    std::string problem_;
    std::string content_;
    std::size_t position_ = 0;
};
