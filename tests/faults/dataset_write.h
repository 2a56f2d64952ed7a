// A body that is written as a dataset over and over, for the sweeps over the failures of a write.
#ifndef FMDTOOLKIT_TESTS_DATASET_WRITE_H
#define FMDTOOLKIT_TESTS_DATASET_WRITE_H

#include <string>

#include "faults/scene.h"
#include "support/session.h"

namespace fmdtest {

// Its parameter is the options of the write.
class DatasetWrite : public SessionTest, public testing::WithParamInterface<const char*> {
 protected:
  DatasetWrite();
  ~DatasetWrite() override;

  bool writes();
  std::string bytes() const;
  bool is_there() const;
  void remove();

  char target[16] = "body.fmd";
  Scene scene;
  EnvironmentVariable options{"KXI_FMDWRITE_OPTIONS", GetParam()};
};

// One for each way in which the sink or the content differs.
inline auto write_options() {
  return testing::Values("", "no_xdr", "single", "no_xdr,single", "full_str", "81_comp", "MKS");
}

}  // namespace fmdtest

#endif
