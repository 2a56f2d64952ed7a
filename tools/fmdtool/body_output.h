// Where a command puts the bodies that it makes: a stream file or a database. Nothing shows under the name
// given before it is whole.
#ifndef FMDTOOL_BODY_OUTPUT_H
#define FMDTOOL_BODY_OUTPUT_H

#include <filesystem>
#include <memory>
#include <string>

#include "fmdtoolkit/fmdtoolkit.h"
#include "qualifiers.h"

namespace fmdtool {

// One of the two names.
struct Destination {
  std::string file;
  std::string database;
};

class BodyOutput {
 public:
  BodyOutput() = default;
  BodyOutput(const BodyOutput&) = delete;
  BodyOutput& operator=(const BodyOutput&) = delete;
  virtual ~BodyOutput() = default;

  // Throws std::runtime_error, also where the toolkit has told why.
  virtual void write(FmdBody* body, const Qualifiers& qualifiers) = 0;

  // After the last body.
  virtual void commit() = 0;

  virtual const std::filesystem::path& target() const = 0;
  virtual bool is_database() const = 0;
};

// Refuses what cannot be an output; before the work begins, and before the directory changes.
std::unique_ptr<BodyOutput> make_output(const Destination& destination);

// Throws where the file, which is read, is also the output.
void refuse_as_output(const BodyOutput& output, const std::filesystem::path& input, const std::string& what);

}  // namespace fmdtool

#endif
