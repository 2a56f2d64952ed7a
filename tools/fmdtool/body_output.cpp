#include "body_output.h"

#include <stdexcept>

#include "database_output.h"
#include "output_file.h"
#include "write_options.h"

namespace fmdtool {

namespace {

class FileOutput : public BodyOutput {
 public:
  explicit FileOutput(const std::string& name) : file_(name) {}

  void write(FmdBody* body, const Qualifiers&) override {
    refuse_unreadable(FMD_GetMonitorPointCount(body), false);
    std::string temporary = file_.make_temporary();
    if (FMD_write_FMD(body, temporary.data()) == 0) {
      throw std::runtime_error(file_.name() + ": the dataset was not written");
    }
  }
  void commit() override { file_.commit(); }
  const std::filesystem::path& target() const override { return file_.target(); }
  bool is_database() const override { return false; }

 private:
  OutputFile file_;
};

}  // namespace

std::unique_ptr<BodyOutput> make_output(const Destination& destination) {
  if (!destination.database.empty()) return std::make_unique<DatabaseOutput>(destination.database);
  return std::make_unique<FileOutput>(destination.file);
}

void refuse_as_output(const BodyOutput& output, const std::filesystem::path& input, const std::string& what) {
  std::error_code error;
  if (std::filesystem::equivalent(output.target(), input, error)) throw std::runtime_error(what);
}

}  // namespace fmdtool
