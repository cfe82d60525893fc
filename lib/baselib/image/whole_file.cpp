#include "lib/baselib/image/whole_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

#include "lib/baselib/image/blocked_signals.h"
#include "lib/baselib/image/file_descriptor.h"
#include "lib/baselib/image/left_over_files.h"
#include "lib/baselib/image/unfinished_files.h"

int ReplaceFile(const std::string& path, const std::string& content) {
    constexpr mode_t kPermissions = 0666;
    const FOLDER_AND_NAME place(path);
    RemoveLeftOvers(place);
    UNFINISHED_FILE names;
    FILE_DESCRIPTOR file(-1);
    {
        const BLOCKED_SIGNALS both_or_neither;
        std::string temporary;
        file.Reset(MakeTemporary(place, kPermissions, temporary));
        if (file.Get() < 0) return errno;
        names.temporary.swap(temporary);
        RememberUnfinished(names);
    }
    if (const int error = WriteWhole(file.Get(), content.data(), content.size()); error != 0) return error;
    if (UnlessInterrupted([&] { return fsync(file.Get()); }) != 0) return errno;
    const BLOCKED_SIGNALS renamed_and_noted;
    if (std::rename(names.temporary.c_str(), path.c_str()) != 0) return errno;
    names.state = UNFINISHED_FILE::STATE::ACCEPTED;
    return file.Close();
}

int SynchroniseFolder(const std::string& folder) {
    const FILE_DESCRIPTOR directory(OpenFile(folder, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (directory.Get() < 0) return errno;
    return UnlessInterrupted([&] { return fsync(directory.Get()); }) == 0 ? 0 : errno;
}
