#include "lib/baselib/image/data_type.h"

#include <vector>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/logging/logging.h"

namespace BASIC::TYPES {

namespace {

struct ROW {
    std::string name;
    int size_bytes;
};

const std::vector<ROW>& Table() {
    static const std::vector<ROW> table = {
        {"int_8", 1},      {"u_int_8", 1},   {"int_16", 2},     {"u_int_16", 2},  {"int_32", 4},
        {"u_int_32", 4},   {"int_64", 8},    {"u_int_64", 8},   {"flt_2", 2},     {"flt_6", 4},
        {"flt_15", 8},     {"flt_30", 16},   {"c_int_8", 2},    {"c_u_int_8", 2}, {"c_int_16", 4},
        {"c_u_int_16", 4}, {"c_int_32", 8},  {"c_u_int_32", 8}, {"c_int_64", 16}, {"c_flt_2", 4},
        {"c_flt_6", 8},    {"c_flt_15", 16}, {"c_flt_30", 32},  {"rgb", 3},       {"others", 0}};
    return table;
}

int IdOf(const std::string& name) {
    const std::vector<ROW>& table = Table();
    for (std::size_t id = 0; id < table.size(); ++id) {
        if (table[id].name == name) return static_cast<int>(id);
    }
    Log().Message(LOGGING_LEVEL::ALARM, "data type \"%s\" is not known", name.c_str());
    throw ERROR_ARGUMENT();
}

}  // namespace

DATA_TYPE::DATA_TYPE() : DATA_TYPE("others") {}
DATA_TYPE::DATA_TYPE(const std::string& name) : id_(IdOf(name)) {}

const std::string& DATA_TYPE::Text() const {
    return Table()[static_cast<std::size_t>(id_)].name;
}
int DATA_TYPE::Size() const {
    return Table()[static_cast<std::size_t>(id_)].size_bytes;
}

}  // namespace BASIC::TYPES
