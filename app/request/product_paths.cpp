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

#include "app/report/report_file.h"
#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/log_and_throw.h"
#include "lib/baselib/image/output_path.h"

namespace {

/// What tells two paths to one file: device and inode of the file or, while it does not exist, of its folder plus its
/// name.
struct FILE_IDENTITY {
    dev_t device = 0;
    ino_t inode = 0;
    std::string name;

    bool operator==(const FILE_IDENTITY&) const = default;
};

std::optional<FILE_IDENTITY> IdentityOf(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) == 0) return FILE_IDENTITY{status.st_dev, status.st_ino, ""};
    const FOLDER_AND_NAME place(path);
    if (stat(place.FolderPath(), &status) != 0) return std::nullopt;
    return FILE_IDENTITY{status.st_dev, status.st_ino, place.name};
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

void RequireReportPath(const SOURCED_TEXT& report) {
    const std::string problem = report.Given() ? ReportPathProblem(report.text) : "";
    if (!problem.empty())
        LogAndThrow<ERROR_CAN_NOT_CREATE_FILE>("configuration: key \"%s\": the report %s can not be written: %s",
                                               report.source.key.c_str(), report.Text(), problem.c_str());
}

}  // namespace

void CheckProductPaths(const REQUEST& request) {
    RefuseSharedFiles(request);
    RequireReportPath(request.report);
}
