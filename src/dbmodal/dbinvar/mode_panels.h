// The translations of all mode shapes, one panel of nodes after the other, so that each vector is read from
// the store once however many modes there are.
//
// Where each mode comes from is settled once, as a fetch of the mode would settle it: from the mode cache,
// which fills as it would with fetches; from the loaded vector; else from the store.
#ifndef FMDTOOLKIT_DBMODAL_DBINVAR_MODE_PANELS_H
#define FMDTOOLKIT_DBMODAL_DBINVAR_MODE_PANELS_H

#include <cstdint>

#include "body/body.h"
#include "dbmodal/dbinvar/pair_sums.h"
#include "messages/memory.h"

namespace fmd {

class ModePanels {
 public:
  // Nodes of a panel for so many modes: what stays in the third cache, yet pieces worth a reading, and in all
  // no more than 24 MiB.
  static int suitable_nodes(int modes);

  // Settles the sources, with panels of at most so many nodes; false where there is no memory. Says nothing
  // of its own.
  bool open(FmdBody* body, int panel_nodes);

  // Nodes of a panel; the last one may have fewer.
  int panel_nodes() const { return panel_nodes_; }

  // The translations of each mode from a node on, valid until the next call. A vector that cannot be read is
  // reported, once, and counts as zero from there on.
  const ModeTranslations* read(int first_node, int nodes);

 private:
  enum class Origin : std::int32_t { kNone, kMemory, kStore };
  struct Source {
    Origin origin;
    int index;             // of the mode
    const double* vector;  // in memory, from node 0 on
    std::int64_t stride;
  };

  bool fill_cache();
  void settle(int mode);
  bool provide_pieces();
  ModeTranslations read_piece(Source& source, double* piece, int first_node, int nodes);

  FmdBody* body_ = nullptr;
  int panel_nodes_ = 0;
  CArray<Source> sources_;
  CArray<ModeTranslations> modes_;
  CArray<double> pieces_;  // per mode from the store: six doubles per node of a panel
};

}  // namespace fmd

#endif
