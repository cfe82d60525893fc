/// \file pool_update.h
/// The way of new entries into a pool file, made so that at every moment the old content, the new content or both are
/// on disk, whatever fails and whenever the process is killed:
///   1. the new content is written into a temporary file pool_XXXXXX beside the pool, which the writer has locked;
///   2. file and folder are flushed to disk, and the mode 0400 marks the file as complete;
///   3. the pool is truncated and the content copied back, so that the pool keeps its inode, owner and permissions;
///   4. the pool is flushed to disk, and only then the temporary file is removed.
/// The pool itself is locked meanwhile, so that two processes that update one pool do so one after the other.

#pragma once

#include <cstdio>
#include <string>

#include "lib/baselib/pool/parameter_pool_list.h"

class POOL_UPDATE {
  public:
    POOL_UPDATE(FILE* pool, std::string pool_name, const std::string& directory);
    ~POOL_UPDATE();
    POOL_UPDATE(const POOL_UPDATE&) = delete;
    POOL_UPDATE& operator=(const POOL_UPDATE&) = delete;

    /// @throws CORRUPTED_PARAMETER_POOL when the new content could not be made, ERROR_I_O when it could not be read
    ///         again, ERROR_PARAMETER_POOL for the other failures
    void Run(const PARAMETER_POOL_LIST& items);
    [[nodiscard]] bool HasTruncatedPool() const { return has_truncated_pool_; }

  private:
    void LockPool();
    void BuildTemporary(PARAMETER_POOL_LIST items);
    void CreateTemporary();
    void WriteContent(PARAMETER_POOL_LIST items);
    void FlushTemporary();
    void OpenForReading();
    void TruncatePool();
    void CopyBack();
    void RemoveTemporary();

    FILE* pool_;
    std::string pool_name_;
    std::string directory_;
    std::string temporary_name_;
    int lock_ = -1;  ///< descriptor that holds the temporary's lock to the end
    FILE* writing_ = nullptr;
    FILE* reading_ = nullptr;
    bool has_truncated_pool_ = false;
};
