/// \file pool_replacement.h
/// One whole content on its way into a pool file, so that at every moment the old content, the new content or both are
/// on disk, whatever fails and whenever the process is killed:
///   1. Prepare: the content is written into a temporary file pool_XXXXXX beside the pool, which the writer has locked;
///      file and folder are flushed to disk;
///   2. CopyIntoPool: the mode 0400 marks the temporary as complete, the pool is truncated and the content copied
///      back, so that the pool keeps its inode, owner and permissions, and the pool is flushed to disk;
///   3. Remove, only then.
/// Whoever calls it has the pool's lock.

#pragma once

#include <string>

#include "lib/baselib/pool/pool_file.h"

class POOL_REPLACEMENT {
  public:
    POOL_REPLACEMENT(const POOL_FILE& pool, std::string content);
    ~POOL_REPLACEMENT();
    POOL_REPLACEMENT(const POOL_REPLACEMENT&) = delete;
    POOL_REPLACEMENT& operator=(const POOL_REPLACEMENT&) = delete;

    /// @throws CORRUPTED_PARAMETER_POOL when the temporary could not be made (it stays, where there is one), ERROR_I_O
    ///         when it could not be read again; the pool is unchanged
    void Prepare();
    /// One line at DEBUG.
    void Announce() const;
    /// @throws ERROR_PARAMETER_POOL; HasTouchedPool() tells whether the pool is cut off
    void CopyIntoPool();
    /// The same for the old content: also where the temporary can not be marked, since the pool is better whole.
    void PutBack();
    [[nodiscard]] bool HasTemporary() const { return temporary_ >= 0 && !temporary_name_.empty(); }
    [[nodiscard]] bool HasTouchedPool() const { return has_touched_pool_; }
    /// Removes the temporary, at most a WARNING.
    void Remove();
    /// Gives up: marks the temporary, which stays, and empties the pool, so that the next run knows which content is
    /// its complete one.
    void LeaveToRecovery();

    [[nodiscard]] const POOL_FILE& Pool() const { return pool_; }

  private:
    void CreateTemporary();
    void WriteTemporary();
    void ReadBack();
    void MarkComplete();
    void Copy();

    const POOL_FILE& pool_;
    std::string content_;
    std::string temporary_name_;  ///< empty when there is nothing to remove
    int temporary_ = -1;          ///< descriptor that holds the temporary's lock to the end
    bool has_touched_pool_ = false;
};

/// For the handler of a fatal signal: removes the temporaries whose pools are still as they were. Async-signal-safe.
void RemoveUnmarkedTemporaries() noexcept;
