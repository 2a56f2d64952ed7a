// fmdtool: translates finite-element results into Flexible Modal Datasets.
#include <CLI/CLI.hpp>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <stdexcept>
#include <string>
#include <vector>

#include "supervisor.h"
#include "translate_command.h"
#include "unit_labels.h"

namespace {

constexpr const char* example =
    "Example:\n"
    "  fmdtool translate calculix bracket_free.frd.gz --deck bracket_free.inp \\\n"
    "      --interface-nodes P_HOLE_B1,P_HOLE_B2 -o bracket.fmd\n";

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

void add_invariants(CLI::App& command, fmdtool::TranslateRequest& request) {
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

void add_calculix_command(CLI::App& translate, fmdtool::TranslateRequest& request, double& density,
                          std::vector<std::string>& options, ReductionOptions& reduction) {
  CLI::App& command = *translate.add_subcommand(
      "calculix", "Translate CalculiX eigenmodes into a Flexible Modal Dataset and tell what is in it");
  command.footer(calculix_footer);
  command
      .add_option("results", request.job.results,
                  "Results in text form, JOB.frd or JOB.frd.gz; may be left out with --matrices")
      ->type_name("JOB.frd");
  command.add_option("--deck", request.job.deck, "Input deck of the job [JOB.inp beside the results]")
      ->type_name("JOB.inp");
  command.add_option("-o,--output", request.output, "Dataset to write [JOB.fmd in the current directory]")
      ->type_name("OUT.fmd");
  command.add_option("--density", density, "Density of all elements, instead of the deck's")
      ->check(CLI::Validator(
          [](const std::string& text) {
            char* end = nullptr;
            const double value = std::strtod(text.c_str(), &end);
            const bool good = *end == '\0' && !text.empty() && value > 0.0 && std::isfinite(value);
            return good ? std::string() : "expected a number above 0, found \"" + text + "\"";
          },
          ""))
      ->type_name("NUMBER");
  command
      .add_option_function<std::string>(
          "--units", [&request](const std::string& text) { fmdtool::parse_units(text, request.job.units); },
          "Units of the deck [MEGAGRAM,MILLIMETER,SECOND,NEWTON]")
      ->check(CLI::Validator(
          [](const std::string& text) {
            calculix::Units units;
            return fmdtool::parse_units(text, units);
          },
          ""))
      ->type_name("MASS,LENGTH,TIME,FORCE");
  add_node_list(command, "--interface-nodes", request.job.interface_nodes,
                "Interface nodes: names of node sets of the deck or of files with node ids; several with "
                "commas between them, or the option again");
  add_node_list(command, "--monitor", request.job.monitor_nodes,
                "Monitor points: nodes whose displacement a host may ask for, named as interface nodes are");
  add_invariants(command, request);
  add_reduction(command, reduction);
  command.callback([&request, &reduction] {
    if (request.job.results.empty() && reduction.matrices.empty()) throw CLI::RequiredError("results");
  });
  command
      .add_option(
          "--option", options,
          "Options of the dataset writer, such as single, no_xdr or lowpass(1000); may be given again "
          "[environment variable KXI_FMDWRITE_OPTIONS]")
      ->allow_extra_args(false)
      ->type_name("TEXT");
  command.add_flag("--json", request.json, "Print JSON instead of a table");
  command.add_flag("--verbose", request.verbose, "Show all messages of the toolkit");
}

int run(int count, char** arguments) {
  CLI::App app(
      "Flexible bodies for multibody dynamics: makes Flexible Modal Datasets from finite-element results");
  app.name("fmdtool");
  app.footer(std::string("`fmdtool translate calculix --help` tells the options of a translation.\n\n") +
             example);
  app.set_version_flag("--version", "fmdtool " FMDTOOL_VERSION, "Print the version and exit");
  app.require_subcommand(1);
  CLI::App& translate = *app.add_subcommand("translate", "Translate the results of a finite-element program");
  translate.require_subcommand(1);
  translate.footer(example);

  fmdtool::TranslateRequest request;
  request.job.comment = "Translated by fmdtool " FMDTOOL_VERSION;
  double density = 0.0;
  std::vector<std::string> options;
  ReductionOptions reduction;
  add_calculix_command(translate, request, density, options, reduction);
  CLI11_PARSE(app, count, arguments);

  if (!reduction.matrices.empty()) request.job.reduction = reduction_of(reduction);
  if (density > 0.0) request.job.density = density;
  for (const std::string& option : options) {
    request.write_options += (request.write_options.empty() ? "" : " ") + option;
  }
  return fmdtool::run_supervised([&] { return fmdtool::translate_calculix(request); });
}

}  // namespace

int main(int count, char** arguments) {
  try {
    return run(count, arguments);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "fmdtool: error: %s\n", error.what());
    return EXIT_FAILURE;
  }
}
