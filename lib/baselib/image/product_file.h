/// \file product_file.h
/// One raster file that a run makes: where its bytes go until it is complete, and how it takes its place.
///
/// | what the path is, links followed | written | takes its place |
/// |---|---|---|
/// | a regular file, or nothing yet | into a temporary in the same folder | by renaming |
/// | a regular file in a folder that takes no new file | into the file itself, told at WARNING | at once |
/// | a character device or a pipe | into it, in order | at once |
///
/// Errors: logged at ALARM with the file and the system's reason, then thrown. Threads: see WriteRows(); all else
/// belongs to one thread.

#pragma once

#include <sys/types.h>

#include <condition_variable>
#include <map>
#include <mutex>
#include <string>

#include "lib/baselib/image/file_descriptor.h"
#include "lib/baselib/image/pixel_type.h"
#include "lib/baselib/image/raster_header.h"
#include "lib/baselib/image/unfinished_files.h"
#include "lib/baselib/image/value_statistics.h"

struct PRODUCT_REQUEST {
    std::string key;  ///< by which the user named it; for messages
    std::string path;
    long long columns = 0;
    long long rows = 0;
    PIXEL_TYPE pixel_type = PIXEL_TYPE::FLT_6;
};

struct FOLDER_AND_NAME;

class PRODUCT_FILE {
  public:
    /// Opens what is to be written and changes nothing that a user can see but the temporary's name.
    /// Left-overs of this product that no living run holds are removed.
    /// @param permissions  of a new file, before the process's mask; those of an older product are kept
    /// @throws ERROR_CAN_NOT_CREATE_FILE; ERROR_IMAGE for sizes that the header can not tell
    PRODUCT_FILE(const PRODUCT_REQUEST& request, mode_t permissions);
    PRODUCT_FILE(const PRODUCT_FILE&) = delete;
    PRODUCT_FILE& operator=(const PRODUCT_FILE&) = delete;
    /// Takes everything back that was not accepted.
    ~PRODUCT_FILE() = default;

    [[nodiscard]] const std::string& Key() const { return request_.key; }
    [[nodiscard]] const std::string& Path() const { return request_.path; }
    [[nodiscard]] long long Columns() const { return header_.width; }
    [[nodiscard]] long long Rows() const { return header_.height; }
    /// Whether nothing can be seen of it before Place(): its rows may come early and in any order.
    [[nodiscard]] bool IsHiddenUntilPlaced() const { return way_ == WAY::TEMPORARY; }
    /// Header and pixels, in bytes.
    [[nodiscard]] long long Bytes() const { return bytes_; }

    /// As the function of disk_room.h; devices and pipes need none.
    void RequireRoom(std::map<dev_t, long long>& asked) const;

    /// Gives the file all its room, where the file system can.
    /// @throws ERROR_NO_DISK_SPACE
    void ReserveRoom() const;

    /// The line that opens the output of a file.
    void LogCreation() const;

    /// Writes rows of pixels, header first of all. The rows may come in any order and from several threads; those for a
    /// device or a pipe wait until all rows before them are written.
    /// @param pixels  rows * columns pixels, unpadded
    /// @throws ERROR_CAN_NOT_WRITE_FILE
    void WriteRows(long long first_row, long long rows, const void* pixels);

    /// The same for rows that lie apart in memory, of a file that IsHiddenUntilPlaced().
    /// @param stride  from row to row, in bytes
    void WriteSpacedRows(long long first_row, long long rows, const void* pixels, std::size_t stride);

    /// To be called before the first row: Values() will be asked.
    void WantValues() {
        values_wanted_ = request_.pixel_type == PIXEL_TYPE::FLT_6 || request_.pixel_type == PIXEL_TYPE::U_INT_8;
    }
    /// Of the 32-bit reals or bytes in the rows written so far, if wanted; no thread may be writing.
    [[nodiscard]] const VALUE_STATISTICS& Values() const { return values_; }

    /// No more rows will come from a thread that has failed: those that wait for them fail, too.
    void Abandon();

    /// What is written starts its way to the disk.
    void BeginSynchronising() const;
    /// What has reached the disk leaves the system's file cache.
    void LeaveCache() const;
    /// Waits until the file is on the disk, and closes it.
    /// @throws ERROR_CAN_NOT_WRITE_FILE
    void Synchronise();

    /// Takes the older product's place; Accept() or the destructor has the last word.
    /// @throws ERROR_CAN_NOT_WRITE_FILE
    void Place();
    void Accept();

    /// Folder whose entry Place() changes; empty where it changes none.
    [[nodiscard]] std::string Folder() const;

  private:
    enum class WAY { TEMPORARY, IN_PLACE, DIRECT };

    void CountValues(long long rows, const void* pixels, std::size_t stride);
    void Open(mode_t permissions);
    void OpenOlder(const struct stat& older);
    [[nodiscard]] bool MakeAndRemember(const FOLDER_AND_NAME& target, mode_t permissions);
    [[nodiscard]] bool TryTemporary(mode_t permissions);
    void KeepOwnerAndPermissions(const struct stat& older);
    void WriteInOrder(const void* data, long long bytes);
    void WriteHeader();
    [[noreturn]] void RefuseToCreate(int error) const;
    [[noreturn]] void FailWriting(const char* what, int error) const;

    PRODUCT_REQUEST request_;
    bool values_wanted_ = false;
    RASTER_HEADER header_;
    long long row_bytes_;
    long long bytes_;
    WAY way_ = WAY::TEMPORARY;
    UNFINISHED_FILE names_;  ///< target: behind all links
    FILE_DESCRIPTOR file_{-1};
    FILE_DESCRIPTOR lock_{-1};  ///< on the temporary
    FILE_DESCRIPTOR backup_lock_{-1};

    std::mutex mutex_;  ///< guards what follows
    std::condition_variable turn_;
    bool header_written_ = false;
    bool abandoned_ = false;
    long long next_row_ = 0;  ///< of a device or a pipe
    VALUE_STATISTICS values_;
};
