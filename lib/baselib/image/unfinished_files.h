/// \file unfinished_files.h
/// The files that a run has on disk before it has ended well, so that every end of the process can take them back: a
/// failure, exit() from anywhere, or a fatal signal's handler.
///
/// A product is built under a temporary name. Replacing: the older product is kept under a backup name (a hard link),
/// then the temporary takes its name. Until the whole set is accepted both can be undone.
/// Threads, signals: Undo() makes async-signal-safe calls only and may run at any time, also twice at once; the rest
/// belongs to one thread.

#pragma once

#include <sys/types.h>

#include <atomic>
#include <string>

struct UNFINISHED_FILE {
    UNFINISHED_FILE() = default;
    UNFINISHED_FILE(const UNFINISHED_FILE&) = delete;
    UNFINISHED_FILE& operator=(const UNFINISHED_FILE&) = delete;
    ~UNFINISHED_FILE();  ///< undoes and forgets it

    enum class STATE : int {
        BUILDING,   ///< the temporary is there
        REPLACING,  ///< between making the backup and accepting the set
        ACCEPTED    ///< the product stays, the backup goes
    };

    std::string temporary;  ///< empty: there is none
    std::string backup;
    std::string target;
    dev_t device = 0;  ///< of the temporary
    ino_t inode = 0;
    std::atomic<STATE> state = STATE::BUILDING;

    /// Takes back what the state tells: the folder is then as it was before the run.
    void Undo() const noexcept;

  private:
    [[nodiscard]] bool BringBack() const noexcept;
};

/// From now on UndoUnfinishedFiles() knows the file.
void RememberUnfinished(const UNFINISHED_FILE& file) noexcept;

/// Undoes all that are remembered. For the handler of fatal signals, and registered for exit() by the first file.
void UndoUnfinishedFiles() noexcept;
