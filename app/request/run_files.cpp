#include "app/request/run_files.h"

#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <fstream>
#include <optional>
#include <string_view>

#include "app/report/report_file.h"
#include "app/request/line_of_sight_files.h"
#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/log_and_throw.h"
#include "lib/baselib/image/output_path.h"
#include "lib/baselib/logging/logging.h"
#include "lib/baselib/mdb/mdb.h"
#include "lib/baselib/sidecar/product_kind.h"
#include "lib/baselib/sidecar/vrt_sidecar.h"

namespace {

/// Of a file: device and inode. Of a name in a folder: those of the folder, and the name.
struct PLACE {
    dev_t device = 0;
    ino_t inode = 0;
    std::string name;

    bool operator==(const PLACE&) const = default;
};

struct RUN_FILE {
    std::string key;
    std::string role;
    FILE_USE use;
    std::string path;
    std::vector<PLACE> places;  ///< its name, and what its links lead to; none for what no other role can harm
};

struct COLLISION {
    const RUN_FILE* written;
    const RUN_FILE* other;
};

std::optional<PLACE> PlaceOfName(const std::string& path) {
    const FOLDER_AND_NAME parts(path);
    struct stat status {};
    if (stat(parts.FolderPath(), &status) != 0) return std::nullopt;
    return PLACE{status.st_dev, status.st_ino, parts.name};
}

std::optional<PLACE> PlaceBehindLinks(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) == 0) return PLACE{status.st_dev, status.st_ino, ""};
    const std::string target = BehindLinks(path);
    return target.empty() ? std::nullopt : PlaceOfName(target);
}

bool IsNullDevice(const std::string& path) {
    struct stat status {};
    constexpr unsigned kMemoryDevices = 1;
    constexpr unsigned kNull = 3;
    return stat(path.c_str(), &status) == 0 && S_ISCHR(status.st_mode) &&
           status.st_rdev == makedev(kMemoryDevices, kNull);
}

bool IsLink(const std::string& path) {
    struct stat status {};
    return lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode);
}

std::vector<PLACE> PlacesOf(const std::string& path, FILE_USE use) {
    std::vector<PLACE> places;
    if (IsNullDevice(path)) return places;
    if (const auto place = PlaceOfName(path)) places.push_back(*place);
    if (use == FILE_USE::REPLACED && IsLink(path)) return places;
    if (const auto place = PlaceBehindLinks(path)) places.push_back(*place);
    return places;
}

/// All files of one run.
class RUN_FILES {
  public:
    void AddFilesOf(const CONTROLLER_FILES& files) {
        const std::string* const paths[] = {&files.control, &files.log, &files.ok, &files.error, &files.stop};
        const auto* path = std::begin(paths);  // the table's rows stand in this order
        for (const FILE_ROLE& role : kFileRoles)
            if (role.named_by == NAMED_BY::CONTROLLER) Add(role, **path++);
    }

    void AddRecordDatabase(const char* pool_key, const std::vector<std::string>& paths) {
        for (const std::string& path : paths) Add(RoleOf(pool_key, NAMED_BY::POOL), path);
    }

    void AddParameter(const std::string& key, const std::string& path) { Add(RoleOf(key, NAMED_BY::PARAMETER), path); }

    void AddProduct(const PRODUCT_KIND& kind, const std::string& path, bool with_sidecar) {
        Add({kind.key, kind.description, FILE_USE::WRITTEN, NAMED_BY::PARAMETER}, path);
        struct stat status {};
        const bool is_device = stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode);
        if (with_sidecar && !path.empty() && !is_device)
            Add({kind.key, "sidecar", FILE_USE::WRITTEN, NAMED_BY::PARAMETER}, VrtPath(path));
    }

    [[nodiscard]] std::vector<COLLISION> Collisions() const {
        std::vector<COLLISION> found;
        for (auto file = files_.begin(); file != files_.end(); ++file) {
            for (auto other = files_.begin(); other != file; ++other) {
                if (!Collide(*file, *other)) continue;
                const bool is_written = file->use != FILE_USE::READ;
                found.push_back({&*(is_written ? file : other), &*(is_written ? other : file)});
            }
        }
        return found;
    }

  private:
    static const FILE_ROLE& RoleOf(std::string_view key, NAMED_BY named_by) {
        return *std::ranges::find_if(kFileRoles,
                                     [&](const FILE_ROLE& row) { return key == row.key && row.named_by == named_by; });
    }

    void Add(const FILE_ROLE& role, const std::string& path) {
        if (!path.empty()) files_.push_back({role.key, role.name, role.use, path, PlacesOf(path, role.use)});
    }

    static bool Collide(const RUN_FILE& a, const RUN_FILE& b) {
        const bool same_role = a.key == b.key && a.role == b.role;
        const bool pools = (a.key == "log_pp" && b.key == "INSAR_POOL") || (a.key == "INSAR_POOL" && b.key == "log_pp");
        const bool only_read = a.use == FILE_USE::READ && b.use == FILE_USE::READ;
        return !same_role && !pools && !only_read && std::ranges::find_first_of(a.places, b.places) != a.places.end();
    }

    std::vector<RUN_FILE> files_;
};

std::vector<std::string> LinesOf(const std::vector<COLLISION>& collisions) {
    std::vector<std::string> lines;
    for (const auto& [written, other] : collisions) {
        lines.push_back("configuration: key \"" + written->key + "\": the " + written->role + " " + written->path +
                        " is the " + other->role + " " + other->path + " of key \"" + other->key + "\"");
    }
    if (!lines.empty())
        lines.emplace_back("what a run writes may be no other of its files, but the log pool may be the InSAR pool");
    return lines;
}

/// A level's tag of five characters, then " : "; or nothing.
bool BeginsAsLog(const std::string& path) {
    std::array<char, 8> beginning{};
    std::ifstream file(path, std::ios::binary);
    file.read(beginning.data(), beginning.size());
    return file.gcount() == 0 || std::string_view(beginning.data(), beginning.size()).substr(5) == " : ";
}

/// The record database of an orbit is known when the pools are read; by then the log has grown.
std::string ProblemOfLog(const std::string& path) {
    const std::string definition = FOLDER_AND_NAME(BehindLinks(path)).PathOf(MDB::kDefinitionName);
    struct stat status {};
    if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode) || stat(definition.c_str(), &status) != 0 ||
        BeginsAsLog(path))
        return "";
    return "configuration: key \"lfn\": the log file " + path + " is no log, and lies in the record database " +
           definition;
}

bool Concern(const std::vector<COLLISION>& collisions, std::string_view role) {
    return std::ranges::any_of(
        collisions, [&](const COLLISION& pair) { return pair.written->role == role || pair.other->role == role; });
}

/// One key names the three files of the line of sight.
std::vector<std::string> PossiblePaths(const CONTROLLER_IFC& controller, std::string_view product_key) {
    constexpr std::string_view kLineOfSight = "LINE_OF_SIGHT";
    if (!product_key.starts_with(kLineOfSight)) return controller.PossibleValues(std::string(product_key));
    std::vector<std::string> paths = controller.PossibleValues(std::string(kLineOfSight));
    std::erase(paths, "");
    for (std::string& path : paths) path = LineOfSightPath(path, static_cast<char>(std::tolower(product_key.back())));
    return paths;
}

void RequireReportPath(const SOURCED_TEXT& report) {
    const std::string problem = report.Given() ? ReportPathProblem(report.text) : "";
    if (!problem.empty())
        LogAndThrow<ERROR_CAN_NOT_CREATE_FILE>("configuration: key \"%s\": the report %s can not be written: %s",
                                               report.source.key.c_str(), report.Text(), problem.c_str());
}

}  // namespace

FILE_PROBLEMS CheckFilesOfParameters(const CONTROLLER_IFC& controller) {
    RUN_FILES files;
    const CONTROLLER_FILES own = controller.Files();
    files.AddFilesOf(own);
    const bool sidecars = !controller.PossibleValues("VRT_SIDECARS").empty();
    for (const FILE_ROLE& role : kFileRoles) {
        if (role.named_by != NAMED_BY::PARAMETER) continue;
        for (const std::string& path : controller.PossibleValues(role.key)) files.AddParameter(role.key, path);
    }
    for (const PRODUCT_KIND& kind : ProductKinds())
        for (const std::string& path : PossiblePaths(controller, kind.key)) files.AddProduct(kind, path, sidecars);
    const std::vector<COLLISION> collisions = files.Collisions();
    FILE_PROBLEMS problems{LinesOf(collisions), Concern(collisions, "log file"), Concern(collisions, "OK file"),
                           Concern(collisions, "ERROR file"), Concern(collisions, "report")};
    const std::string log_problem = ProblemOfLog(own.log);
    if (log_problem.empty()) return problems;
    problems.lines.push_back(log_problem);
    problems.log = true;
    return problems;
}

void CheckFilesOfRun(const REQUEST& request, const ACQUISITIONS& acquisitions) {
    RUN_FILES files;
    files.AddFilesOf(request.controller_files);
    files.AddRecordDatabase("MASTER_POOL", acquisitions.master.orbit.RecordFiles());
    files.AddRecordDatabase("SLAVE_POOL", acquisitions.slave.orbit.RecordFiles());
    for (const SOURCED_TEXT& file : request.OtherFiles()) files.AddParameter(file.source.key, file.text);
    for (const SOURCED_TEXT& file : request.ProductFiles())
        files.AddProduct(*FindProductKind(file.source.key), file.text, request.sidecars);
    const std::vector<std::string> lines = LinesOf(files.Collisions());
    for (const std::string& line : lines) Log().Message(LOGGING_LEVEL::ALARM, "%s", line.c_str());
    if (!lines.empty()) throw ERROR_PARAMETER();
    RequireReportPath(request.report);
}
