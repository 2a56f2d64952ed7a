// Captures what the library says.
#ifndef FMDTOOLKIT_TESTS_MESSAGE_LOG_H
#define FMDTOOLKIT_TESTS_MESSAGE_LOG_H

#include <string>
#include <vector>

namespace fmdtest {

// Installs handlers that collect texts; one log is active at a time, the latest.
class MessageLog {
 public:
  MessageLog();
  ~MessageLog();
  MessageLog(const MessageLog&) = delete;
  MessageLog& operator=(const MessageLog&) = delete;

  void clear();
  // All texts in order of arrival, each behind "E:", "W:" or "I:".
  std::vector<std::string> all;
  std::vector<std::string> errors;
  std::vector<std::string> warnings;
  std::vector<std::string> infos;
};

// "Failed to allocate memory at line <any> in file <module>.\n"
bool is_allocation_failure(const std::string& text, const std::string& module);

}  // namespace fmdtest

#endif
