/// \file mdb.h
/// Record database: a directory with one record type definition, "format.dat", and data files of records of that type,
/// all plain text. The first item of the type is the key item; the records of a file are in its order (equal keys may
/// follow each other).
///     db.Open("/data/orbits", "2012_03.mdb", MDB_OPEN_MODE::READ_ONLY);
///     db.GotoRecord(start, MDB_STOP_MODE::BEFORE);
///     do Use(db["x"]); while (db.Read());
/// Search: bisection over the bytes of the file, about 2 log2(size) reads of 4 KiB; nothing is kept between searches,
/// so a file may grow meanwhile. Failures are thrown as plain character strings; a line at ALARM before it names file
/// and reason where the text does not. The object stays usable after Rewind.   Threads: one object per thread.

#pragma once

#include <string>

#include "lib/baselib/mdb/mdb_record.h"
#include "lib/baselib/mdb/record_file.h"

enum class MDB_OPEN_MODE { READ_ONLY, READ_WRITE };

enum class MDB_STOP_MODE : int {
    INVALID = 0,
    BEFORE = 1,   ///< the last record whose key is less than or equal to the search value
    EXACT = 2,    ///< the first record whose key equals the search value
    NEAREST = 3,  ///< the record whose key is closest; half-way the earlier one
    AFTER = 4     ///< the first record whose key is greater than or equal to the search value
};

/// "stop_before", ...; INVALID for any other text.
MDB_STOP_MODE StopModeFromText(const std::string& text);
/// "invalid" for INVALID.
const char* StopModeText(MDB_STOP_MODE mode);

class MDB {
  public:
    static constexpr const char* kDefinitionName = "format.dat";

    /// Opens a data file and reads the record type, when the directory has one. READ_WRITE makes a missing directory
    /// and a missing data file.
    /// @param path       directory of the database
    /// @param file_name  data file in it
    /// @throws const char* "MDB::Open(): no path selected", "MDB::Open(): no file selected", "can not open mdb-file",
    /// "MDB: can not create directory", "MDB is opened read only: can not create directory"; the failures of the record
    /// type definition (see mdb_record.h)
    void Open(const std::string& path, const std::string& file_name, MDB_OPEN_MODE mode);
    void Close();
    bool IsOpen() const { return file_.IsOpen(); }

    /// Gives a new database its record type and writes "format.dat"; nothing to do when it has just that type.
    /// @throws const char* "MDB::SetRecordType(): no file open", "MDB is opened read only: can not write record type",
    /// "MDB: database has another record type", "MDB: can not write record type definition"
    void SetRecordType(const MDB_RECORD& type);
    /// @throws const char* "MDB::GetRecordType(): record type is not set"
    const MDB_RECORD& GetRecordType() const;
    /// The directory. @throws const char* "MDB::GetPathInfo(): no path was set before"
    const std::string& GetPathInfo() const;
    /// Directory and file name of the data file.
    const std::string& FileName() const { return file_name_; }

    /// Modification state of the data file when it was opened, and now.
    const FILE_STATE& StateAtOpen() const { return state_at_open_; }
    FILE_STATE StateNow() const { return FileStateOf(file_name_); }

    /// Back to before the first record: no record is current, the next Read gives the first one. Allowed in both modes.
    /// @throws const char* "MDB::Rewind(): no file open"
    void Rewind();

    /// The next record becomes the current one.
    /// @return false at the end of the file; the current record then stays
    /// @throws const char* "MDB::Read(): no file open", "MDB::Read(): no valid record type", "MDB: invalid data
    /// record"; file, line's position and what was expected are logged
    bool Read();

    /// Appends a record of the record type. The current record and the place of the next Read stay.
    /// @throws const char* "MDB::Write(): no file open", "MDB::Write(): no valid record type",
    /// "MDB is opened read only: can not write data record", "MDB::Write(): record has not the record type",
    /// "MDB::Write(): value can not be read again" (NaN, a time that is none),
    /// "MDB::Write(): key lies before the last record", "MDB: invalid data record" (the file ends within a record),
    /// "can not write MDB_RECORD into mdb-file"; the file then is as it was
    void Write(const MDB_RECORD& record);

    /// The record found becomes the current one; the next Read gives the one behind it. Allowed in both modes.
    /// @tparam VALUE  the type of the key item: int, double, MISSION_ELAPSED_TIME or UNIVERSAL_TIME
    /// @throws const char* "MDB::GotoRecord(): no file open", "MDB::GotoRecord(): no valid record type",
    /// "MDB::GotoRecord(): invalid stop mode", "MDB::GotoRecord(): mdb-file holds no records", those of
    /// RECORD_ITEM::Set; EXACT: "search_value not found"; BEFORE and AFTER beyond the ends: their own text
    template <class VALUE>
    void GotoRecord(const VALUE& search_value, MDB_STOP_MODE mode) {
        CheckCanSearch();
        RECORD_ITEM key = record_type_.KeyItem();
        key.Set(search_value);
        Goto(key, mode);
    }

    /// @throws const char* "MDB::GetCurrentRecord(): no record data available"
    const MDB_RECORD& GetCurrentRecord() const;
    /// An item of the current record.
    /// @throws const char* "MDB[\"key\"](): no file open", "MDB[\"key\"](): no valid record type",
    /// "MDB[\"key\"](): no valid data available", "MDB: RECORD_ITEM: can not find key_name in record"
    const RECORD_ITEM& operator[](const std::string& key_name) const;

  private:
    /// The two records between which a search value lies; -1 where there is none.
    struct NEIGHBOURS {
        long long before = -1;
        long long after = -1;
    };
    enum class SIDE { EQUAL_IS_BEFORE, EQUAL_IS_AFTER };

    void OpenDirectory();
    void ReadRecordType();
    void CheckCanSearch() const;
    void Goto(const RECORD_ITEM& key, MDB_STOP_MODE mode);
    long long FindBefore(const RECORD_ITEM& key);
    long long FindExact(const RECORD_ITEM& key);
    long long FindNearest(const RECORD_ITEM& key);
    long long FindAfter(const RECORD_ITEM& key);
    NEIGHBOURS FindNeighbours(const RECORD_ITEM& key, SIDE side);
    long long RecordStartFrom(long long position, long long end);
    long long LastRecordStart();
    long long SkipEmptyLines();
    RECORD_ITEM KeyAt(long long position);
    MDB_RECORD RecordAt(long long position);
    void CheckCanFollowLast(const MDB_RECORD& record);
    void ReadItem(RECORD_ITEM& item, bool indented);
    [[noreturn]] void RefuseRecord(long long position, const std::string& reason);

    std::string path_;
    std::string file_name_;
    MDB_OPEN_MODE mode_ = MDB_OPEN_MODE::READ_ONLY;
    RECORD_FILE file_;
    FILE_STATE state_at_open_;
    MDB_RECORD record_type_;
    MDB_RECORD current_;
};
