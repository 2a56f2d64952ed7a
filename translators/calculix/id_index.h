// From ids to their places in a list.
#ifndef FMDTOOLKIT_CALCULIX_ID_INDEX_H
#define FMDTOOLKIT_CALCULIX_ID_INDEX_H

#include <utility>
#include <vector>

namespace calculix {

class IdIndex {
 public:
  IdIndex() = default;
  explicit IdIndex(const std::vector<int>& ids);

  // The place of the id, or -1.
  int find(int id) const;

  // A place whose id occurs at an earlier place, too; -1 where all ids differ.
  int duplicate() const { return duplicate_; }

 private:
  std::vector<int> table_;                   // by id - lowest_, where ids lie close enough together
  std::vector<std::pair<int, int>> sorted_;  // (id, place) otherwise
  int lowest_ = 0;
  int duplicate_ = -1;
};

}  // namespace calculix

#endif
