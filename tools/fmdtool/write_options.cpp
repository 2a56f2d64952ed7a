#include "write_options.h"

#include <cstdlib>
#include <stdexcept>

namespace fmdtool {

namespace {

constexpr const char* variable = "KXI_FMDWRITE_OPTIONS";

std::string options_in_force() {
  const char* const found = std::getenv(variable);
  return found == nullptr ? "" : found;
}

// As the toolkit finds an option.
bool holds(const std::string& options, const char* option) {
  return options.find(option) != std::string::npos;
}

void add(std::string& options, const std::string& option) {
  options += (options.empty() ? "" : " ") + option;
}

constexpr int eigenvalue_block = 6;
constexpr int stiffness_block = 11;

}  // namespace

std::string joined(const std::vector<std::string>& options) {
  std::string text;
  for (const std::string& option : options) add(text, option);
  return text;
}

void set_write_options(const std::string& given, const std::string& invariants) {
  std::string options = given.empty() ? options_in_force() : given;
  if (!invariants.empty()) add(options, invariants + "_invar");
  if (!options.empty()) setenv(variable, options.c_str(), 1);
}

void replace_write_options(const std::string& options) {
  setenv(variable, options.c_str(), 1);
}

bool has_write_options(const std::string& given) {
  return !given.empty() || !options_in_force().empty();
}

std::string options_that_keep(FmdBody* body) {
  std::string options;
  const int level = FMD_Version(body);
  if (level == 10) add(options, "81_comp");
  if (level == 20) add(options, "82_comp");
  if (level >= 40 && level < 60) add(options, "full_str");
  if (FMD_Double_Prec(body) == 0) add(options, "single");
  const bool has_matrices = FMD_Exists(body, eigenvalue_block) == 0 && FMD_Exists(body, stiffness_block) != 0;
  if (has_matrices) add(options, "no_ortho");
  return options;
}

void refuse_unreadable(int monitor_points, bool into_database) {
  const std::string options = options_in_force();
  if (into_database && holds(options, "full_str") && holds(options, "single")) {
    throw std::runtime_error(
        "the options full_str and single together are refused in a database: the body could not be read "
        "back");
  }
  const bool has_band = holds(options, "lowpass(") || holds(options, "highpass(");
  if (has_band && !holds(options, "no_ortho") && monitor_points > 0) {
    throw std::runtime_error(
        "lowpass and highpass are refused for a body with monitor points: their operators would keep all "
        "modes "
        "and the body could not be read back");
  }
}

}  // namespace fmdtool
