/// Fuzz target of the record databases: the input up to its first NUL is "format.dat", the rest the data file. The file
/// is read through, searched in every stop mode for the keys that it holds, and read as an orbit. Whatever the bytes: a
/// value or one of the program's own errors.

#include <vector>

#include "fuzz/fuzz_target.h"
#include "orbit/interpolation/local_interpolation.h"
#include "orbit/interpolation/polynom.h"
#include "orbit/source/mdb_orbit.h"

namespace {

constexpr size_t kKeysSearched = 4;  // keeps one input short

/// Runs what may fail in one of the program's own ways.
template <class STEP>
bool Succeeds(STEP step) {
    try {
        step();
        return true;
    } catch (const char*) {
    } catch (const ERROR_EXCEPTION&) {
    }
    return false;
}

std::vector<RECORD_ITEM> ReadKeys(MDB& mdb) {
    std::vector<RECORD_ITEM> keys;
    Succeeds([&] {
        while (mdb.Read()) keys.push_back(mdb.GetCurrentRecord().KeyItem());
    });
    return keys;
}

void GoTo(MDB& mdb, const RECORD_ITEM& key, MDB_STOP_MODE mode) {
    switch (key.Type()) {
        case RECORD_ITEM_TYPE::INT:
            return mdb.GotoRecord(key.Int(), mode);
        case RECORD_ITEM_TYPE::DOUBLE:
            return mdb.GotoRecord(key.Double(), mode);
        case RECORD_ITEM_TYPE::MET:
            return mdb.GotoRecord(key.Met(), mode);
        default:
            return mdb.GotoRecord(key.Utc(), mode);
    }
}

void SearchKeys(MDB& mdb, const std::vector<RECORD_ITEM>& keys) {
    for (size_t i = 0; i < keys.size() && i < kKeysSearched; ++i) {
        for (const MDB_STOP_MODE mode :
             {MDB_STOP_MODE::BEFORE, MDB_STOP_MODE::EXACT, MDB_STOP_MODE::NEAREST, MDB_STOP_MODE::AFTER}) {
            if (!Succeeds([&] { GoTo(mdb, keys[i], mode); })) continue;
            (void)mdb.GetCurrentRecord().DataText();
        }
    }
}

template <class S>
void ReadAsOrbit(const ANY_TIME& reference) {
    MDB_ORBIT<double, S, LOCAL_INTERPOLATION<double, POLYNOM<double>, POINT<double>>, POINT<double>> orbit;
    ORBIT_CONFIGURATION configuration;
    configuration.mdb.data_file = Folder() + "/data";
    orbit.SetConfiguration(configuration);
    orbit.SetInterpolation(ParseInterpolationText("localpolynom_0_4"));
    orbit.SetReferenceTime(reference);
    if (!Succeeds([&] {
            orbit.Open();
            orbit.Read();
        })) {
        return;
    }
    for (const double part : {0.0, 0.3, 1.0}) {
        const double t = orbit.FirstTime() + part * (orbit.LastTime() - orbit.FirstTime());
        Succeeds([&] { (void)orbit.State(t); });
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const size_t nul = std::min(text.find('\0'), size);
    std::ofstream(Folder() + "/format.dat", std::ios::binary) << text.substr(0, nul);
    std::ofstream(Folder() + "/data", std::ios::binary) << text.substr(std::min(nul + 1, size));
    MDB mdb;
    if (!Succeeds([&] { mdb.Open(Folder(), "data", MDB_OPEN_MODE::READ_ONLY); })) return 0;
    SearchKeys(mdb, ReadKeys(mdb));
    ReadAsOrbit<double>(0.0);
    ReadAsOrbit<UNIVERSAL_TIME>(UNIVERSAL_TIME{2016, 12, 31, 0, 0, 0, 0, 0});
    ReadAsOrbit<MISSION_ELAPSED_TIME>(MISSION_ELAPSED_TIME{});
    return 0;
}
