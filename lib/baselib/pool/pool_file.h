/// \file pool_file.h
/// The file behind a pool: opening, the lock that readers share and that a writer has alone, and reading it whole.
///
/// The lock is flock() on the pool's own file. It is taken for the moments of reading, and for the whole of an update,
/// from the reading of the old content to the end of the copy: a reader sees no half-written pool, and two runs that
/// change one pool do so one after the other. Where a file system has no locks a WARNING says so, once per run.

#pragma once

#include <sys/types.h>

#include <compare>
#include <string>

class POOL_FILE {
  public:
    enum class LOCK { SHARED, EXCLUSIVE };
    static constexpr int kLongestWaitSeconds = 60;
    /// No pool is longer: a run writes some hundred entries, and the state vectors of a day take 10 MB.
    static constexpr std::size_t kLongestContent = std::size_t{256} << 20;

    POOL_FILE() = default;
    /// Opens for reading and writing, else creates an empty file of this name, else opens for reading only. An existing
    /// file is never truncated. @throws CAN_NOT_OPEN_POOL
    explicit POOL_FILE(const std::string& path);
    ~POOL_FILE() { Close(); }
    POOL_FILE(POOL_FILE&& other) noexcept { *this = std::move(other); }
    POOL_FILE& operator=(POOL_FILE&& other) noexcept;

    [[nodiscard]] bool IsOpen() const { return descriptor_ >= 0; }
    [[nodiscard]] bool IsWritable() const { return writable_; }
    /// Whether opening created it.
    [[nodiscard]] bool IsNew() const { return is_new_; }
    [[nodiscard]] int Descriptor() const { return descriptor_; }
    [[nodiscard]] const std::string& Name() const { return name_; }
    [[nodiscard]] const std::string& Directory() const { return directory_; }
    /// What tells one file from another, whatever its names; found when it was opened.
    struct IDENTITY {
        dev_t device = 0;
        ino_t inode = 0;
        bool operator==(const IDENTITY&) const = default;
        bool operator<(const IDENTITY& other) const {
            return device != other.device ? device < other.device : inode < other.inode;
        }
    };
    [[nodiscard]] IDENTITY Identity() const { return identity_; }
    /// Whether its name now belongs to another file: an editor replaced it while it was open.
    [[nodiscard]] bool IsReplaced() const;

    /// Waits while another process has the lock; the log tells for which pool and how long at most.
    /// @throws ERROR_PARAMETER_POOL after that time
    void Lock(LOCK kind, int longest_wait_s = kLongestWaitSeconds) const;
    void Unlock() const;

    /// The whole content; of a file that is clearly no pool, or damaged, only the beginning.
    /// @throws ERROR_CAN_NOT_READ_FILE; CAN_NOT_OPEN_POOL for more than kLongestContent
    [[nodiscard]] std::string Content() const;
    /// @param content what Content() returned @throws CAN_NOT_OPEN_POOL when that is clearly no pool, or holds a zero
    /// byte
    ///         outside of comments
    void RequirePool(const std::string& content) const;

  private:
    void Close();
    [[nodiscard]] bool ReadBlock(std::string& content, std::size_t bytes) const;
    [[noreturn]] void Refuse(const std::string& reason) const;

    int descriptor_ = -1;
    IDENTITY identity_;
    bool writable_ = true;
    bool is_new_ = false;
    std::string name_ = "xxx.dat";
    std::string directory_ = ".";
};

/// Logs this WARNING the first time only. @param text what is missing and what follows from it
void WarnOnceOfFileSystem(const std::string& text);
