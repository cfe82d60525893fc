#include "lib/baselib/mdb/mdb_record.h"

#include <set>

MDB_RECORD::MDB_RECORD(const ARRAY<RECORD_ITEM>& items) : items_(0, items.Count()) {
    if (items.Count() > kMaxItemCount) throw "MDB: too many items in record type definition";
    std::set<std::string> names;
    int index = 0;
    for (const RECORD_ITEM& item : items) {
        const std::string& name = item.KeyName();
        if (name.empty() || name.find_first_of(": \t\r\n") != std::string::npos)
            throw "MDB: invalid key name in record type definition";
        if (!names.insert(name).second) throw "MDB: key name appears twice in record type definition";
        items_[index++] = item;
    }
}

const RECORD_ITEM& MDB_RECORD::operator[](const std::string& key_name) const {
    for (const RECORD_ITEM& item : items_)
        if (item.KeyName() == key_name) return item;
    throw "MDB: RECORD_ITEM: can not find key_name in record";
}

RECORD_ITEM& MDB_RECORD::operator[](const std::string& key_name) {
    return const_cast<RECORD_ITEM&>(static_cast<const MDB_RECORD&>(*this)[key_name]);
}

bool MDB_RECORD::SameType(const MDB_RECORD& other) const {
    if (Count() != other.Count()) return false;
    for (int i = 0; i < Count(); ++i)
        if (!Item(i).SameNameAndType(other.Item(i))) return false;
    return true;
}

std::string MDB_RECORD::DefinitionText() const {
    std::string text;
    for (const RECORD_ITEM& item : items_) text += item.KeyName() + " : " + RecordItemTypeText(item.Type()) + "\n";
    return text;
}

std::string MDB_RECORD::DataText() const {
    std::string text = KeyItem().KeyName() + " : " + KeyItem().ValueText() + "\n";
    for (const RECORD_ITEM& item : items_) text += "  " + item.KeyName() + " : " + item.ValueText() + "\n";
    return text;
}

bool SplitNameAndValue(const std::string& line, std::string& name, std::string& value) {
    const size_t colon = line.find(':');
    if (colon == std::string::npos) return false;
    const size_t first = line.find_first_not_of(" \t");
    const size_t last = line.find_last_not_of(" \t", colon == 0 ? 0 : colon - 1);
    name = first < colon ? line.substr(first, last - first + 1) : "";
    value = line.substr(colon + 1);
    return true;
}

RECORD_ITEM ItemFromDefinition(const std::string& line) {
    std::string name;
    std::string type;
    if (!SplitNameAndValue(line, name, type)) throw "MDB: unknown type in record type definition";
    std::erase_if(type, [](char c) { return c == ' ' || c == '\t'; });
    return {name, RecordItemTypeFromText(type)};
}
