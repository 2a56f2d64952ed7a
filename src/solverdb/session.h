// The parts of the session that a switch of database needs: its paths, its own scratch database, its closing.
#ifndef FMDTOOLKIT_SOLVERDB_SESSION_H
#define FMDTOOLKIT_SOLVERDB_SESSION_H

#include <string>

#include "kdcdb/kdcdb.h"

namespace fmd {

// Prepares the paths and begins a session of the store; 0, or a status. -1 where the directory variable is
// not set, which has been reported.
int begin_store_session();

// The last step of opening any database.
kdcdb::Status name_delivered_database();

// Closes the open database and deletes the print file that goes with it.
kdcdb::Status close_database();

// Base name of the session's own scratch database.
const std::string& session_base_name();

}  // namespace fmd

#endif
