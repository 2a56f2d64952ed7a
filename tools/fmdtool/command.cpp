#include "command.h"

#include <cstdio>
#include <new>
#include <stdexcept>

#include "console.h"

namespace fmdtool {

namespace {

CLI::Validator checked_by(std::string (*parse)(const std::string&, Qualifiers&)) {
  return CLI::Validator(
      [parse](const std::string& text) {
        Qualifiers qualifiers;
        return parse(text, qualifiers);
      },
      "");
}

}  // namespace

int guarded(const Work& work, int failure) {
  try {
    const int code = work();
    finish_output();
    return code;
  } catch (const std::bad_alloc&) {
    print_error("out of memory");
  } catch (const std::exception& error) {
    print_error(error.what());
  }
  return failure;
}

void print(const std::string& text) {
  clear_progress();
  std::fputs(text.c_str(), stdout);
}

void finish_output() {
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
    throw std::runtime_error("cannot write to standard output");
  }
}

void add_database(CLI::App& command, std::string& name, const char* description) {
  command.add_option("database", name, description)->required()->type_name("DB.MASTER");
}

void add_choice(CLI::App& command, BodyChoice& choice) {
  CLI::Option* const number =
      command.add_option("--body", choice.number, "The body of this number, as the command list tells it")
          ->check(CLI::Range(1, 2147483647))
          ->type_name("N");
  command
      .add_option("--select", choice.select,
                  "Bodies by qualifiers, such as \"SELABEL='arm',PROJNO=2\", or by their label alone")
      ->check(checked_by(parse_qualifiers))
      ->excludes(number)
      ->type_name("TEXT");
}

void add_write_options(CLI::App& command, std::vector<std::string>& options) {
  command
      .add_option(
          "--option", options,
          "Options of the dataset writer, such as single, no_xdr or lowpass(1000); may be given again "
          "[environment variable KXI_FMDWRITE_OPTIONS]")
      ->allow_extra_args(false)
      ->type_name("TEXT");
}

void add_qualifiers(CLI::App& command, std::string& qualifiers) {
  command
      .add_option(
          "--qualifiers", qualifiers,
          "What the body is stored under, such as \"SELABEL='arm',PROJNO=2\", or a label alone; a body "
          "that has the same ones is replaced")
      ->check(checked_by(parse_new_qualifiers))
      ->type_name("TEXT");
}

}  // namespace fmdtool
