#include "app/request/product_paths.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/log_and_throw.h"

namespace {

/// What tells two paths to one file: device and inode of the file or, while it does not exist, of its folder plus its
/// name.
struct FILE_IDENTITY {
    dev_t device = 0;
    ino_t inode = 0;
    std::string name;

    bool operator==(const FILE_IDENTITY&) const = default;
};

std::string FolderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

std::optional<FILE_IDENTITY> IdentityOf(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) == 0) return FILE_IDENTITY{status.st_dev, status.st_ino, ""};
    if (stat(FolderOf(path).c_str(), &status) != 0) return std::nullopt;
    return FILE_IDENTITY{status.st_dev, status.st_ino, path.substr(path.rfind('/') + 1)};
}

void RefuseSharedFiles(const REQUEST& request) {
    std::vector<std::pair<SOURCED_TEXT, FILE_IDENTITY>> taken;
    for (const SOURCED_TEXT& file : request.OtherFiles()) {
        if (const auto identity = IdentityOf(file.text)) taken.emplace_back(file, *identity);
    }
    for (const SOURCED_TEXT& product : request.ProductFiles()) {
        const auto identity = IdentityOf(product.text);
        if (!identity) continue;
        for (const auto& [file, other] : taken) {
            if (other == *identity)
                LogAndThrow<ERROR_PARAMETER>("configuration: key \"%s\": the product %s is the file %s of key \"%s\"",
                                             product.source.key.c_str(), product.Text(), file.Text(),
                                             file.source.key.c_str());
        }
        taken.emplace_back(product, *identity);
    }
}

/// Opens without blocking on a pipe and without touching the content; a new file is an unnamed one in the folder.
int TryToWrite(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) == 0) return open(path.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
    const std::string folder = FolderOf(path);
    const int unnamed = open(folder.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600);
    if (unnamed >= 0 || (errno != EOPNOTSUPP && errno != EISDIR && errno != EINVAL)) return unnamed;
    std::string named = folder + "/velmora_XXXXXX";  // a file system without unnamed files
    const int descriptor = mkstemp(named.data());
    if (descriptor >= 0) unlink(named.c_str());
    return descriptor;
}

void RequireWritable(const SOURCED_TEXT& product) {
    const int descriptor = product.text.back() == '/' ? (errno = EISDIR, -1) : TryToWrite(product.text);
    if (descriptor < 0)
        LogAndThrow<ERROR_CAN_NOT_CREATE_FILE>("configuration: key \"%s\": the product %s can not be written: %s",
                                               product.source.key.c_str(), product.Text(), std::strerror(errno));
    close(descriptor);
}

}  // namespace

void CheckProductPaths(const REQUEST& request) {
    RefuseSharedFiles(request);
    for (const SOURCED_TEXT& product : request.ProductFiles()) RequireWritable(product);
}
