// Numbers from text: whole fields, never part of one.
#ifndef FMDTOOLKIT_CALCULIX_NUMBER_TEXT_H
#define FMDTOOLKIT_CALCULIX_NUMBER_TEXT_H

#include <string_view>

namespace calculix {

// Without blanks and tabs at both ends.
std::string_view trimmed(std::string_view text);

// Columns first to last of a line, counted from 1; shorter or empty where the line ends before.
std::string_view columns(std::string_view line, std::size_t first, std::size_t last);

// The whole field, blanks at its ends aside, must be one number. Reals are finite and may have an exponent
// letter E or D of any case, or none before a signed exponent of three digits, as Fortran writes it.
bool parse_int(std::string_view field, int& value);
bool parse_real(std::string_view field, double& value);

// The next number of a run of "d.dddddE+dd" numbers that may have no blank between them and exponents of
// two or three digits. Removes it from the text.
bool take_real(std::string_view& text, double& value);

}  // namespace calculix

#endif
