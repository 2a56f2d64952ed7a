// The mesh of a job that has no results yet: nodes and solids of the deck.
#ifndef FMDTOOLKIT_CALCULIX_DECK_MESH_H
#define FMDTOOLKIT_CALCULIX_DECK_MESH_H

#include "calculix/deck_reader.h"
#include "calculix/frd_reader.h"

namespace calculix {

// Nodes that solids use, ascending, and the solids; no modes. Masses, springs and dashpots have no part in
// it. Throws InputError for shells, beams and others, and for solids with nodes that are not there.
FrdContents contents_of_deck(const Deck& deck);

}  // namespace calculix

#endif
