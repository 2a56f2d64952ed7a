// A database as output. One that is there is written in place, which its store makes safe; a new one comes to
// be beside its name and gets it when it is whole.
#ifndef FMDTOOL_DATABASE_OUTPUT_H
#define FMDTOOL_DATABASE_OUTPUT_H

#include "body_output.h"

namespace fmdtool {

class DatabaseOutput : public BodyOutput {
 public:
  explicit DatabaseOutput(const std::string& name);
  ~DatabaseOutput() override;

  void write(FmdBody* body, const Qualifiers& qualifiers) override;
  void commit() override;
  const std::filesystem::path& target() const override { return target_; }
  bool is_database() const override { return true; }

 private:
  void prepare();
  void make_directory();

  std::string name_;
  std::filesystem::path target_;
  std::filesystem::path directory_;  // of a new database
  std::filesystem::path written_;
  std::filesystem::path set_;  // that stands beside the database while it is written
};

}  // namespace fmdtool

#endif
