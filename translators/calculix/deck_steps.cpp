#include "calculix/deck_steps.h"

#include "calculix/number_text.h"

namespace calculix {

bool StepReader::begin_keyword() {
  const std::string& name = lines_.keyword().name;
  if (name == "STEP") {
    begin_step();
  } else if (name == "ENDSTEP") {
    in_step_ = false;
  } else if (name == "TRANSFORM") {
    deck_.turned_sets.push_back(lines_.needed("NSET"));
  } else if (name == "STATIC") {
    if (!in_step_) lines_.fail("expected *STATIC in a step");
    step().is_static = true;
  } else if (name == "CLOAD") {
    return begin_loads();
  } else if (name == "DLOAD" || name == "DSLOAD") {
    if (in_step_) leave_out("loads of *" + name + " are not translated");
  }
  return false;
}

void StepReader::begin_step() {
  expect_no_open_loads();
  in_step_ = true;
  has_cload_ = false;
  deck_.steps.emplace_back();
  step().name = lines_.keyword().value("NAME");
}

// OP counts at the first *CLOAD of a step.
bool StepReader::begin_loads() {
  if (!in_step_) lines_.fail("expected *CLOAD in a step");
  const Keyword& keyword = lines_.keyword();
  const std::string operation = keyword.value("OP");
  if (keyword.has("OP") && operation != "NEW" && operation != "MOD") {
    lines_.fail("expected OP=NEW or OP=MOD of *CLOAD, found " + quote(operation));
  }
  if (!has_cload_) step().drops_loads = operation == "NEW";
  has_cload_ = true;
  for (const char* parameter : {"USER", "SUBMODEL", "SECTOR", "OMEGA0"}) {
    if (!keyword.has(parameter)) continue;
    leave_out(std::string("loads of *CLOAD with ") + parameter + " are not translated");
    return false;
  }
  if (keyword.value("LOADCASE") == "2") {
    leave_out("loads of *CLOAD that are an imaginary part are not translated");
    return false;
  }
  if (keyword.has("AMPLITUDE")) {
    leave_out("the amplitude " + quote(keyword.value("AMPLITUDE")) + " of *CLOAD is not applied");
  }
  return true;
}

// Node or set, direction, magnitude.
void StepReader::load_line() {
  LoadLine load{"", 0, 0, 0.0, lines_.file(), lines_.line_number()};
  const std::string_view target = lines_.fields()[0];
  if (target.find_first_of("+-0123456789") != 0 && !target.empty()) {
    load.set = in_capitals(target);
  } else {
    load.node = lines_.int_field(0, "a node id or the name of a node set");
  }
  load.direction = lines_.int_field(1, "a direction");
  if (load.direction < 1 || load.direction > 6) {
    lines_.fail("expected a direction from 1 to 6, found " + std::to_string(load.direction));
  }
  load.magnitude = lines_.real_field(2, "a magnitude");
  step().loads.push_back(load);
}

void StepReader::end() const {
  expect_no_open_loads();
}

// A deck that is cut off would lose loads unseen.
void StepReader::expect_no_open_loads() const {
  if (in_step_ && has_cload_) lines_.fail("expected *END STEP");
}

void StepReader::leave_out(const std::string& what) {
  step().left_out.emplace_back(lines_.file(), lines_.line_number(), what);
}

}  // namespace calculix
