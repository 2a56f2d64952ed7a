// A temporary directory in which the program works, so that it leaves no file behind and needs no environment
// and no writable current directory.
#ifndef FMDTOOL_WORKSPACE_H
#define FMDTOOL_WORKSPACE_H

#include <filesystem>

namespace fmdtool {

class Workspace {
 public:
  // Makes the directory, goes there, and has the toolkit keep its database there unless KXI_KADCDB_DIR names
  // another place. Throws std::runtime_error.
  Workspace();
  ~Workspace();
  Workspace(const Workspace&) = delete;
  Workspace& operator=(const Workspace&) = delete;

 private:
  std::filesystem::path previous_;
  std::filesystem::path path_;
};

}  // namespace fmdtool

#endif
