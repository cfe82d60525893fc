// Searching a data file: the records begin with a line that does not begin with a blank, so any byte leads to the next
// record, and bisection needs no index.

#include "lib/baselib/logging/logging.h"
#include "lib/baselib/mdb/mdb.h"

namespace {

void LogFarAway(const char* where, const char* which) {
    Log().Message(LOGGING_LEVEL::INFO, "MDB::GotoRecord( mdb_stop_nearest ) : ");
    Log().Message(LOGGING_LEVEL::INFO, "the value you searched for can be far away .. ");
    Log().Message(LOGGING_LEVEL::INFO, "%s", where);
    Log().Message(LOGGING_LEVEL::INFO, "%s", which);
}

[[noreturn]] void RefuseSearch(const char* text) {
    Log().Message(LOGGING_LEVEL::ALARM, "%s", text);
    throw text;
}

}  // namespace

/// First byte of the first record that begins in position .. end - 1; -1 when there is none.
long long MDB::RecordStartFrom(long long position, long long end) {
    file_.SeekLineStart(position);
    std::string line;
    for (long long start = file_.Position(); start < end; start = file_.Position()) {
        if (!file_.ReadLine(line)) break;
        if (!line.empty() && line.front() != ' ' && line.front() != '\t') return start;
    }
    return -1;
}

long long MDB::LastRecordStart() {
    const long long size = file_.Size();
    for (long long reach = 4096;; reach *= 4) {
        const long long from = reach < size ? size - reach : 0;
        long long last = -1;
        for (long long start = RecordStartFrom(from, size); start >= 0; start = RecordStartFrom(start + 1, size))
            last = start;
        if (last >= 0 || from == 0) return last;
    }
}

/// The key in the first line of the record at the position; the next line read is its first item.
RECORD_ITEM MDB::KeyAt(long long position) {
    file_.Seek(position);
    RECORD_ITEM key = record_type_.KeyItem();
    ReadItem(key, false);
    return key;
}

/// Bisection over the bytes. Throughout: records that begin before `low` lie before the value, those from `high` on
/// after it.
MDB::NEIGHBOURS MDB::FindNeighbours(const RECORD_ITEM& key, SIDE side) {
    NEIGHBOURS neighbours;
    long long low = 0;
    long long high = file_.Size();
    while (low < high) {
        const long long middle = low + (high - low) / 2;
        const long long start = RecordStartFrom(middle, high);
        if (start < 0) {
            high = middle;
            continue;
        }
        const auto order = CompareValues(KeyAt(start), key);
        const bool is_after = side == SIDE::EQUAL_IS_AFTER ? std::is_gteq(order) : std::is_gt(order);
        if (is_after) {
            neighbours.after = start;
            high = middle;
        } else {
            neighbours.before = start;
            low = start + 1;
        }
    }
    return neighbours;
}

void MDB::Goto(const RECORD_ITEM& key, MDB_STOP_MODE mode) {
    const long long next = file_.Position();
    const bool has_records = RecordStartFrom(0, file_.Size()) >= 0;
    file_.Seek(next);
    if (!has_records) throw "MDB::GotoRecord(): mdb-file holds no records";
    switch (mode) {
        case MDB_STOP_MODE::BEFORE:
            current_ = RecordAt(FindBefore(key));
            return;
        case MDB_STOP_MODE::EXACT:
            current_ = RecordAt(FindExact(key));
            return;
        case MDB_STOP_MODE::NEAREST:
            current_ = RecordAt(FindNearest(key));
            return;
        case MDB_STOP_MODE::AFTER:
            current_ = RecordAt(FindAfter(key));
            return;
        case MDB_STOP_MODE::INVALID:
            break;
    }
    throw "MDB::GotoRecord(): invalid stop mode";
}

long long MDB::FindBefore(const RECORD_ITEM& key) {
    const long long found = FindNeighbours(key, SIDE::EQUAL_IS_BEFORE).before;
    if (found >= 0) return found;
    RefuseSearch("MDB::GotoRecord( mdb_stop_before ) : you want me to give you the record before the first one");
}

long long MDB::FindAfter(const RECORD_ITEM& key) {
    const long long found = FindNeighbours(key, SIDE::EQUAL_IS_AFTER).after;
    if (found >= 0) return found;
    RefuseSearch("MDB::GotoRecord( mdb_stop_after ) : you want me to give you the record after the last one");
}

long long MDB::FindExact(const RECORD_ITEM& key) {
    const long long found = FindNeighbours(key, SIDE::EQUAL_IS_AFTER).after;
    if (found >= 0 && std::is_eq(CompareValues(KeyAt(found), key))) return found;
    Log().Message(LOGGING_LEVEL::ALARM, "MDB::GotoRecord( mdb_stop_exact ) : search_value not found");
    throw "search_value not found";
}

long long MDB::FindNearest(const RECORD_ITEM& key) {
    const NEIGHBOURS neighbours = FindNeighbours(key, SIDE::EQUAL_IS_AFTER);
    if (neighbours.after < 0) {
        LogFarAway("we reached the end of the data file ", "therefore I give you the last record ");
        return neighbours.before;
    }
    // Equality first: two times may differ by less than their distance in seconds can show.
    const RECORD_ITEM after = KeyAt(neighbours.after);
    const bool equal = std::is_eq(CompareValues(after, key));
    if (neighbours.before < 0 && !equal) {
        LogFarAway("we are at the beginning of the data file ", "therefore I give you the first record ");
        return neighbours.after;
    }
    const bool take_after = equal || Distance(after, key) < Distance(KeyAt(neighbours.before), key);
    Log() << LOGGING_LEVEL::INFO << "(its really the nearest!)\n";
    return take_after ? neighbours.after : neighbours.before;
}
