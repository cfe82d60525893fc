#include "orbit/orbit_factory.h"

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/logging/logging.h"
#include "orbit/interpolation/everett.h"
#include "orbit/interpolation/local_interpolation.h"
#include "orbit/interpolation/spline.h"
#include "orbit/source/mdb_orbit.h"
#include "orbit/source/pool_orbit.h"

namespace {

template <class T, class I>
using LOCAL = LOCAL_INTERPOLATION<T, I, POINT<T>>;
template <class T>
using LOCAL_HERMITE = LOCAL_INTERPOLATION<T, HERMITE_POLY<T>, DPOINT<T>>;

using CREATE = std::unique_ptr<ORBIT_BASE> (*)();
using ROWS_OF_TYPE = std::array<CREATE, kInterpolations>;

template <class CONCRETE_ORBIT>
std::unique_ptr<ORBIT_BASE> Create() {
    return std::make_unique<CONCRETE_ORBIT>();
}

std::unique_ptr<ORBIT_BASE> CreateNothing() {
    return nullptr;
}

/// Pool orbits, one per interpolation, in the order of their ids.
template <class T, class S>
constexpr ROWS_OF_TYPE kPoolRows = {
    Create<POOL_ORBIT<T, S, POLYNOM<T>, POINT<T>>>,
    Create<POOL_ORBIT<T, S, POLYNOM_FIT<T>, POINT<T>>>,
    Create<POOL_ORBIT<T, S, SPLINE<T>, POINT<T>>>,
    Create<POOL_ORBIT<T, S, LOCAL<T, POLYNOM<T>>, POINT<T>>>,
    Create<POOL_ORBIT<T, S, LOCAL<T, POLYNOM_FIT<T>>, POINT<T>>>,
    Create<POOL_ORBIT<T, S, CHEBY_POLY<T>, POINT<T>>>,
    Create<POOL_ORBIT<T, S, LOCAL<T, CHEBY_POLY<T>>, POINT<T>>>,
    Create<POOL_ORBIT<T, S, HERMITE_POLY<T>, DPOINT<T>>>,
    Create<POOL_ORBIT<T, S, LOCAL_HERMITE<T>, DPOINT<T>>>,
    Create<POOL_ORBIT<T, S, EVERETT<T>, POINT<T>>>,
};

/// Record database orbits, always of double precision.
template <class S>
constexpr ROWS_OF_TYPE kMdbRows = {
    Create<MDB_ORBIT<double, S, POLYNOM<double>, POINT<double>>>,
    Create<MDB_ORBIT<double, S, POLYNOM_FIT<double>, POINT<double>>>,
    Create<MDB_ORBIT<double, S, SPLINE<double>, POINT<double>>>,
    Create<MDB_ORBIT<double, S, LOCAL<double, POLYNOM<double>>, POINT<double>>>,
    Create<MDB_ORBIT<double, S, LOCAL<double, POLYNOM_FIT<double>>, POINT<double>>>,
    CreateNothing,
    CreateNothing,
    CreateNothing,
    CreateNothing,
    Create<MDB_ORBIT<double, S, EVERETT<double>, POINT<double>>>,
};

const ROWS_OF_TYPE* const kRowsOfTypes[kOrbitTypes] = {
    &kPoolRows<float, double>,  &kPoolRows<float, UNIVERSAL_TIME>,  &kPoolRows<float, MISSION_ELAPSED_TIME>,
    &kPoolRows<double, double>, &kPoolRows<double, UNIVERSAL_TIME>, &kPoolRows<double, MISSION_ELAPSED_TIME>,
    &kMdbRows<double>,          &kMdbRows<UNIVERSAL_TIME>,          &kMdbRows<MISSION_ELAPSED_TIME>};

ORBIT_FACTORY_TABLE BuildTable() {
    ORBIT_FACTORY_TABLE table{};
    size_t row = 0;
    for (int type = 0; type < kOrbitTypes; ++type) {
        for (int interpolation = 0; interpolation < kInterpolations; ++interpolation) {
            const auto type_id = static_cast<ORBIT_TYPE_ID>(type + 1);
            const auto interpolation_id = static_cast<INTERPOLATION_ID>(interpolation);
            table[row++] = {type_id, TextOf(type_id), interpolation_id, TextOf(interpolation_id),
                            (*kRowsOfTypes[type])[static_cast<size_t>(interpolation)]};
        }
    }
    return table;
}

const ORBIT_FACTORY_ROW& RowOf(ORBIT_TYPE_ID type_id, INTERPOLATION_ID interpolation_id) {
    for (const ORBIT_FACTORY_ROW& row : OrbitFactoryTable()) {
        if (row.type_id == type_id && row.interpolation_id == interpolation_id) return row;
    }
    RefuseCoreObject();
}

/// Runs one step of the set-up; when it fails, adds which entry of the pool it was about.
template <class STEP>
auto NamingEntry(const ORBIT_CONFIGURATION& configuration, const char* key, const std::string& value, STEP step) {
    try {
        return step();
    } catch (const ERROR_EXCEPTION&) {  // not std::bad_alloc, which is no fault of the entry
        Log().Message(LOGGING_LEVEL::ALARM, "%s: key \"%s\": value \"%s\" is refused", configuration.pool_file.c_str(),
                      key, value.c_str());
        throw;
    }
}

}  // namespace

const ORBIT_FACTORY_TABLE& OrbitFactoryTable() {
    static const ORBIT_FACTORY_TABLE table = BuildTable();
    return table;
}

std::unique_ptr<ORBIT_BASE> CreateOrbit(ORBIT_TYPE_ID type_id, const INTERPOLATION_REQUEST& request) {
    std::unique_ptr<ORBIT_BASE> orbit = RowOf(type_id, request.id).create();
    if (orbit == nullptr) {
        Log().Message(LOGGING_LEVEL::ALARM, "ORBIT: there is no orbit \"%s\" with the interpolation \"%s\"",
                      TextOf(type_id), TextOf(request.id));
        RefuseCoreObject();
    }
    orbit->SetTypeId(type_id);
    orbit->SetInterpolation(request);
    return orbit;
}

std::unique_ptr<ORBIT_BASE> ReadOrbit(PARAMETER_POOL& pool) {
    const ORBIT_CONFIGURATION configuration = ReadOrbitConfiguration(pool);
    const INTERPOLATION_REQUEST request =
        NamingEntry(configuration, "orbit_interpolation", configuration.interpolation,
                    [&] { return ParseInterpolationText(configuration.interpolation); });
    std::unique_ptr<ORBIT_BASE> orbit =
        NamingEntry(configuration, "orbit_representation", configuration.representation,
                    [&] { return CreateOrbit(OrbitTypeIdFromText(configuration.representation), request); });
    orbit->SetConfiguration(configuration);
    NamingEntry(configuration, "orbit_reference_time", configuration.reference_time,
                [&] { orbit->SetReferenceTime(ReferenceTimeFromText(configuration.reference_time)); });
    orbit->ReadFromParameterPool(pool);
    return orbit;
}
