/// \file output_set.h
/// The output files of one command: all appear, each whole, or none does.
/// Every file is first written under a temporary name beside its place (".NAME.XXXXXX"); Commit() flushes them to disk
/// and renames them. A command that fails or is ended by SIGINT, SIGTERM, SIGHUP or SIGPIPE leaves no temporary file.
/// Threads: one object, one thread.

#pragma once

#include <string>
#include <vector>

class OUTPUT_SET {
  public:
    /// @param force  files that are there already are replaced, keeping their permissions
    explicit OUTPUT_SET(bool force) : force_(force) {}
    ~OUTPUT_SET();
    OUTPUT_SET(const OUTPUT_SET&) = delete;
    OUTPUT_SET& operator=(const OUTPUT_SET&) = delete;

    /// No output may be this file, by whatever name.
    void Protect(const std::string& input) { inputs_.push_back(input); }

    /// The folder of later outputs; made when it is not there, and removed again without Commit().
    /// @throws COMPANION_ERROR when there is something else of that name, or no permission
    void AddFolder(const std::string& path);

    /// @return the temporary file (empty) to be written in place of path
    /// @throws COMPANION_ERROR for an input, an existing file without force, a path that is no file or not writable
    [[nodiscard]] std::string Add(const std::string& path);

    /// @throws COMPANION_ERROR; all outputs are then as they were before
    void Commit();

  private:
    struct OUTPUT {
        std::string path;
        std::string temporary;
        bool exchanged = false;  ///< the temporary name now holds the file that was there before
        bool placed = false;
    };

    void RequireReplaceable(const std::string& path) const;
    void Place(OUTPUT& output) const;
    void TakeBack() noexcept;

    bool force_;
    bool committed_ = false;
    std::vector<std::string> inputs_;
    std::vector<std::string> new_folders_;
    std::vector<OUTPUT> outputs_;
};
