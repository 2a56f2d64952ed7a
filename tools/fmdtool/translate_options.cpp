#include "translate_options.h"

#include <cmath>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <vector>

#include "translate_command.h"
#include "unit_labels.h"
#include "write_options.h"

namespace fmdtool {

namespace {

constexpr const char* store_footer =
    "The translation is told as for `fmdtool translate calculix`, whose help has examples.\n"
    "\n"
    "Example:\n"
    "  fmdtool store calculix bracket_free.frd.gz --deck bracket_free.inp \\\n"
    "      --database parts.MASTER --qualifiers \"SELABEL='bracket',PROJNO=7\"\n";

constexpr const char* calculix_footer =
    "The units are those of the deck; a dataset only carries their names. The density comes from\n"
    "the deck's materials unless --density is given.\n"
    "\n"
    "Example:\n"
    "  fmdtool translate calculix bracket_free.frd.gz --deck bracket_free.inp \\\n"
    "      --units MEGAGRAM,MILLIMETER,SECOND,NEWTON --interface-nodes P_HOLE_B1,P_HOLE_B2 \\\n"
    "      --option \"single lowpass(10000)\" -o bracket.fmd\n"
    "\n"
    "Every static step of the deck with concentrated loads (*CLOAD) becomes a load case. Invariants and\n"
    "points whose displacement a host may ask for come on request:\n"
    "  fmdtool translate calculix bracket_free.frd.gz --deck bracket_loaded.inp \\\n"
    "      --interface-nodes IF_BASE --invariants full --monitor P_HOLE_W1,P_HOLE_B1 -o loaded.fmd\n"
    "\n"
    "From the matrices of a job (*FREQUENCY, SOLVER=MATRIXSTORAGE) come Craig-Bampton modes: a static\n"
    "shape for each degree of freedom of the interfaces, and normal modes with held interfaces. Results\n"
    "are for comparison then and may be left out. An interface is KIND:NODES, where KIND is nodes (each\n"
    "node by itself), rigid or average (a group with six degrees of freedom at a reference point, its\n"
    "centre unless @X,Y,Z follows), and NODES a node set, a file of ids, or ids with commas between:\n"
    "  fmdtool translate calculix bracket_free.frd.gz --deck bracket_matrix.inp \\\n"
    "      --matrices bracket_matrix.sti.gz bracket_matrix.mas.gz bracket_matrix.dof.gz \\\n"
    "      --interface average:HOLE_B1 --interface rigid:HOLE_B2@72,46,4 --interface nodes:295 \\\n"
    "      --fixed-modes 20 -o component.fmd\n";

void add_node_list(CLI::App& command, const char* name, std::vector<std::string>& list,
                   const char* description) {
  command.add_option(name, list, description)->delimiter(',')->allow_extra_args(false)->type_name("SET|FILE");
}

void add_invariants(CLI::App& command, TranslateRequest& request) {
  command
      .add_option(
          "--invariants", request.invariants,
          "Inertia invariants to write: full has all, fast leaves out those for pairs of modes. Nodes "
          "without a face, an interface node or a load then stay out of the dataset")
      ->check(CLI::IsMember({"full", "fast"}))
      ->type_name("full|fast");
}

// The error in the text of an interface; empty for none.
std::string interface_error(const std::string& text) {
  try {
    calculix::parse_interface(text);
    return {};
  } catch (const std::invalid_argument& error) {
    return error.what();
  }
}

struct ReductionOptions {
  std::vector<std::string> matrices;  // stiffness, mass, degrees of freedom
  std::vector<std::string> interfaces;
  int fixed_modes = 20;
};

void add_reduction(CLI::App& command, ReductionOptions& options) {
  CLI::Option* matrices =
      command
          .add_option(
              "--matrices", options.matrices,
              "Make Craig-Bampton modes from the stored stiffness and mass of a job; plain or gzipped")
          ->expected(3)
          ->type_name("JOB.sti JOB.mas JOB.dof");
  command
      .add_option("--interface", options.interfaces,
                  "An interface of the Craig-Bampton modes; may be given again, see below")
      ->allow_extra_args(false)
      ->check(CLI::Validator(interface_error, ""))
      ->needs(matrices)
      ->type_name("KIND:NODES[@X,Y,Z]");
  command
      .add_option("--fixed-modes", options.fixed_modes, "Number of normal modes with held interfaces [20]")
      ->check(CLI::Range(0, 100000))
      ->needs(matrices)
      ->type_name("N");
}

calculix::ReductionRequest reduction_of(const ReductionOptions& options) {
  calculix::ReductionRequest request;
  request.files = {options.matrices[0], options.matrices[1], options.matrices[2]};
  for (const std::string& text : options.interfaces) {
    request.interfaces.push_back(calculix::parse_interface(text));
  }
  request.fixed_modes = options.fixed_modes;
  return request;
}

std::string density_error(const std::string& text) {
  char* end = nullptr;
  const double value = std::strtod(text.c_str(), &end);
  const bool good = *end == '\0' && !text.empty() && value > 0.0 && std::isfinite(value);
  return good ? std::string() : "expected a number above 0, found \"" + text + "\"";
}

std::string units_error(const std::string& text) {
  calculix::Units units;
  return parse_units(text, units);
}

// All that a user may say about a translation, wherever its body goes.
struct TranslateOptions {
  TranslateRequest request;
  double density = 0.0;
  std::vector<std::string> options;
  ReductionOptions reduction;

  void add_input(CLI::App& command);
  void add_model(CLI::App& command);
  void add_writing(CLI::App& command);
  TranslateRequest whole_request() const;
};

void TranslateOptions::add_input(CLI::App& command) {
  command
      .add_option("results", request.job.results,
                  "Results in text form, JOB.frd or JOB.frd.gz; may be left out with --matrices")
      ->type_name("JOB.frd");
  command.add_option("--deck", request.job.deck, "Input deck of the job [JOB.inp beside the results]")
      ->type_name("JOB.inp");
}

void TranslateOptions::add_model(CLI::App& command) {
  command.add_option("--density", density, "Density of all elements, instead of the deck's")
      ->check(CLI::Validator(density_error, ""))
      ->type_name("NUMBER");
  command
      .add_option_function<std::string>(
          "--units", [this](const std::string& text) { parse_units(text, request.job.units); },
          "Units of the deck [MEGAGRAM,MILLIMETER,SECOND,NEWTON]")
      ->check(CLI::Validator(units_error, ""))
      ->type_name("MASS,LENGTH,TIME,FORCE");
  add_node_list(command, "--interface-nodes", request.job.interface_nodes,
                "Interface nodes: names of node sets of the deck or of files with node ids; several with "
                "commas between them, or the option again");
  add_node_list(command, "--monitor", request.job.monitor_nodes,
                "Monitor points: nodes whose displacement a host may ask for, named as interface nodes are");
  add_invariants(command, request);
  add_reduction(command, reduction);
}

void TranslateOptions::add_writing(CLI::App& command) {
  add_write_options(command, options);
  command.add_flag("--json", request.json, "Print JSON instead of a table");
  command.add_flag("--verbose", request.verbose, "Show all messages of the toolkit");
}

TranslateRequest TranslateOptions::whole_request() const {
  if (request.job.results.empty() && reduction.matrices.empty()) throw CLI::RequiredError("results");
  TranslateRequest whole = request;
  whole.job.comment = "Translated by fmdtool " FMDTOOL_VERSION;
  if (!reduction.matrices.empty()) whole.job.reduction = reduction_of(reduction);
  if (density > 0.0) whole.job.density = density;
  whole.write_options = joined(options);
  return whole;
}

// The body goes where the command's own options say.
void add_calculix_command(CLI::App& parent, Work& work, const char* description, const char* footer,
                          void (*add_output)(CLI::App& command, TranslateRequest& request)) {
  CLI::App& command = *parent.add_subcommand("calculix", description);
  command.footer(std::string(footer) + "\n" + exit_status);
  const auto options = std::make_shared<TranslateOptions>();
  options->add_input(command);
  add_output(command, options->request);
  options->add_model(command);
  options->add_writing(command);
  command.callback([&work, options] {
    const TranslateRequest request = options->whole_request();
    work = [request] { return translate_calculix(request); };
  });
}

void add_file(CLI::App& command, TranslateRequest& request) {
  command.add_option("-o,--output", request.output, "Dataset to write [JOB.fmd in the current directory]")
      ->type_name("OUT.fmd");
}

void add_target_database(CLI::App& command, TranslateRequest& request) {
  command
      .add_option("-d,--database", request.database, "Database to store the body in; made if it is not there")
      ->required()
      ->type_name("DB.MASTER");
  add_qualifiers(command, request.qualifiers);
}

}  // namespace

void add_translate_command(CLI::App& app, Work& work) {
  CLI::App& command = *app.add_subcommand("translate", "Translate the results of a finite-element program");
  command.require_subcommand(1);
  command.footer(translate_example);
  add_calculix_command(command, work,
                       "Translate CalculiX eigenmodes into a Flexible Modal Dataset and tell what is in it",
                       calculix_footer, add_file);
}

void add_store_command(CLI::App& app, Work& work) {
  CLI::App& command =
      *app.add_subcommand("store", "Translate the results of a finite-element program into a database");
  command.require_subcommand(1);
  command.footer(store_footer);
  add_calculix_command(command, work,
                       "Translate CalculiX eigenmodes, store the body in a database and tell what is in it",
                       store_footer, add_target_database);
}

}  // namespace fmdtool
