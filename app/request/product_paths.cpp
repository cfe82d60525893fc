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
#include "lib/baselib/logging/logging.h"

namespace {

struct NAMED_FILE {
    std::string key;
    std::string path;
};

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

std::vector<NAMED_FILE> Products(const RUN_CONFIGURATION& configuration) {
    const std::vector<NAMED_FILE> all = {
        {"SIMU_PHASE", configuration.phase_file},       {"RG_COREG", configuration.range_shift_file},
        {"AZ_COREG", configuration.azimuth_shift_file}, {"X_EARTH", configuration.x_earth_file},
        {"Y_EARTH", configuration.y_earth_file},        {"Z_EARTH", configuration.z_earth_file},
        {"H_EARTH", configuration.height_file}};
    std::vector<NAMED_FILE> wanted;
    for (const NAMED_FILE& file : all) {
        if (!file.path.empty()) wanted.push_back(file);
    }
    return wanted;
}

std::vector<NAMED_FILE> OtherFiles(const RUN_CONFIGURATION& configuration) {
    return {{"MASTER_POOL", configuration.master_pool}, {"SLAVE_POOL", configuration.slave_pool},
            {"INSAR_POOL", configuration.insar_pool},   {"log_pp", configuration.log_pool},
            {"DEM_POOL", configuration.dem_pool},       {"DEM", configuration.dem_file},
            {"pcf", configuration.configuration_file},  {"lfn", Log().LogFileName()}};
}

void RefuseSharedFiles(const RUN_CONFIGURATION& configuration) {
    std::vector<std::pair<NAMED_FILE, FILE_IDENTITY>> taken;
    for (const NAMED_FILE& file : OtherFiles(configuration)) {
        if (const auto identity = IdentityOf(file.path)) taken.emplace_back(file, *identity);
    }
    for (const NAMED_FILE& product : Products(configuration)) {
        const auto identity = IdentityOf(product.path);
        if (!identity) continue;
        for (const auto& [file, other] : taken) {
            if (other != *identity) continue;
            Log().Message(LOGGING_LEVEL::ALARM,
                          "configuration: key \"%s\": the product %s is the file %s of key \"%s\"", product.key.c_str(),
                          product.path.c_str(), file.path.c_str(), file.key.c_str());
            throw ERROR_PARAMETER();
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

void RequireWritable(const NAMED_FILE& product) {
    const int descriptor = product.path.back() == '/' ? (errno = EISDIR, -1) : TryToWrite(product.path);
    if (descriptor >= 0) {
        close(descriptor);
        return;
    }
    Log().Message(LOGGING_LEVEL::ALARM, "configuration: key \"%s\": the product %s can not be written: %s",
                  product.key.c_str(), product.path.c_str(), std::strerror(errno));
    throw ERROR_CAN_NOT_CREATE_FILE();
}

}  // namespace

void CheckProductPaths(const SIMULATION_STATE& state) {
    RefuseSharedFiles(state.configuration);
    for (const NAMED_FILE& product : Products(state.configuration)) RequireWritable(product);
}
