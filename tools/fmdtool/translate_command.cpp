#include "translate_command.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <vector>

#include "body_output.h"
#include "console.h"
#include "report.h"
#include "workspace.h"
#include "write_options.h"

namespace fmdtool {

namespace fs = std::filesystem;

namespace {

// The body, and the session that comes with it.
class Session {
 public:
  explicit Session(FmdBody* body) : body_(body) {}
  ~Session() { FMD_Terminate(); }
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;
  FmdBody* body() const { return body_; }

 private:
  FmdBody* body_;
};

// JOB of JOB.frd, JOB.sti and both with .gz, with the directory.
fs::path job_name(const fs::path& file) {
  fs::path name = file;
  if (name.extension() == ".gz") name.replace_extension();
  if (name.extension() == ".frd" || name.extension() == ".sti") name.replace_extension();
  return name;
}

std::string with_ending(const fs::path& name, const char* ending) {
  return name.string() + ending;
}

// Fills in the names left out. Paths become absolute, since the work is done in another directory.
void complete(TranslateRequest& request) {
  calculix::Job& job = request.job;
  const fs::path results = job.results.empty() ? fs::path() : fs::absolute(job.results);
  if (job.reduction) {
    calculix::MatrixFiles& files = job.reduction->files;
    for (std::string* file : {&files.stiffness, &files.mass, &files.dofs}) {
      *file = fs::absolute(*file).string();
    }
  }
  const fs::path name = job_name(job.reduction ? fs::path(job.reduction->files.stiffness) : results);
  if (request.output.empty()) request.output = with_ending(name.filename(), ".fmd");
  if (request.job.deck.empty()) {
    request.job.deck = with_ending(name, ".inp");
    if (!fs::exists(request.job.deck)) {
      throw calculix::InputError(request.job.deck, 0,
                                 "expected the input deck of the job; name another one with --deck");
    }
  }
  request.job.results = results.string();
  request.job.deck = fs::absolute(request.job.deck).string();
}

void refuse_input_as_output(const TranslateRequest& request, const BodyOutput& output) {
  std::vector<std::string> inputs = {request.job.results, request.job.deck};
  if (request.job.reduction) {
    const calculix::MatrixFiles& files = request.job.reduction->files;
    inputs.insert(inputs.end(), {files.stiffness, files.mass, files.dofs});
  }
  const std::string& name = request.database.empty() ? request.output : request.database;
  for (const std::string& input : inputs) {
    refuse_as_output(output, input, name + ": expected an output file that is not an input file");
  }
}

// Paths below the directory from which the program was started are shown as seen from there.
std::string shown(const std::string& path, const fs::path& from) {
  const std::string prefix = from.string() + "/";
  return path.rfind(prefix, 0) == 0 ? path.substr(prefix.size()) : path;
}

std::string shown(const calculix::InputError& error, const fs::path& from) {
  return shown(error.file(), from) + ":" + (error.line() > 0 ? std::to_string(error.line()) + ":" : "") +
         " " + error.text();
}

Destination destination_of(const TranslateRequest& request) {
  if (!request.database.empty()) return {"", request.database};
  return {request.output, ""};
}

ReportedReduction reported(const calculix::Model& model, const fs::path& from) {
  const calculix::Reduction& reduction = *model.reduction;
  return {shown(model.job.reduction->files.stiffness, from), reduction.model.constraint_modes,
          reduction.model.modes - reduction.model.constraint_modes, reduction.attachments};
}

Report run(TranslateRequest& request, const fs::path& from) {
  complete(request);
  const auto output = make_output(destination_of(request));
  refuse_input_as_output(request, *output);
  set_write_options(request.write_options, request.invariants);
  refuse_unreadable(static_cast<int>(request.job.monitor_nodes.size()), output->is_database());
  install_message_handlers(request.verbose);
  const calculix::Model model = calculix::read_model(request.job, show_progress);
  for (const calculix::InputError& note : model.notes) print_warning(shown(note, from));

  Report report;
  const Qualifiers qualifiers = Qualifiers::defaults().changed_by(request.qualifiers);
  {
    const Workspace workspace;
    const Session session(calculix::make_body(model, show_progress));
    show_progress("Writing", 1.0);
    output->write(session.body(), qualifiers);
    output->commit();
    describe_body(session.body(), exported_modes(), report);
    if (!model.results_hertz.empty() && !report.modes.empty()) {
      const std::vector<double> hertz = frequencies_of(session.body());
      if (!hertz.empty()) report.comparison = compare_frequencies(hertz, model.results_hertz);
    }
    if (!request.invariants.empty()) describe_invariants(session.body(), request.invariants, report);
  }
  if (model.reduction) report.reduction = reported(model, from);
  report.title = model.title;
  report.results = shown(request.job.results, from);
  report.deck = shown(request.job.deck, from);
  report.dataset = shown(output->target().string(), from);
  if (output->is_database()) report.qualifiers = as_text(qualifiers);
  report.elements = static_cast<int>(model.contents.mesh.elements.size());
  report.bytes = fs::file_size(output->target());
  return report;
}

}  // namespace

int translate_calculix(TranslateRequest request) {
  const auto start = std::chrono::steady_clock::now();
  fs::path from;
  try {
    from = fs::current_path();
    Report report = run(request, from);
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
    report.seconds = time.count();
    clear_progress();
    const std::string text = request.json ? as_json(report) : as_table(report);
    if (std::fputs(text.c_str(), stdout) < 0 || std::fflush(stdout) != 0) {
      throw std::runtime_error("cannot write to standard output");
    }
    return EXIT_SUCCESS;
  } catch (const calculix::InputError& error) {
    print_error(shown(error, from));
  } catch (const std::bad_alloc&) {
    print_error("out of memory");
  } catch (const std::exception& error) {
    print_error(error.what());
  }
  return EXIT_FAILURE;
}

}  // namespace fmdtool
