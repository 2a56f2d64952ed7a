// A database whose bodies are asked for: which there are, and each of them read.
#ifndef FMDTOOL_DATABASE_H
#define FMDTOOL_DATABASE_H

#include <filesystem>
#include <string>
#include <vector>

#include "fmdtoolkit/fmdtoolkit.h"
#include "qualifiers.h"

namespace fmdtool {

// Ends the toolkit's session, with all bodies, at the end of the work.
class ToolkitSession {
 public:
  ToolkitSession() = default;
  ~ToolkitSession() { FMD_Terminate(); }
  ToolkitSession(const ToolkitSession&) = delete;
  ToolkitSession& operator=(const ToolkitSession&) = delete;
};

struct StoredBody {
  int number = 0;  // its place in the database, from 1
  Qualifiers qualifiers;
  int nodes = 0;
  int modes = 0;
  long long bytes = 0;  // of its words
};

// Which bodies a command is about: one by its place, or those with some qualifiers, or all.
struct BodyChoice {
  int number = 0;
  std::string select;
};

class Database {
 public:
  // Within a workspace, by an absolute path; the name is what messages call it. Throws std::runtime_error for
  // a file that is no database or cannot be read.
  Database(std::filesystem::path path, std::string name);

  const std::filesystem::path& path() const { return path_; }
  const std::string& name() const { return name_; }
  const std::vector<StoredBody>& bodies() const { return bodies_; }

  // At least one, or throws std::runtime_error.
  std::vector<StoredBody> chosen(const BodyChoice& choice) const;
  // The one that is meant; where nothing is chosen, the only one.
  StoredBody chosen_one(const BodyChoice& choice) const;

  // The caller releases it. Throws std::runtime_error.
  FmdBody* read(const StoredBody& body) const;

  // "DB.MASTER, body 2"
  std::string place_of(const StoredBody& body) const;

 private:
  std::filesystem::path path_;
  std::string name_;
  std::vector<StoredBody> bodies_;
};

}  // namespace fmdtool

#endif
