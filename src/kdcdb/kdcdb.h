// The embedded solver database: the one header that the rest of the toolkit knows of it.
//
// A database is a set of files with one base name. It holds datablocks, each a sequence of records of 32-bit
// words with a trailer. docs/database-format.md has the files byte for byte. Stored datablocks are in the
// master file; closing the database makes the new ones part of it, all or none. Scratch datablocks live in
// anonymous files that vanish with the process, registered by the absolute base path of their database.
//
// 1. Every operation answers a Status, kOk (0) for success; no exception leaves, no operation prints.
// 2. One database is open at a time. Without one, an operation that needs it answers kNoDatabase.
// 3. A key names a datablock from CreateDatablk or AllocDatablk until the database is closed or the datablock
//    released. Keys count from 1 and are never used twice in a process.
// 4. A position is a 64-bit word offset in the datablock. The mark that ends a record takes one word, so the
//    place before a mark (end of a record) and the one behind it (start of the next) differ.
// 5. Nothing here is re-entrant.
#ifndef FMDTOOLKIT_KDCDB_KDCDB_H
#define FMDTOOLKIT_KDCDB_KDCDB_H

#include <cstddef>
#include <cstdint>

namespace kdcdb {

enum Status : int {
  kOk = 0,
  kNoDatabase = 1,      // no database is open, or no session begun
  kDatabaseOpen = 2,    // a database is open already
  kBadCommand = 3,      // the command text is not understood
  kNotSupported = 4,    // understood, but not possible in this version
  kNoDatablock = 5,     // no such key
  kNotOpen = 6,         // the datablock is not open
  kEndOfRecord = 7,     // beyond the end of the current record
  kEndOfDatablock = 8,  // there is no next record
  kBadPosition = 9,     // no such place in the datablock
  kBadArgument = 10,    // a negative count, an unknown option, a name that does not fit
  kExists = 11,         // a database of that name is there already
  kNoFile = 12,         // no such database
  kNotADatabase = 13,   // no master file of ours, or of a layout that this version does not know
  kLocked = 14,         // another writer has the database
  kNoSpace = 15,        // disk, quota or file size limit is exhausted
  kInputOutput = 16,    // the system failed a call
  kNoMemory = 17,
  kDamaged = 18  // a checksum does not hold, or what is stored contradicts itself
};

// Options of Gopen.
constexpr int kOpenExisting = 0;
constexpr int kOpenNew = 1;     // for writing: empties the datablock
constexpr int kOpenAgain = 10;  // after a close: to read and to rewrite in place

constexpr int kTrailerWords = 7;  // the key and six words of the caller's

// ------------------------------------------------------------------ session --

// Begins a session in a working directory, in which GetDbName places its files. The message file is not used.
Status DbaseBst(const char* message_file, const char* working_directory);

// Makes and opens a database: BASE.MASTER, BASE.DBALL, and BASE.DBFMD where the commands init it. A name that
// is taken is kExists. The commands run at creation: "init dbfmd", "dbsetdel dball".
Status DbaseNew(const char* base, const char* commands);

// Opens a database. The commands run at opening: "init dbfmd", "dbsetdel dbfmd", "restart", none.
Status DbaseOld(const char* base, const char* commands);

// Names the delivered database, which this store has no need of.
Status DbaseNdl(const char* delivery_path);

// Closes the database and ends the session; all keys end. Scratch data stays with the process, until
// DeleteDatabase.
Status DbaseCls();

// The physical name behind a logical one ("DBS", "F06"): an absolute path, ending in "_" and the logical
// name. The part before is unique to this session. The length has no terminator in it.
Status GetDbName(const char* logical, char* name, std::size_t size, std::size_t* length);

// Deletes the files of a closed database and gives back its scratch datablocks. Keys of them end.
Status DeleteDatabase(const char* base);

// Called for each stored datablock of a file, with the six words of its trailer after the key, and its words.
using StoredReport = void (*)(const std::int32_t* trailer, std::int64_t words, void* context);

// Reports what the dictionary of a master file tells, in the order of its list; needs no session.
Status ListStored(const char* master_path, StoredReport report, void* context);

// Called with one line of text for each thing that a check finds wrong, and where.
using CheckReport = void (*)(const char* text, void* context);

// Walks every byte of a master file that its roots answer for; needs no session. kDamaged where something was
// reported; any other failure is one of looking at the file.
Status CheckDatabase(const char* master_path, CheckReport report, void* context);

// ----------------------------------------------------------------- commands --

// Runs commands separated by ";".
Status FMSCommand(const char* commands);

// The dictionary of stored datablocks as text. 0: the whole text is in the buffer; above 0: the length needed
// (without terminator), the buffer being too small; below 0: a Status, negated.
int GetDbdict(const char* command, char* text, std::size_t size);

// The first datablock that a selection finds, and how many it finds. No match is kOk with 0 matches, key 0.
Status AllocDatablk(const char* selection, int* key, int* matches);

// A new, empty datablock from a "dbcreate" command.
Status CreateDatablk(const char* command, int* key);

// Gives back the space of a scratch datablock, open or not, or drops the links to a stored one; its keys end.
// A datablock that is being stored stays.
Status ReleaseDatablk(int key);

// A datablock that was to be stored with the next closing is not.
Status AbandonDatablk(int key);

// Drops the assignment of a logical name on the open database, and the links made through it.
void ForgetLogical(const char* logical);

// ------------------------------------------------------------------ records --

Status Gopen(int key, int option);

// Closes; the datablock and its key stay. The option has one value, 1.
Status Close(int key, int option);

// The trailer of an open or closed datablock: word 0 the key, six words more.
Status Wrttrl(const std::int32_t* trailer);
Status Rdtrl(std::int32_t* trailer);

// To the start of the next record.
Status Fwdrec(int key);

// The current place; whether it is at the end of a record, and of the datablock.
Status Savps3(int key, std::int64_t* position, bool* end_of_record, bool* end_of_file);

// To a place that Savps3 gave. A bad one leaves the datablock without a place, so that nothing is read or
// written where it was not meant to be.
Status Filps3(int key, std::int64_t position);

// Words from the current place to the end of the record.
Status Remaining(int key, std::int64_t* words);

// Reads words of the current record. A record that ends before gives what is left and kEndOfRecord. A
// negative count moves forward without reading; it fails where the record ends before, and also where it
// would come to the very end of a last record that no mark ends, unless that is open for writing: there is no
// word there.
Status Read(int key, void* words, std::int64_t count, std::int64_t* actual);

// Writes words at the current place, then ends the record if asked. Only a datablock open for writing grows;
// one opened again is rewritten in place, within the current record.
Status Write(int key, const void* words, std::int64_t count, bool end_of_record);

// Appends zero words to a datablock open for writing; disk space is reserved, no page touched.
Status WriteZeros(int key, std::int64_t count);

// The largest legal record length of a master file's header, in words.
void GetBuffsizeLimit(std::int32_t* limit, std::int32_t* second);

}  // namespace kdcdb

#endif
