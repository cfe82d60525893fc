/// \file pool_text.h
/// The text of a pool: its entries by key, so that a test can spoil one of them.

#pragma once

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

class POOL_TEXT {
  public:
    void Set(const std::string& key, const std::string& entry) { entries_[key] = entry; }
    void SetText(const std::string& key, const std::string& text) { Set(key, "STR \"" + text + "\""); }
    void SetList(const std::string& key, const std::string& tag, const std::vector<std::string>& items) {
        std::string entry = tag + " 0 " + std::to_string(items.size()) + "\n{\n";
        for (const std::string& item : items) entry += item + "\n";
        Set(key, entry + "}");
    }
    void Remove(const std::string& key) { entries_.erase(key); }
    const std::string& Entry(const std::string& key) const { return entries_.at(key); }

    /// Writes the pool into the one file of this program. @return its path
    std::string Save() const {
        static const struct REMOVED_AT_EXIT {
            std::filesystem::path path =
                std::filesystem::temp_directory_path() / (std::to_string(getpid()) + "_orbit.pool");
            ~REMOVED_AT_EXIT() { std::filesystem::remove(path); }
        } file_of_program;
        std::ofstream file(file_of_program.path);
        for (const auto& [key, entry] : entries_) file << key << " " << entry << "\n";
        return file_of_program.path;
    }

  private:
    std::map<std::string, std::string> entries_;
};
