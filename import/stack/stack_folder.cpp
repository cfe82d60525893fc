#include "import/stack/stack_folder.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "companions/companion_error.h"
#include "companions/input_file.h"
#include "companions/output_set.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* kTemporary = ".new.";
constexpr std::size_t kTableLimitBytes = std::size_t{512} << 20U;

[[noreturn]] void Refuse(const std::string& path, const char* step) {
    throw COMPANION_ERROR(path + ": can not " + step + ": " + std::strerror(errno));
}

void MakeFolder(const std::string& path) {
    if (mkdir(path.c_str(), 0777) != 0 && errno != EEXIST) Refuse(path, "make the folder");
}

std::string FirstLineThatDiffers(const std::string& text, const std::string& other) {
    std::istringstream lines(text);
    std::istringstream other_lines(other);
    std::string line;
    std::string other_line;
    while (std::getline(lines, line)) {
        if (!std::getline(other_lines, other_line)) other_line.clear();
        if (line != other_line) return line;
    }
    return "";
}

}  // namespace

STACK_FOLDER::STACK_FOLDER(std::string path, const std::string& settings) : path_(std::move(path)) {
    is_new_ = mkdir(path_.c_str(), 0777) == 0;
    if (!is_new_ && errno != EEXIST) Refuse(path_, "make the folder");
    try {
        Open();
        if (!is_new_) RequireSettings(settings);
        RemoveLeftOvers();
        temporary_ = path_ + "/" + kTemporary + "XXXXXX";
        if (mkdtemp(temporary_.data()) == nullptr) Refuse(path_, "make a folder in it");
        MakeFolder(temporary_ + "/images");
        MakeFolder(temporary_ + "/pairs");
        WriteFile(temporary_ + "/stack.txt", settings);
    } catch (...) {
        std::error_code ignored;
        if (!temporary_.empty()) fs::remove_all(temporary_, ignored);
        if (is_new_) rmdir(path_.c_str());
        if (descriptor_ >= 0) close(descriptor_);
        throw;
    }
}

STACK_FOLDER::~STACK_FOLDER() {
    std::error_code ignored;
    fs::remove_all(temporary_, ignored);
    if (is_new_ && !committed_) rmdir(path_.c_str());
    close(descriptor_);
}

void STACK_FOLDER::Open() {
    descriptor_ = open(path_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor_ < 0) Refuse(path_, "open the folder");
    const bool is_locked = flock(descriptor_, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    if (is_locked) throw COMPANION_ERROR(path_ + ": another velmora-import is at work on this stack: wait for its end");
}

void STACK_FOLDER::RequireSettings(const std::string& settings) const {
    const std::string file = path_ + "/stack.txt";
    if (!fs::exists(file)) {
        for (const auto& entry : fs::directory_iterator(path_)) {
            const std::string name = entry.path().filename().string();
            if (name.rfind(kTemporary, 0) == 0) continue;
            // Of a first call that was killed before it had put stack.txt in place.
            if ((name == "images" || name == "pairs") && fs::is_empty(entry.path())) continue;
            throw COMPANION_ERROR(path_ + ": is no stack (it has no stack.txt) and is not empty");
        }
        return;
    }
    const std::string present = ReadWholeFile(file, kTableLimitBytes);
    if (present == settings) return;
    throw COMPANION_ERROR(
        file + ": the pairs there were made with other settings: " + Quoted(FirstLineThatDiffers(present, settings)) +
        ", now " + Quoted(FirstLineThatDiffers(settings, present)) + ": expected the same, or another folder");
}

/// The lock is held: whoever made them is gone.
void STACK_FOLDER::RemoveLeftOvers() const {
    for (const auto& entry : fs::directory_iterator(path_)) {
        if (entry.path().filename().string().rfind(kTemporary, 0) == 0) fs::remove_all(entry.path());
    }
}

bool STACK_FOLDER::HasImage(const std::string& name, const std::string& pool_text) const {
    const std::string pool = path_ + "/images/" + name + ".pool";
    if (!fs::exists(pool)) return false;
    if (ReadWholeFile(pool, kTableLimitBytes) == pool_text) return true;
    throw COMPANION_ERROR(pool + ": the stack has another image of the name " + name +
                          " (or other state vectors): expected a name of its own");
}

bool STACK_FOLDER::HasPair(const std::string& pair) const {
    return fs::exists(path_ + "/pairs/" + pair);
}

std::string STACK_FOLDER::AddPair(const std::string& pair) {
    const std::string folder = temporary_ + "/pairs/" + pair;
    MakeFolder(folder);
    new_pairs_.push_back(pair);
    return folder;
}

void STACK_FOLDER::WriteFile(const std::string& path, const std::string& text) const {
    std::ofstream file(path, std::ios::binary);
    file << text;
    file.close();
    if (!file) throw COMPANION_ERROR(path_ + ": can not be written (disk full?)");
}

void STACK_FOLDER::Place(const std::string& part, const std::string& name) const {
    const std::string to = path_ + part + name;
    if (rename((temporary_ + part + name).c_str(), to.c_str()) != 0) Refuse(to, "put it in place");
}

void STACK_FOLDER::Commit(const std::vector<std::string>& new_images) {
    // Once for all: tens of thousands of small files would take minutes one by one.
    if (syncfs(descriptor_) != 0) Refuse(path_, "write to the disk");
    MakeFolder(path_ + "/images");
    MakeFolder(path_ + "/pairs");
    committed_ = true;
    if (!fs::exists(path_ + "/stack.txt")) Place("/", "stack.txt");
    for (const std::string& image : new_images) Place("/images/", image + ".pool");
    for (const std::string& pair : new_pairs_) Place("/pairs/", pair);
    if (syncfs(descriptor_) != 0) Refuse(path_, "write to the disk");
}

void STACK_FOLDER::AppendToTable(const std::string& names, const std::vector<ROW>& rows) const {
    const std::string file = path_ + "/pairs.csv";
    const std::string present = fs::exists(file) ? ReadWholeFile(file, kTableLimitBytes) : names + "\n";
    std::set<std::string> listed;
    std::istringstream lines(present);
    for (std::string line; std::getline(lines, line);) listed.insert(line.substr(0, line.find(',')));
    std::string text = present;
    if (text.back() != '\n') text += '\n';
    for (const ROW& row : rows) {
        if (listed.insert(row.pair).second) text += row.text + "\n";
    }
    if (text == present && fs::exists(file)) return;
    OUTPUT_SET outputs(true);
    WriteFile(outputs.Add(file), text);
    outputs.Commit();
}
