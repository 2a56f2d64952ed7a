#include "support/message_log.h"

#include <regex>

#include "fmdtoolkit/fmdtoolkit.h"

namespace fmdtest {

namespace {

MessageLog* active = nullptr;

void on_error(const char* text) {
  if (active == nullptr) return;
  active->errors.emplace_back(text);
  active->all.emplace_back("E:" + std::string(text));
}

void on_warning(const char* text) {
  if (active == nullptr) return;
  active->warnings.emplace_back(text);
  active->all.emplace_back("W:" + std::string(text));
}

void on_information(const char* text) {
  if (active == nullptr) return;
  active->infos.emplace_back(text);
  active->all.emplace_back("I:" + std::string(text));
}

}  // namespace

MessageLog::MessageLog() {
  active = this;
  const FmdMessageHandlers handlers = {on_error, on_warning, on_information};
  SetMessageHandlers(&handlers);
}

MessageLog::~MessageLog() {
  if (active == this) active = nullptr;
}

void MessageLog::clear() {
  all.clear();
  errors.clear();
  warnings.clear();
  infos.clear();
}

bool is_allocation_failure(const std::string& text, const std::string& module) {
  return std::regex_match(text,
                          std::regex("Failed to allocate memory at line [0-9]+ in file " + module + "\\.\n"));
}

}  // namespace fmdtest
