/// \file stack_folder.h
/// The folder of a stack:
///     stack.txt           what all its pairs are made with
///     images/NAME.pool    every image
///     pairs/A__B/         everything that the run of master A and slave B needs but the DEM
///     pairs.csv           the pairs and their figures
/// What is new is written beside its place first and renamed when all of it is on the disk: a pair's folder is whole or
/// absent, and what was there before stays as it is, to the byte and the time of its last change.
/// Threads: one object, one thread. Processes: a lock on the folder keeps a second one out.

#pragma once

#include <string>
#include <vector>

class STACK_FOLDER {
  public:
    /// Makes the folder if it is not there. @throws COMPANION_ERROR for one that is no stack, one made with other
    /// settings, or one at which another process works
    /// @param settings  content of stack.txt
    STACK_FOLDER(std::string path, const std::string& settings);
    /// Without Commit() nothing new is left.
    ~STACK_FOLDER();
    STACK_FOLDER(const STACK_FOLDER&) = delete;
    STACK_FOLDER& operator=(const STACK_FOLDER&) = delete;

    /// Where the pools of all images of the call are to be written, new or not.
    [[nodiscard]] std::string NewImages() const { return temporary_ + "/images"; }
    /// Whether the stack has the image. @throws COMPANION_ERROR when its pool there is another one
    [[nodiscard]] bool HasImage(const std::string& name, const std::string& pool_text) const;
    [[nodiscard]] bool HasPair(const std::string& pair) const;

    /// The new pair's folder, empty.
    [[nodiscard]] std::string AddPair(const std::string& pair);
    /// @throws COMPANION_ERROR
    void WriteFile(const std::string& path, const std::string& text) const;

    /// Puts the new images and pairs in their places.
    void Commit(const std::vector<std::string>& new_images);
    /// Appends to pairs.csv the rows of those pairs that it does not have.
    struct ROW {
        std::string pair;
        std::string text;  ///< begins with the pair
    };
    void AppendToTable(const std::string& names, const std::vector<ROW>& rows) const;

  private:
    void Open();
    void RequireSettings(const std::string& settings) const;
    void RemoveLeftOvers() const;
    void Place(const std::string& part, const std::string& name) const;

    std::string path_;
    std::string temporary_;
    int descriptor_ = -1;
    bool is_new_ = false;
    bool committed_ = false;
    std::vector<std::string> new_pairs_;
};
