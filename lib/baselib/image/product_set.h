/// \file product_set.h
/// The raster files of one run. They appear together and whole, or not at all:
/// (1) Add() opens each under a temporary name in its own folder, (2) ReserveRoom() gives all of them their room before
/// the first byte is written, (3) Place() brings all to the disk, then renames all into place, (4) Accept() ends it.
/// Without Accept() the destructor brings the older products back. A process that is killed leaves temporaries, which
/// the next run of the same product removes (left_over_files.h); one that is killed while Place() renames, or before
/// Accept(), leaves complete new products beside complete older ones.
/// Threads: as PRODUCT_FILE. Signals: UndoUnfinishedFiles() is for the handler.

#pragma once

#include <sys/types.h>

#include <memory>
#include <string_view>
#include <vector>

#include "lib/baselib/image/product_file.h"

class PRODUCT_SET {
  public:
    /// @throws as PRODUCT_FILE's constructor
    /// @return the file; it lives as long as the set
    PRODUCT_FILE& Add(const PRODUCT_REQUEST& request, mode_t permissions = 0666);

    /// The file of a key; null when there is none.
    [[nodiscard]] PRODUCT_FILE* Find(std::string_view key) const;
    [[nodiscard]] const std::vector<std::unique_ptr<PRODUCT_FILE>>& Files() const { return files_; }

    /// @throws ERROR_NO_DISK_SPACE
    void ReserveRoom();

    [[nodiscard]] bool AreHiddenUntilPlaced() const;

    /// What is written starts its way to the disk, while the run goes on.
    void BeginSynchronising() const;
    void LeaveCache() const;
    /// As PRODUCT_FILE's, for all.
    void Abandon();

    /// @throws ERROR_CAN_NOT_WRITE_FILE
    void Place();
    void Accept();

  private:
    void SynchroniseFolders() const;

    std::vector<std::unique_ptr<PRODUCT_FILE>> files_;
};
