#include "lib/baselib/image/unfinished_files.h"

#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr std::size_t kMostFiles = 64;

std::array<std::atomic<const UNFINISHED_FILE*>, kMostFiles> remembered{};
static_assert(std::atomic<const UNFINISHED_FILE*>::is_always_lock_free);

}  // namespace

UNFINISHED_FILE::~UNFINISHED_FILE() {
    if (temporary.empty()) return;
    Undo();
    for (auto& place : remembered) {
        const UNFINISHED_FILE* it = this;
        place.compare_exchange_strong(it, nullptr);
    }
}

void UNFINISHED_FILE::Undo() const noexcept {
    const STATE now = state;
    if (now != STATE::ACCEPTED) unlink(temporary.c_str());
    if (now == STATE::REPLACING && !BringBack()) return;
    unlink(backup.c_str());  // rename() leaves it alone where target and backup are still one file
}

/// @return false when the older product is left under the backup's name alone
bool UNFINISHED_FILE::BringBack() const noexcept {
    struct stat placed {};
    if (rename(backup.c_str(), target.c_str()) == 0) return true;
    const bool had_older = errno != ENOENT;
    // What lies there is removed, but only if it is this run's.
    if (stat(target.c_str(), &placed) == 0 && placed.st_dev == device && placed.st_ino == inode) unlink(target.c_str());
    return !had_older || link(backup.c_str(), target.c_str()) == 0 || errno == EEXIST;
}

void RememberUnfinished(const UNFINISHED_FILE& file) noexcept {
    static const int at_exit = std::atexit(UndoUnfinishedFiles);
    static_cast<void>(at_exit);
    for (auto& place : remembered) {
        const UNFINISHED_FILE* none = nullptr;
        if (place.compare_exchange_strong(none, &file)) return;
    }
}

void UndoUnfinishedFiles() noexcept {
    for (const auto& place : remembered) {
        if (const UNFINISHED_FILE* const file = place) file->Undo();
    }
}
