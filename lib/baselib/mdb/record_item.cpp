#include "lib/baselib/mdb/record_item.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <limits>
#include <utility>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/parse_number.h"
#include "time/time_axis.h"

namespace {

constexpr std::array<const char*, 5> kTypeWords = {"", "int", "double", "met", "utc"};
constexpr const char* kUnreadable = "MDB: RECORD_ITEM: can not read value";
constexpr const char* kUnknownType = "MDB: RECORD_ITEM: unknown type";

std::string Trimmed(const std::string& text) {
    const size_t first = text.find_first_not_of(" \t");
    if (first == std::string::npos) return "";
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

int IntFromText(const std::string& text) {
    long long value = 0;
    if (ParseInteger(text, value) != PARSE_RESULT::OK || value < std::numeric_limits<int>::min() ||
        value > std::numeric_limits<int>::max())
        throw kUnreadable;
    return static_cast<int>(value);
}

double DoubleFromText(const std::string& text) {
    double value = 0;
    if (ParseReal(text, value) != PARSE_RESULT::OK) throw kUnreadable;
    return value;
}

template <class TIME>
TIME TimeFromText(const std::string& text) {
    try {
        return TIME::FromText(text);
    } catch (const ERROR_EXCEPTION&) {  // the scanner has told why
        throw kUnreadable;
    }
}

}  // namespace

const char* RecordItemTypeText(RECORD_ITEM_TYPE type) {
    const auto code = static_cast<unsigned>(type);
    if (code >= kTypeWords.size()) throw "unknown record item type";
    return kTypeWords[code];
}

RECORD_ITEM_TYPE RecordItemTypeFromText(const std::string& word) {
    for (size_t code = 1; code < kTypeWords.size(); ++code)
        if (word == kTypeWords[code]) return static_cast<RECORD_ITEM_TYPE>(code);
    throw "MDB: unknown type in record type definition";
}

RECORD_ITEM::RECORD_ITEM(std::string key_name, RECORD_ITEM_TYPE type) : key_name_(std::move(key_name)), type_(type) {
    RecordItemTypeText(type);  // refuses a code outside the table
}

void RECORD_ITEM::CheckType(RECORD_ITEM_TYPE type) const {
    if (type_ == RECORD_ITEM_TYPE::NOT_SET) throw kUnknownType;
    if (type_ != type) throw "MDB: RECORD_ITEM: value has not the type of the item";
}

void RECORD_ITEM::Set(int value) {
    CheckType(RECORD_ITEM_TYPE::INT);
    integer_ = value;
}

void RECORD_ITEM::Set(double value) {
    CheckType(RECORD_ITEM_TYPE::DOUBLE);
    real_ = value;
}

void RECORD_ITEM::Set(const MISSION_ELAPSED_TIME& value) {
    CheckType(RECORD_ITEM_TYPE::MET);
    met_ = value;
}

void RECORD_ITEM::Set(const UNIVERSAL_TIME& value) {
    CheckType(RECORD_ITEM_TYPE::UTC);
    utc_ = value;
}

int RECORD_ITEM::Int() const {
    CheckType(RECORD_ITEM_TYPE::INT);
    return integer_;
}

double RECORD_ITEM::Double() const {
    CheckType(RECORD_ITEM_TYPE::DOUBLE);
    return real_;
}

const MISSION_ELAPSED_TIME& RECORD_ITEM::Met() const {
    CheckType(RECORD_ITEM_TYPE::MET);
    return met_;
}

const UNIVERSAL_TIME& RECORD_ITEM::Utc() const {
    CheckType(RECORD_ITEM_TYPE::UTC);
    return utc_;
}

RECORD_ITEM::operator double() const {
    switch (type_) {
        case RECORD_ITEM_TYPE::INT:
            return integer_;
        case RECORD_ITEM_TYPE::DOUBLE:
            return real_;
        case RECORD_ITEM_TYPE::MET:
            return static_cast<double>(met_);  // throws the type's own text
        case RECORD_ITEM_TYPE::UTC:
            return static_cast<double>(utc_);
        case RECORD_ITEM_TYPE::NOT_SET:
            break;
    }
    throw kUnknownType;
}

std::string RECORD_ITEM::ValueText() const {
    char text[40] = "";
    switch (type_) {
        case RECORD_ITEM_TYPE::INT:
            return std::to_string(integer_);
        case RECORD_ITEM_TYPE::DOUBLE:
            std::snprintf(text, sizeof text, "% .16e", real_);
            return text;
        case RECORD_ITEM_TYPE::MET:
            return met_.ToText();
        case RECORD_ITEM_TYPE::UTC:
            return utc_.ToText();
        case RECORD_ITEM_TYPE::NOT_SET:
            break;
    }
    throw kUnknownType;
}

void RECORD_ITEM::SetFromText(const std::string& text) {
    const std::string value = Trimmed(text);
    switch (type_) {
        case RECORD_ITEM_TYPE::INT:
            integer_ = IntFromText(value);
            return;
        case RECORD_ITEM_TYPE::DOUBLE:
            real_ = DoubleFromText(value);
            return;
        case RECORD_ITEM_TYPE::MET:
            met_ = TimeFromText<MISSION_ELAPSED_TIME>(value);
            return;
        case RECORD_ITEM_TYPE::UTC:
            utc_ = TimeFromText<UNIVERSAL_TIME>(value);
            return;
        case RECORD_ITEM_TYPE::NOT_SET:
            break;
    }
    throw kUnknownType;
}

bool RECORD_ITEM::IsReadable() const {
    RECORD_ITEM again = *this;
    try {
        again.SetFromText(ValueText());
        return std::is_eq(CompareValues(again, *this));
    } catch (const char*) {
        return false;
    }
}

std::weak_ordering CompareValues(const RECORD_ITEM& a, const RECORD_ITEM& b) {
    b.CheckType(a.type_);
    switch (a.type_) {
        case RECORD_ITEM_TYPE::INT:
            return a.integer_ <=> b.integer_;
        case RECORD_ITEM_TYPE::DOUBLE:
            if (std::isnan(a.real_) || std::isnan(b.real_)) throw "MDB: RECORD_ITEM: value is not a number";
            return a.real_ < b.real_   ? std::weak_ordering::less
                   : a.real_ > b.real_ ? std::weak_ordering::greater
                                       : std::weak_ordering::equivalent;
        case RECORD_ITEM_TYPE::MET:
            return a.met_ <=> b.met_;
        case RECORD_ITEM_TYPE::UTC:
            return a.utc_ <=> b.utc_;
        case RECORD_ITEM_TYPE::NOT_SET:
            break;
    }
    throw kUnknownType;
}

long double Distance(const RECORD_ITEM& a, const RECORD_ITEM& b) {
    const std::weak_ordering order = CompareValues(a, b);  // and checks the types
    if (order == std::weak_ordering::equivalent) return 0;
    switch (a.type_) {
        case RECORD_ITEM_TYPE::MET:
            return std::fabs(TIME_AXIS<MISSION_ELAPSED_TIME>::SecondsSince(a.met_, b.met_));
        case RECORD_ITEM_TYPE::UTC:
            return std::fabs(TIME_AXIS<UNIVERSAL_TIME>::SecondsSince(a.utc_, b.utc_));
        default:
            return std::fabs(static_cast<long double>(static_cast<double>(a)) -
                             static_cast<long double>(static_cast<double>(b)));
    }
}

template <>
double ValueAs<double>(const RECORD_ITEM& item) {
    return static_cast<double>(item);
}

template <>
MISSION_ELAPSED_TIME ValueAs<MISSION_ELAPSED_TIME>(const RECORD_ITEM& item) {
    return item.Met();
}

template <>
UNIVERSAL_TIME ValueAs<UNIVERSAL_TIME>(const RECORD_ITEM& item) {
    return item.Utc();
}
