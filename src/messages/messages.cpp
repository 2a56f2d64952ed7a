// The three message handlers and the formatting in front of them.
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

#include "fmdtoolkit/fmdtoolkit.h"

namespace {

FmdMessageHandler ErrorHandler = nullptr;
FmdMessageHandler WarningHandler = nullptr;
FmdMessageHandler InfoHandler = nullptr;

// Formats on the stack; a text that does not fit there (a long path in it) is formatted again on the heap.
void deliver(FmdMessageHandler handler, const char* format, va_list arguments) {
  char buffer[2000];
  va_list again;
  va_copy(again, arguments);
  const int length = std::vsnprintf(buffer, sizeof buffer, format, arguments);
  char* text = buffer;
  char* longer = nullptr;
  if (length >= static_cast<int>(sizeof buffer)) {
    const std::size_t size = static_cast<std::size_t>(length) + 1;
    longer = static_cast<char*>(std::malloc(size));
    if (longer != nullptr) {
      std::vsnprintf(longer, size, format, again);
      text = longer;
    }
  }
  va_end(again);
  handler(text);
  std::free(longer);
}

}  // namespace

int SetMessageHandlers(const FmdMessageHandlers* handlers) {
  ErrorHandler = handlers->error;
  WarningHandler = handlers->warning;
  InfoHandler = handlers->information;
  return 1;
}

void FMD_Error(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  deliver(ErrorHandler, format, arguments);
  va_end(arguments);
}

void FMD_Warning(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  deliver(WarningHandler, format, arguments);
  va_end(arguments);
}

void FMD_Info(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  deliver(InfoHandler, format, arguments);
  va_end(arguments);
}
