// An output file that appears under its name only when it is whole.
#ifndef FMDTOOL_OUTPUT_FILE_H
#define FMDTOOL_OUTPUT_FILE_H

#include <filesystem>
#include <string>

namespace fmdtool {

class OutputFile {
 public:
  // Refuses, with std::runtime_error, a target that is no regular file or whose directory is not there.
  explicit OutputFile(const std::string& name);
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  const std::string& name() const { return name_; }  // as given
  const std::filesystem::path& target() const { return target_; }

  // Makes an empty file beside the target, to be written by name.
  const std::string& make_temporary();

  // Gives the temporary file the target's name.
  void commit();

 private:
  std::string name_;
  std::filesystem::path target_;
  std::string temporary_;
};

}  // namespace fmdtool

#endif
