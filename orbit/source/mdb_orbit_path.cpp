#include "orbit/source/mdb_orbit_path.h"

#include <cstdio>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/log_and_throw.h"
#include "lib/baselib/logging/logging.h"

namespace {

constexpr ID_TEXT kEndOfTable = {-1, nullptr};

constexpr ID_TEXT kMissionIds[] = {{0, "unknown"},   {1, "mission_1"}, {2, "mission_2"},
                                   {3, "mission_3"}, {4, "mission_4"}, kEndOfTable};

constexpr ID_TEXT kOrbitSourceIds[] = {{0, ""},      // not set
                                       {1, "simu"},  // simulated
                                       {2, "pred"},  // predicted
                                       {3, "quik"},  // from quick-look data
                                       {4, "rest"},  // restituted
                                       {5, "prec"},  // precise
                                       {6, "cali"},  // calibrated
                                       kEndOfTable};

constexpr ID_TEXT kTapeSourceIds[] = {{0, "unknown"}, {1, "pri"}, {2, "sec"}, kEndOfTable};

[[noreturn]] void Refuse(const std::string& pool_file, const char* key, int value, const char* reason) {
    LogAndThrow<ERROR_DATA>("%s: key \"%s\": value %d %s", pool_file.c_str(), key, value, reason);
}

/// The digits of the number as printed in a field of width 3.
std::string DigitsOfId(int id, const std::string& pool_file, const char* key) {
    if (id < 0) Refuse(pool_file, key, id, "is negative");
    constexpr int kFieldWidth = 3;
    char field[16];
    std::snprintf(field, sizeof field, "%*d", kFieldWidth, id);
    std::string digits(field);
    std::erase_if(digits, [](char c) { return c < '0' || c > '9'; });
    return digits;
}

MDB_FILE SplitPath(const std::string& path) {
    const size_t slash = path.rfind('/');
    if (slash == std::string::npos) return {".", path};
    return {slash == 0 ? "/" : path.substr(0, slash), path.substr(slash + 1)};
}

}  // namespace

const ID_TEXT* MissionIds() {
    return kMissionIds;
}
const ID_TEXT* OrbitSourceIds() {
    return kOrbitSourceIds;
}
const ID_TEXT* TapeSourceIds() {
    return kTapeSourceIds;
}

std::string TextOfId(const ID_TEXT* table, int id, const std::string& pool_file, const char* key) {
    for (const ID_TEXT* row = table; row->text != nullptr; ++row) {
        if (row->id != id) continue;
        std::string text = row->text;
        if (text.find('/') != std::string::npos || text.find("..") != std::string::npos) {
            Refuse(pool_file, key, id, "stands for a text that leads out of the database");
        }
        return text;
    }
    Refuse(pool_file, key, id, "stands in no id table");
}

MDB_FILE OrbitDataFile(const MDB_LOCATION& location, const std::string& pool_file) {
    if (!location.data_file.empty()) return SplitPath(location.data_file);
    const auto digits = [&](int id, const char* key) { return DigitsOfId(id, pool_file, key); };
    const std::string mission = TextOfId(MissionIds(), location.mission_id, pool_file, "mission_id");
    const std::string tape_source = TextOfId(TapeSourceIds(), location.tape_source_id, pool_file, "tape_source_id");
    const std::string source = TextOfId(OrbitSourceIds(), location.orbit_source_id, pool_file, "orbit_source_id");
    if (source.empty()) Log() << LOGGING_LEVEL::INFO << "ORBIT: orbit_source_id is not set\n";
    return {location.root_path + "/" + mission + "/dt_" + digits(location.major_data_take_id, "major_data_take_id") +
                "_" + digits(location.minor_data_take_id, "minor_data_take_id") + "/hddc_" +
                digits(location.tape_id_number, "tape_id_number") + "_" + tape_source,
            source + "_" + digits(location.channel_id, "channel_id")};
}
