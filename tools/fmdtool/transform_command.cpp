#include "transform_command.h"

#include <map>
#include <memory>

#include "body_steps.h"
#include "console.h"
#include "workspace.h"
#include "write_options.h"

namespace fmdtool {

namespace fs = std::filesystem;

namespace {

constexpr const char* footer =
    "The steps are taken in the order in which they are given, each in the units and about the origin that\n"
    "the body has by then. A rotation follows the right-hand rule; the plane of a mirror and the axis of a\n"
    "rotation go through the origin unless a point is given.\n"
    "\n"
    "Examples:\n"
    "  fmdtool transform parts.MASTER --select arm --rotate 0,0,1,90 --translate 10,0,0 -o turned.fmd\n"
    "  fmdtool transform parts.MASTER --body 2 --mirror 0,1,0 --units KILOGRAM,METER,SECOND,NEWTON \\\n"
    "      --database mirrored.MASTER --qualifiers \"SELABEL='left arm'\"\n"
    "\n";

struct TransformRequest {
  std::string database;
  BodyChoice choice;
  Destination destination;
  std::string qualifiers;
  std::vector<BodyStep> steps;
  std::vector<std::string> options;
  bool verbose = false;
};

using Parser = std::string (*)(const std::string&, BodyStep&);

// The options that ask for steps, with what has been given to each.
struct StepOption {
  Parser parse;
  std::vector<std::string> texts;
  std::size_t taken = 0;
};

class StepOptions {
 public:
  void add(CLI::App& command, const char* name, const char* type, const char* description, Parser parse) {
    const auto option = std::make_shared<StepOption>();
    option->parse = parse;
    CLI::Option* const made = command.add_option(name, option->texts, description)
                                  ->allow_extra_args(false)
                                  ->check(CLI::Validator(
                                      [parse](const std::string& text) {
                                        BodyStep step;
                                        return parse(text, step);
                                      },
                                      ""))
                                  ->type_name(type);
    options_[made] = option;
  }

  std::vector<BodyStep> in_order(const CLI::App& command) {
    std::vector<BodyStep> steps;
    for (const CLI::Option* given : command.parse_order()) {
      const auto found = options_.find(given);
      if (found == options_.end()) continue;
      StepOption& option = *found->second;
      BodyStep step;
      option.parse(option.texts.at(option.taken++), step);
      steps.push_back(step);
    }
    return steps;
  }

 private:
  std::map<const CLI::Option*, std::shared_ptr<StepOption>> options_;
};

// What cannot follow a step is an error that the toolkit tells.
void take(const std::vector<BodyStep>& steps, FmdBody* body, const std::string& place) {
  for (const BodyStep& step : steps) {
    if (step(body) == 0 || errors_told() > 0) throw std::runtime_error(place + ": cannot be transformed");
  }
}

int transform(const TransformRequest& request) {
  const fs::path path = fs::absolute(request.database);
  const auto output = make_output(request.destination);
  refuse_as_output(*output, path,
                   request.database + ": expected another output than the database that is read");
  set_write_options(joined(request.options));
  const bool keeps_form = output->is_database() && !has_write_options(joined(request.options));
  install_message_handlers(request.verbose);
  const Workspace workspace;
  const ToolkitSession session;
  const Database database(path, request.database);
  const StoredBody stored = database.chosen_one(request.choice);
  FmdBody* const body = database.read(stored);
  if (keeps_form) replace_write_options(options_that_keep(body));
  take(request.steps, body, database.place_of(stored));
  show_progress("Writing", 1.0);
  output->write(body, stored.qualifiers.changed_by(request.qualifiers));
  output->commit();
  return EXIT_SUCCESS;
}

void add_steps(CLI::App& command, StepOptions& steps) {
  steps.add(command, "--translate", "X,Y,Z", "Move the body by this vector", parse_translation);
  steps.add(command, "--rotate", "AX,AY,AZ,DEGREES[,X,Y,Z]", "Turn the body about an axis, by degrees",
            parse_rotation);
  steps.add(command, "--mirror", "NX,NY,NZ[,X,Y,Z]", "Reflect the body in the plane with this normal",
            parse_mirror);
  steps.add(command, "--units", "MASS,LENGTH,TIME,FORCE", "Change the units of the body",
            parse_change_of_units);
}

void add_outputs(CLI::App& command, TransformRequest& request) {
  CLI::Option* const file =
      command.add_option("-o,--output", request.destination.file, "Dataset to write")->type_name("OUT.fmd");
  CLI::Option* const database = command
                                    .add_option("-d,--database", request.destination.database,
                                                "Database to store the body in; made if it is not there")
                                    ->excludes(file)
                                    ->type_name("TO.MASTER");
  add_qualifiers(command, request.qualifiers);
  command.get_option("--qualifiers")->needs(database);
}

}  // namespace

void add_transform_command(CLI::App& app, Work& work) {
  CLI::App& command =
      *app.add_subcommand("transform", "Move, turn or reflect a body of a database, or change its units");
  command.footer(std::string(footer) + exit_status);
  const auto request = std::make_shared<TransformRequest>();
  const auto steps = std::make_shared<StepOptions>();
  add_database(command, request->database);
  add_choice(command, request->choice);
  add_steps(command, *steps);
  add_outputs(command, *request);
  add_write_options(command, request->options);
  command.add_flag("--verbose", request->verbose, "Show all messages of the toolkit");
  command.callback([&command, &work, request, steps] {
    request->steps = steps->in_order(command);
    if (request->steps.empty()) {
      throw CLI::ValidationError("transform", "expected --translate, --rotate, --mirror or --units");
    }
    if (request->destination.file.empty() && request->destination.database.empty()) {
      throw CLI::ValidationError("transform", "expected an output, --output or --database");
    }
    work = [request] { return guarded([&] { return transform(*request); }); };
  });
}

}  // namespace fmdtool
