// What the program says while it works: one line a message, and a progress bar on a terminal.
#ifndef FMDTOOL_CONSOLE_H
#define FMDTOOL_CONSOLE_H

#include <functional>
#include <string>

namespace fmdtool {

// Installs the toolkit's message handlers: errors and warnings go to standard error, information only where
// verbose.
void install_message_handlers(bool verbose);

void print_error(const std::string& text);
void print_warning(const std::string& text);

// Draws the bar if standard error is a terminal, otherwise nothing.
void show_progress(const char* step, double fraction);
void clear_progress();

// How many errors the toolkit has told since its handlers were installed.
int errors_told();

// The toolkit's errors go to this function instead of standard error; null for standard error again.
void divert_errors(std::function<void(const std::string& line)> to);

// How many modes the last written dataset holds, which the toolkit tells as information.
int exported_modes();

}  // namespace fmdtool

#endif
