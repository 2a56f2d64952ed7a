// Rewriting the mode vectors of one kind: they go to a new scratch datablock, which takes the place of the
// body's own when all are there. Until then, and after any failure, the body is as it was.
#ifndef FMDTOOLKIT_DBMODAL_DBDATA_MODE_REWRITE_H
#define FMDTOOLKIT_DBMODAL_DBDATA_MODE_REWRITE_H

#include <cstdint>

#include "body/body.h"
#include "messages/memory.h"

namespace fmd {

class ModeRewrite {
 public:
  // The module is the one that a failed allocation names.
  explicit ModeRewrite(const char* module) : module_(module) {}
  ~ModeRewrite() { close(); }
  ModeRewrite(const ModeRewrite&) = delete;
  ModeRewrite& operator=(const ModeRewrite&) = delete;

  // Opens the new datablock, in the precision in which the body holds the kind. False after a message.
  bool open(FmdBody& body, int kind);
  int key() const { return stream_.Key; }
  bool is_double() const { return stream_.DoublePrecision != 0; }

  // What shortening says of the datablock, and the rigid transformations too.
  void tell_shortened() const;

  // Makes one slot for each mode that the body has or may still get, with so many nodes each. False after a
  // message.
  bool provide_slots(const FmdBody& body, std::int64_t nodes);

  // The vector of a slot begins at the end of the datablock.
  void begin(int slot);

  // Fills the slot with zeros behind so many nodes, and those from a slot on.
  bool end(std::int64_t nodes) const;
  bool write_empty_slots(int first);

  // Goes to a node of a vector that has been written.
  bool move_to(int slot, std::int64_t node) const;

  // All that write say so when the disk is full. Zeros take their place there without being written out.
  bool write(const double* values, std::int64_t count) const;
  bool write_words(const std::int32_t* words, int count) const;

  // Hands everything to the body. There is no way back, and it cannot fail.
  void install(FmdBody& body);

  // Gives the datablock up.
  void close();

 private:
  bool provide_float_buffer(FmdBody& body);
  bool write_zeros(std::int64_t nodes) const;
  bool write_narrowed(const double* values, std::int64_t count) const;

  const char* module_;
  int kind_ = 0;
  int slots_ = 0;
  std::int64_t slot_nodes_ = 0;
  FmdStream stream_ = {};
  CArray<FmdPosition> positions_;
};

// Nodes that the rewritten vectors of a kind have room for: a body under construction may still get nodes.
std::int64_t slot_nodes(const FmdBody& body, int kind);

// Switches the cache of mode vectors off, which empties it, and back to what it was.
class UncachedModes {
 public:
  explicit UncachedModes(FmdBody* body);
  ~UncachedModes();
  UncachedModes(const UncachedModes&) = delete;
  UncachedModes& operator=(const UncachedModes&) = delete;

 private:
  FmdBody* body_;
  std::int32_t kept_ = 0;
};

// Some nodes of a vector in the units of the body, by mode index. A sweep over all modes begins at index 0,
// so only that vector is found loaded, as by any fetch. A vector that cannot be read has been reported.
bool fetch_nodes(const FmdBody& body, int kind, int index, int first_node, int nodes, double* values);

}  // namespace fmd

#endif
