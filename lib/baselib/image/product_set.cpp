#include "lib/baselib/image/product_set.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <map>
#include <set>
#include <string>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/log_and_throw.h"
#include "lib/baselib/image/blocked_signals.h"
#include "lib/baselib/image/whole_file.h"
#include "lib/baselib/logging/logging.h"

PRODUCT_FILE& PRODUCT_SET::Add(const PRODUCT_REQUEST& request, mode_t permissions) {
    return *files_.emplace_back(std::make_unique<PRODUCT_FILE>(request, permissions));
}

PRODUCT_FILE* PRODUCT_SET::Find(std::string_view key) const {
    const auto found = std::ranges::find_if(files_, [key](const auto& file) { return file->Key() == key; });
    return found == files_.end() ? nullptr : found->get();
}

void PRODUCT_SET::ReserveRoom() {
    std::map<dev_t, long long> asked;
    for (const auto& file : files_) file->RequireRoom(asked);
    for (const auto& file : files_) file->ReserveRoom();
}

bool PRODUCT_SET::AreHiddenUntilPlaced() const {
    return std::all_of(files_.begin(), files_.end(), [](const auto& file) { return file->IsHiddenUntilPlaced(); });
}

void PRODUCT_SET::BeginSynchronising() const {
    for (const auto& file : files_) file->BeginSynchronising();
}

void PRODUCT_SET::LeaveCache() const {
    for (const auto& file : files_) file->LeaveCache();
}

void PRODUCT_SET::Abandon() {
    for (const auto& file : files_) file->Abandon();
}

void PRODUCT_SET::Place() {
    BeginSynchronising();
    for (const auto& file : files_) file->Synchronise();
    {
        const BLOCKED_SIGNALS blocked;
        for (const auto& file : files_) file->Place();
    }
    SynchroniseFolders();
}

/// Some file systems know no synchronising of folders: their products are on the disk, their names soon.
void PRODUCT_SET::SynchroniseFolders() const {
    std::set<std::string> folders;
    for (const auto& file : files_) folders.insert(file->Folder());
    folders.erase("");
    bool warned = false;
    for (const std::string& folder : folders) {
        const int error = SynchroniseFolder(folder);
        if (error == 0 || warned) continue;
        if (error != EINVAL && error != EOPNOTSUPP && error != EACCES) {
            LogAndThrow<ERROR_CAN_NOT_WRITE_FILE>("%s: the products' names can not be brought to the disk: %s",
                                                  folder.c_str(), std::strerror(error));
        }
        Log().Message(LOGGING_LEVEL::WARNING, "%s: the folder can not be synchronised: %s", folder.c_str(),
                      std::strerror(error));
        warned = true;
    }
}

void PRODUCT_SET::Accept() {
    for (const auto& file : files_) file->Accept();
}
