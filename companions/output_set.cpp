#include "companions/output_set.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "companions/companion_error.h"
#include "companions/temporary_names.h"

namespace fs = std::filesystem;

namespace {

[[noreturn]] void RefuseSystemError(const std::string& path, const char* step) {
    throw COMPANION_ERROR(path + ": can not " + step + ": " + std::strerror(errno));
}

/// Users link outputs to other disks: the file behind the link is the output.
std::string BehindLink(const std::string& path) {
    std::error_code ignored;
    if (!fs::is_symlink(path, ignored)) return path;
    const fs::path target = fs::weakly_canonical(path, ignored);
    return target.empty() ? path : target.string();
}

std::string CreateTemporary(const std::string& path) {
    std::string name = fs::path(path).replace_filename("." + fs::path(path).filename().string() + ".XXXXXX").string();
    const int descriptor = mkostemp(name.data(), O_CLOEXEC);
    if (descriptor < 0) RefuseSystemError(path, "create");
    RememberTemporary(name);
    close(descriptor);
    return name;
}

/// What the file would have got from open(), or what the present one has.
mode_t PermissionsFor(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) == 0) return status.st_mode & 07777U;
    const mode_t mask = umask(0);
    umask(mask);
    return 0666U & ~mask;
}

void Flush(const std::string& path) {
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) return;
    fsync(descriptor);
    close(descriptor);
}

}  // namespace

OUTPUT_SET::~OUTPUT_SET() {
    if (!committed_) TakeBack();
    for (const OUTPUT& output : outputs_) {
        unlink(output.temporary.c_str());
        ForgetTemporary(output.temporary);
    }
    if (committed_) return;
    for (auto folder = new_folders_.rbegin(); folder != new_folders_.rend(); ++folder) rmdir(folder->c_str());
}

void OUTPUT_SET::AddFolder(const std::string& path) {
    if (fs::is_directory(path)) return;
    if (mkdir(path.c_str(), 0777) != 0) RefuseSystemError(path, "make the folder");
    new_folders_.push_back(path);
}

void OUTPUT_SET::RequireReplaceable(const std::string& path) const {
    std::error_code ignored;
    for (const std::string& input : inputs_) {
        if (fs::equivalent(input, path, ignored)) throw COMPANION_ERROR(path + ": is an input, which is never changed");
    }
    const fs::file_status status = fs::status(path, ignored);
    if (!fs::exists(status)) return;
    if (!fs::is_regular_file(status)) throw COMPANION_ERROR(path + ": is there already and is no regular file");
    if (!force_) throw COMPANION_ERROR(path + ": is there already; --force replaces it");
}

std::string OUTPUT_SET::Add(const std::string& path) {
    RequireReplaceable(path);
    OUTPUT output;
    output.path = BehindLink(path);
    for (const OUTPUT& other : outputs_) {
        if (other.path == output.path) throw COMPANION_ERROR(path + ": is named for two outputs");
    }
    output.temporary = CreateTemporary(output.path);
    outputs_.push_back(output);
    return output.temporary;
}

void OUTPUT_SET::Place(OUTPUT& output) const {
    const char* const from = output.temporary.c_str();
    const char* const to = output.path.c_str();
    RequireReplaceable(output.path);  // again: exchanging would put a folder of this name aside
    if (chmod(from, PermissionsFor(output.path)) != 0) RefuseSystemError(output.path, "set the permissions");
    if (force_ && renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_EXCHANGE) == 0) {
        output.exchanged = true;
    } else if (renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) != 0) {
        // Some network file systems know neither flag.
        if (errno != EINVAL || rename(from, to) != 0) RefuseSystemError(output.path, "put the file in place");
    }
    output.placed = true;
}

void OUTPUT_SET::Commit() {
    const TEMPORARY_NAMES_KEPT until_all_are_placed;
    for (const OUTPUT& output : outputs_) Flush(output.temporary);
    for (OUTPUT& output : outputs_) Place(output);
    for (const OUTPUT& output : outputs_) Flush(fs::path(output.path).parent_path() / ".");
    committed_ = true;
}

void OUTPUT_SET::TakeBack() noexcept {
    for (OUTPUT& output : outputs_) {
        if (!output.placed) continue;
        const char* const temporary = output.temporary.c_str();
        if (output.exchanged) {
            renameat2(AT_FDCWD, temporary, AT_FDCWD, output.path.c_str(), RENAME_EXCHANGE);
        } else {
            unlink(output.path.c_str());
        }
        output.placed = false;
    }
}
