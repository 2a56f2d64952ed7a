// What the result file and the deck say together.
#ifndef FMDTOOLKIT_CALCULIX_MODEL_H
#define FMDTOOLKIT_CALCULIX_MODEL_H

#include <optional>
#include <string>
#include <vector>

#include "calculix/deck_reader.h"
#include "calculix/frd_reader.h"

namespace calculix {

// Gives nodes that the deck has its coordinates, which are not cut to six digits. Nodes that an expanded
// shell or beam brought along keep those of the result file. Throws when the two do not belong together.
void take_deck_coordinates(Mesh& mesh, const std::string& results, const Deck& deck);

// Per element mass by volume, by area for shells, by length for beams. A density given goes before those of
// the deck. Throws with what is missing.
std::vector<double> element_densities(const Mesh& mesh, const std::string& results, const Deck& deck,
                                      std::optional<double> density);

// Adds the deck's mass elements to the nodal masses.
void add_point_masses(const Deck& deck, const FrdContents& contents, std::vector<double>& masses);

// The ids that a node set of the deck has or a file lists, each of them a node of the results. The purpose is
// what a message says that they are for.
std::vector<int> named_node_ids(const char* purpose, const std::string& set_or_file, const Deck& deck,
                                const FrdContents& contents, const std::string& results);

}  // namespace calculix

#endif
