#include "orbit/mdb_state_vectors.h"

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

VECTOR_3D<double> TripleOf(const MDB& mdb, const char* x, const char* y, const char* z) {
    return {static_cast<double>(mdb[x]), static_cast<double>(mdb[y]), static_cast<double>(mdb[z])};
}

}  // namespace

void OpenOrbitFile(MDB& mdb, const MDB_FILE& file) {
    Log() << LOGGING_LEVEL::INFO << "mdb_orbit compiled without: TYPE_IS_STRING_VECTOR\n";
    Log().Message(LOGGING_LEVEL::INFO, "mdb file: %s", file.Path().c_str());
    NamingFile(file.Path(), [&] { mdb.Open(file.directory, file.file_name, MDB_OPEN_MODE::READ_ONLY); });
}

STATE_VECTOR_SOURCE MdbSource(const MDB& mdb) {
    return {mdb.FileName(), mdb.GetRecordType().KeyItem().KeyName(), "x, y, z", "vx, vy, vz"};
}

template <class S>
STATE_VECTORS<double, S> ReadOrbitFile(MDB& mdb) {
    if (!(mdb.StateNow() == mdb.StateAtOpen())) {
        Log() << LOGGING_LEVEL::ALARM << "ORBIT: mdb file was changed between open() and read()\n";
        throw ERROR_DATA();
    }
    return NamingFile(mdb.FileName(), [&] {
        STATE_VECTORS<double, S> vectors;
        mdb.Rewind();
        while (mdb.Read()) {
            vectors.push_back({ValueAs<S>(mdb.GetCurrentRecord().KeyItem()), TripleOf(mdb, "x", "y", "z"),
                               TripleOf(mdb, "vx", "vy", "vz")});
        }
        return vectors;
    });
}

template STATE_VECTORS<double, double> ReadOrbitFile<double>(MDB&);
template STATE_VECTORS<double, UNIVERSAL_TIME> ReadOrbitFile<UNIVERSAL_TIME>(MDB&);
template STATE_VECTORS<double, MISSION_ELAPSED_TIME> ReadOrbitFile<MISSION_ELAPSED_TIME>(MDB&);
