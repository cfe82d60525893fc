#include "lib/baselib/mdb/mdb.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <vector>

#include "lib/baselib/logging/logging.h"

namespace {

constexpr std::array<const char*, 5> kStopModeTexts = {"invalid", "stop_before", "stop_exact", "stop_nearest",
                                                       "stop_after"};

void LogAlarm(const char* text, const std::string& path, const std::string& reason) {
    Log().Message(LOGGING_LEVEL::ALARM, "%s: %s: %s", text, path.c_str(), reason.c_str());
}

/// Logs what happened to which file, then throws the text.
[[noreturn]] void Fail(const char* text, const std::string& path, const std::string& reason) {
    LogAlarm(text, path, reason);
    throw text;
}

}  // namespace

MDB_STOP_MODE StopModeFromText(const std::string& text) {
    for (size_t mode = 1; mode < kStopModeTexts.size(); ++mode)
        if (text == kStopModeTexts[mode]) return static_cast<MDB_STOP_MODE>(mode);
    return MDB_STOP_MODE::INVALID;
}

const char* StopModeText(MDB_STOP_MODE mode) {
    const auto number = static_cast<size_t>(mode);
    return kStopModeTexts[number < kStopModeTexts.size() ? number : 0];
}

void MDB::Open(const std::string& path, const std::string& file_name, MDB_OPEN_MODE mode) {
    if (path.empty()) throw "MDB::Open(): no path selected";
    if (file_name.empty()) throw "MDB::Open(): no file selected";
    Close();
    path_ = path;
    file_name_ = path + "/" + file_name;
    mode_ = mode;
    OpenDirectory();
    ReadRecordType();
    if (!file_.Open(file_name_, mode == MDB_OPEN_MODE::READ_WRITE))
        Fail("can not open mdb-file", file_name_, std::strerror(errno));
    state_at_open_ = StateNow();
}

void MDB::Close() {
    file_.Close();
    record_type_ = MDB_RECORD();
    current_ = MDB_RECORD();
    state_at_open_ = FILE_STATE();
}

void MDB::OpenDirectory() {
    std::error_code error;
    if (std::filesystem::is_directory(path_, error)) return;
    if (mode_ == MDB_OPEN_MODE::READ_ONLY)
        Fail("MDB is opened read only: can not create directory", path_, "no such directory");
    std::filesystem::create_directories(path_, error);
    if (error) Fail("MDB: can not create directory", path_, error.message());
}

void MDB::ReadRecordType() {
    const std::string definition = path_ + "/" + kDefinitionName;
    RECORD_FILE file;
    if (!file.Open(definition, false)) {
        if (errno == ENOENT) return;  // a database whose type is still to be set
        Fail("MDB: can not read record type definition", definition, std::strerror(errno));
    }
    std::string line;
    std::vector<RECORD_ITEM> items;
    try {
        while (file.ReadLine(line) && items.size() <= MDB_RECORD::kMaxItemCount)
            if (line.find_first_not_of(" \t") != std::string::npos) items.push_back(ItemFromDefinition(line));
        ARRAY<RECORD_ITEM> list(0, static_cast<int>(items.size()));
        std::copy(items.begin(), items.end(), list.begin());
        record_type_ = MDB_RECORD(list);
    } catch (const char* reason) {
        LogAlarm(reason, definition, "last line read: " + line.substr(0, 80));
        throw;
    }
}

void MDB::SetRecordType(const MDB_RECORD& type) {
    if (!IsOpen()) throw "MDB::SetRecordType(): no file open";
    if (!record_type_.IsEmpty()) {
        if (record_type_.SameType(type)) return;
        throw "MDB: database has another record type";
    }
    if (mode_ == MDB_OPEN_MODE::READ_ONLY) throw "MDB is opened read only: can not write record type";
    const std::string definition = path_ + "/" + kDefinitionName;
    RECORD_FILE file;
    if (!file.Open(definition, true) || !file.Append(type.DefinitionText()))
        Fail("MDB: can not write record type definition", definition, std::strerror(errno));
    record_type_ = type;
}

const MDB_RECORD& MDB::GetRecordType() const {
    if (record_type_.IsEmpty()) throw "MDB::GetRecordType(): record type is not set";
    return record_type_;
}

const std::string& MDB::GetPathInfo() const {
    if (path_.empty()) throw "MDB::GetPathInfo(): no path was set before";
    return path_;
}

void MDB::Rewind() {
    if (!IsOpen()) throw "MDB::Rewind(): no file open";
    file_.Seek(0);
    current_ = MDB_RECORD();
}

bool MDB::Read() {
    if (!IsOpen()) throw "MDB::Read(): no file open";
    if (record_type_.IsEmpty()) throw "MDB::Read(): no valid record type";
    const long long start = SkipEmptyLines();
    if (start >= file_.Size()) return false;
    const MDB_RECORD record = RecordAt(start);
    if (!current_.IsEmpty() && std::is_gt(CompareValues(current_.KeyItem(), record.KeyItem())))
        RefuseRecord(start, "the records are not in the order of their keys");
    current_ = record;
    return true;
}

void MDB::Write(const MDB_RECORD& record) {
    if (!IsOpen()) throw "MDB::Write(): no file open";
    if (record_type_.IsEmpty()) throw "MDB::Write(): no valid record type";
    if (mode_ == MDB_OPEN_MODE::READ_ONLY) throw "MDB is opened read only: can not write data record";
    if (!record_type_.SameType(record)) throw "MDB::Write(): record has not the record type";
    for (int i = 0; i < record.Count(); ++i)
        if (const RECORD_ITEM& item = record.Item(i); !item.IsReadable())
            Fail("MDB::Write(): value can not be read again", file_name_, item.KeyName() + ": " + item.ValueText());
    const long long next = file_.Position();
    CheckCanFollowLast(record);
    file_.Seek(next);
    if (!file_.Append(record.DataText()))
        Fail("can not write MDB_RECORD into mdb-file", file_name_, std::strerror(errno));
}

/// The file must be empty or end with a whole record, whose key is not greater.
void MDB::CheckCanFollowLast(const MDB_RECORD& record) {
    if (file_.Size() == 0) return;
    const MDB_RECORD before = RecordAt(std::max(LastRecordStart(), 0LL));
    if (file_.Position() < file_.Size()) RefuseRecord(file_.Position(), "unexpected lines behind the last record");
    if (std::is_gt(CompareValues(before.KeyItem(), record.KeyItem())))
        throw "MDB::Write(): key lies before the last record";
}

void MDB::CheckCanSearch() const {
    if (!IsOpen()) throw "MDB::GotoRecord(): no file open";
    if (record_type_.IsEmpty()) throw "MDB::GotoRecord(): no valid record type";
}

const MDB_RECORD& MDB::GetCurrentRecord() const {
    if (current_.IsEmpty()) throw "MDB::GetCurrentRecord(): no record data available";
    return current_;
}

const RECORD_ITEM& MDB::operator[](const std::string& key_name) const {
    if (!IsOpen()) throw "MDB[\"key\"](): no file open";
    if (record_type_.IsEmpty()) throw "MDB[\"key\"](): no valid record type";
    if (current_.IsEmpty()) throw "MDB[\"key\"](): no valid data available";
    return current_[key_name];
}

long long MDB::SkipEmptyLines() {
    std::string line;
    long long start = file_.Position();
    while (file_.ReadLine(line) && line.find_first_not_of(" \t") == std::string::npos) start = file_.Position();
    return start;
}

/// Reads the record that begins at the position.
MDB_RECORD MDB::RecordAt(long long position) {
    const RECORD_ITEM key = KeyAt(position);
    MDB_RECORD record = record_type_;
    for (int i = 0; i < record.Count(); ++i) ReadItem(record.Item(i), true);
    if (std::is_neq(CompareValues(key, record.KeyItem()))) RefuseRecord(position, "the key and the key item differ");
    return record;
}

/// @param indented  whether the line begins with a blank, as those of the items do
void MDB::ReadItem(RECORD_ITEM& item, bool indented) {
    const long long position = file_.Position();
    std::string line;
    std::string name;
    std::string value;
    if (!file_.ReadLine(line) || !file_.LineEnded()) RefuseRecord(position, "the file ends within a record");
    const bool begins_with_blank = !line.empty() && (line.front() == ' ' || line.front() == '\t');
    if (!SplitNameAndValue(line, name, value) || name != item.KeyName() || begins_with_blank != indented)
        RefuseRecord(position, (indented ? "expected item " : "expected a record of key ") + item.KeyName());
    try {
        item.SetFromText(value);
    } catch (const char* reason) {
        RefuseRecord(position, item.KeyName() + ": " + reason + ": " + value.substr(0, 80));
    }
}

void MDB::RefuseRecord(long long position, const std::string& reason) {
    Log().Message(LOGGING_LEVEL::ALARM, "MDB: %s: byte %lld: %s", file_name_.c_str(), position, reason.c_str());
    throw "MDB: invalid data record";
}
