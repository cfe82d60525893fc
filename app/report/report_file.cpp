#include "app/report/report_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fstream>

#include "app/report/utc_text.h"
#include "lib/baselib/image/file_descriptor.h"
#include "lib/baselib/image/left_over_files.h"

namespace {

constexpr std::string_view kBeginning = "{\n  \"report_version\": ";

/// Whether there is a file that is no report: it stays.
bool IsForeign(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::string beginning(kBeginning.size(), '\0');
    file.read(beginning.data(), static_cast<std::streamsize>(beginning.size()));
    return file.gcount() > 0 && beginning != kBeginning;
}

bool WriteAll(int file, std::string_view text) noexcept {
    while (!text.empty()) {
        const ssize_t count = write(file, text.data(), text.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        text.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

/// Exit statuses are 0 to 255.
std::string_view DigitsOf(int number, char (&digits)[4]) noexcept {
    int length = 0;
    if (number >= 100) digits[length++] = static_cast<char>('0' + number / 100 % 10);
    if (number >= 10) digits[length++] = static_cast<char>('0' + number / 10 % 10);
    digits[length++] = static_cast<char>('0' + number % 10);
    return {digits, static_cast<std::size_t>(length)};
}

bool WriteDocument(int file, std::string_view document, const RUN_END& end) noexcept {
    char digits[4];
    char now[kUtcTextBytes];
    UtcText(std::time(nullptr), now);
    return WriteAll(file, document) && WriteAll(file, ",\n  \"end\": \"") && WriteAll(file, now) &&
           WriteAll(file, "\",\n  \"exit_status\": ") && WriteAll(file, DigitsOf(end.exit_status, digits)) &&
           WriteAll(file, ",\n  \"last_error\": ") &&
           WriteAll(file, end.last_error.empty() ? "null" : end.last_error) && WriteAll(file, "\n}\n");
}

}  // namespace

REPORT_FILE::REPORT_FILE(const std::string& path)
    : path_(BehindLinks(path)),
      temporary_(TemporaryPath(FOLDER_AND_NAME(path_), 0)),
      usable_(ReportPathProblem(path).empty()) {}

int REPORT_FILE::Write(std::string_view document, const RUN_END& end) const noexcept {
    if (!usable_) return EEXIST;
    constexpr int kNewOrOurs = O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC;
    const int file = UnlessInterrupted([this] { return open(temporary_.c_str(), kNewOrOurs, 0666); });
    if (file < 0) return errno;
    flock(file, LOCK_EX | LOCK_NB);  // what nobody holds is a left-over
    errno = 0;
    bool good = WriteDocument(file, document, end) && UnlessInterrupted([=] { return fsync(file); }) == 0;
    int error = good ? 0 : errno;
    if (close(file) != 0 && errno != EINTR && good) {
        good = false;
        error = errno;
    }
    if (good && rename(temporary_.c_str(), path_.c_str()) == 0) return 0;
    if (good) error = errno;
    unlink(temporary_.c_str());
    return error == 0 ? EIO : error;
}

std::string ReportPathProblem(const std::string& path) {
    const std::string target = BehindLinks(path);
    if (target.empty()) return std::strerror(errno);
    struct stat status {};
    if (stat(target.c_str(), &status) == 0 && !S_ISREG(status.st_mode))
        return "is there already and is no regular file";
    if (IsForeign(target)) return "is there already and is no report";
    if (path.back() == '/') return "names a folder";
    return access(FOLDER_AND_NAME(target).FolderPath(), W_OK | X_OK) == 0 ? "" : std::strerror(errno);
}
