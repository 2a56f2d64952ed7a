// Stored datablocks, as the switch of database needs them.
#ifndef FMDTOOLKIT_SOLVERDB_DATABLOCKS_H
#define FMDTOOLKIT_SOLVERDB_DATABLOCKS_H

#include <string>

#include "kdcdb/kdcdb.h"

namespace fmd {

// Runs a command of the database.
kdcdb::Status run_command(const std::string& command);

// "datablk=(name) where(... highqual=n ...)", which names one datablock by its mark.
std::string select_by_mark(const char* name, int mark);

// "assign dbalc<serial>='path'"
std::string assign_opened(int serial, const char* path);

// A datablock that was completed and shall not be stored after all.
void abandon_datablock(int block);

// Commas outside single quotes become the replacement.
std::string ReplaceTopLevelCommas(const std::string& text, const char* replacement);

}  // namespace fmd

#endif
