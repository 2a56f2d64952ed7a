// The steps of a deck and the concentrated loads in them.
#ifndef FMDTOOLKIT_CALCULIX_DECK_STEPS_H
#define FMDTOOLKIT_CALCULIX_DECK_STEPS_H

#include "calculix/deck_lines.h"
#include "calculix/deck_reader.h"

namespace calculix {

class StepReader {
 public:
  StepReader(const DeckLines& lines, Deck& deck) : lines_(lines), deck_(deck) {}

  // True where the keyword has data lines that load_line is to take.
  bool begin_keyword();
  void load_line();

  // At the end of the deck.
  void end() const;

 private:
  Step& step() { return deck_.steps.back(); }
  void begin_step();
  bool begin_loads();
  void leave_out(const std::string& what);
  void expect_no_open_loads() const;

  const DeckLines& lines_;
  Deck& deck_;
  bool in_step_ = false;
  bool has_cload_ = false;  // the step, by now
};

}  // namespace calculix

#endif
