// A temporary directory in which the program works, so that it leaves no file behind, also when a signal ends
// it, and needs no environment and no writable current directory.
#ifndef FMDTOOL_WORKSPACE_H
#define FMDTOOL_WORKSPACE_H

#include <filesystem>
#include <string>

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

// From here on an interrupt, a hangup or a request to end removes these before the program ends: the
// workspace, and the unfinished output. To be called before any thread starts.
void watch_signals();
void note_unfinished_output(const std::string& path);

}  // namespace fmdtool

#endif
