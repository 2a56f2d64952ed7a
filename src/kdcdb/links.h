// Links: datablocks of other databases that a database of this process can reach. They and the assignments of
// logical names are state of the process, kept for each database, and never written into a file.
#ifndef FMDTOOLKIT_KDCDB_LINKS_H
#define FMDTOOLKIT_KDCDB_LINKS_H

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "kdcdb/commands.h"
#include "kdcdb/datablock.h"
#include "kdcdb/qualifiers.h"
#include "kdcdb/selection.h"

namespace kdcdb {

// A snapshot of one datablock: it goes on meaning the same data when another one takes its name.
struct Link {
  std::vector<std::string> logical_names;  // all must be assigned for the link to be awake
  bool is_scratch = false;
  Qualifiers qualifiers;
  std::int32_t highqual = 0;
  std::shared_ptr<Datablock> block;
};

// What the process knows of one database beyond its files.
struct DatabaseState {
  std::map<std::string, std::string> assignments;  // logical name to path
  std::vector<Link> links;

  bool is_awake(const Link& link) const;
};

// What a selection finds in the open database: what it stores itself, then its links that are awake.
Status find_matches(const Selection& selection, std::vector<Link>& matches);

// "assign name='path'"
Status run_assign(const Command& command);

// "dblocate logical=name datablk=(name) where(...) [convert(...)] [copy]"
Status run_dblocate(const Command& command);

// "undblocate logical=name", with "*" for all
Status run_undblocate(const Command& command);

}  // namespace kdcdb

#endif
