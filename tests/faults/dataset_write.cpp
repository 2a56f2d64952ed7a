#include "faults/dataset_write.h"

#include <filesystem>
#include <fstream>
#include <iterator>

namespace fmdtest {

DatasetWrite::DatasetWrite() {
  full_body(scene);
  log.clear();
}

DatasetWrite::~DatasetWrite() {
  leave(scene);
}

bool DatasetWrite::writes() {
  return FMD_write_FMD(scene.body, target) == 1;
}

std::string DatasetWrite::bytes() const {
  std::ifstream file(target, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(file), {});
}

bool DatasetWrite::is_there() const {
  return std::filesystem::exists(target);
}

void DatasetWrite::remove() {
  std::filesystem::remove(target);
}

}  // namespace fmdtest
