#include "orbit/source/mdb_state_vectors.h"

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/logging/logging.h"

namespace {

/// Runs one step on the database; when it fails, adds which file it was about.
template <class STEP>
auto NamingFile(const std::string& file, STEP step) {
    try {
        return step();
    } catch (const char* message) {
        Log().Message(LOGGING_LEVEL::ALARM, "mdb file %s: %s", file.c_str(), message);
        throw;
    }
}

ANY_TIME TimeOf(const RECORD_ITEM& item, TIME_KIND kind) {
    if (kind == TIME_KIND::UTC) return ValueAs<UNIVERSAL_TIME>(item);
    if (kind == TIME_KIND::MET) return ValueAs<MISSION_ELAPSED_TIME>(item);
    return ValueAs<double>(item);
}

}  // namespace

MDB_STATE_VECTORS::MDB_STATE_VECTORS() = default;
MDB_STATE_VECTORS::~MDB_STATE_VECTORS() = default;

void MDB_STATE_VECTORS::Open(const MDB_FILE& file) {
    Log() << LOGGING_LEVEL::INFO << "mdb_orbit compiled without: TYPE_IS_STRING_VECTOR\n";
    Log().Message(LOGGING_LEVEL::INFO, "mdb file: %s", file.Path().c_str());
    NamingFile(file.Path(), [&] { mdb_.Open(file.directory, file.file_name, MDB_OPEN_MODE::READ_ONLY); });
}

STATE_VECTOR_LISTS MDB_STATE_VECTORS::Read(TIME_KIND times) {
    if (!(mdb_.StateNow() == mdb_.StateAtOpen())) {
        Log() << LOGGING_LEVEL::ALARM << "ORBIT: mdb file was changed between open() and read()\n";
        throw ERROR_DATA();
    }
    STATE_VECTOR_LISTS lists;
    lists.file = mdb_.FileName();
    lists.position_key = "x, y, z";
    lists.velocity_key = "vx, vy, vz";
    NamingFile(lists.file, [&] {
        lists.time_key = mdb_.GetRecordType().KeyItem().KeyName();
        mdb_.Rewind();
        while (mdb_.Read()) {
            lists.times.push_back(TimeOf(mdb_.GetCurrentRecord().KeyItem(), times));
            for (const char* item : {"x", "y", "z"}) lists.positions_m.push_back(static_cast<double>(mdb_[item]));
            for (const char* item : {"vx", "vy", "vz"}) lists.velocities_m_s.push_back(static_cast<double>(mdb_[item]));
        }
    });
    return lists;
}
