#include "dbmodal/mode_model.h"

#include <algorithm>

namespace fmdtest {

void ModeStoreTest::set(FmdBody* body, int mode, int node, int type) {
  SixValues six;
  for (int i = 0; i < 6; ++i)
    six[static_cast<std::size_t>(i)] = 1000.0 * mode + node + 0.1 * i + 100000.0 * type + 0.001;
  ASSERT_EQ(FMD_SetModeVec(body, mode, node, type, six.data()), 1);
  values_[{type, mode, node}] = six;
  // Mode shapes are on all nodes of the body, the other types on those that were named with them.
  std::vector<int>& own = nodes_[type];
  if (std::find(own.begin(), own.end(), node) == own.end()) own.push_back(node);
  std::vector<int>& all = nodes_[fmd::kShape];
  if (std::find(all.begin(), all.end(), node) == all.end()) all.push_back(node);
}

std::vector<double> ModeStoreTest::expected(int mode, int type) const {
  std::vector<double> vector;
  for (const int node : nodes_[type]) {
    const auto found = values_.find({type, mode, node});
    const SixValues six = found == values_.end() ? SixValues{} : found->second;
    vector.insert(vector.end(), six.begin(), six.end());
  }
  return vector;
}

std::vector<double> ModeStoreTest::expected_half(int mode, int type, int part) const {
  std::vector<double> half;
  const std::vector<double> vector = expected(mode, type);
  for (std::size_t i = 0; i < vector.size(); ++i)
    if (static_cast<int>(i % 6 / 3) == part) half.push_back(vector[i]);
  return half;
}

std::vector<double> ModeStoreTest::read_half(FmdBody* body, int mode, int type, int part) {
  std::vector<double> half(static_cast<std::size_t>(3 * FMD_ModeNodeCount(body, type)));
  if (FMD_Mode(body, mode, type, half.data(), part) == 0) half.clear();
  return half;
}

FmdBody* ModeStoreTest::make_body(int nodes, int modes, int type) {
  FmdBody* body = FMD_Create(nodes, modes);
  for (int mode = 1; mode <= modes; ++mode)
    for (int node = 1; node <= nodes; ++node) set(body, mode, node, type);
  return body;
}

}  // namespace fmdtest
