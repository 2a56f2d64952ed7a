#include "dataset_reader/sample_dataset.h"

namespace dataset_reader {

const std::vector<Form> kForms = {
    // word, XDR, single, word before shapes, word before stresses
    {0x13C, true, false, true, true},  {0x33C, true, true, true, true},  {0x03C, false, false, true, true},
    {0x23C, false, true, true, true},  {41, true, false, true, true},    {51, true, true, true, true},
    {40, false, false, true, true},    {50, false, true, true, true},    {20, false, false, true, true},
    {10, false, false, false, false},  {30, false, false, true, false},  {31, true, false, true, false},
    {0x53C, true, false, true, true},  {0x433, true, true, true, true},  {0x432, false, true, true, true},
    {0x414, false, false, true, true}, {0x1FF, true, false, true, true},
};

namespace {

// Two vectors over the nodes, whose values count up from the base of each mode.
void append_mode_vectors(Bytes& bytes, std::initializer_list<int> nodes, bool has_word, double base) {
  const int n = static_cast<int>(nodes.size());
  bytes.ints({2, n}).ints(nodes);
  for (int mode = 1; mode <= 2; ++mode) {
    if (has_word) bytes.ints({mode});
    bytes.ramp(base + 100 * mode, 6 * n);
  }
}

void append_loads(Bytes& bytes) {
  bytes.ints({2, 1}).reals({7.5, -8.5});                                // 27
  bytes.ints({2, 1}).text("gravity", 256).ints({0}).reals({1.5, 2.5});  // 28
}

void append_statistics(Bytes& bytes) {
  bytes.ints({2});
  for (int mode = 1; mode <= 2; ++mode) {
    bytes.ints({30, 10, 20, 20, 0, 0, 0, 0, 0, 0, 0, 0, 0});
    bytes.reals({1.0 * mode, 2.0, 3.0, 4.0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
  }
}

void append_monitor_points(Bytes& bytes) {
  bytes.ints({1, 2, 3, 135}).text("TIP", 8).text("tip of the arm", 56).ints({2, 0xF});
  bytes.ramp(1, 4).ramp(11, 4).ramp(21, 4).ramp(31, 4);
}

void append_operators(Bytes& bytes) {
  bytes.ints({1, 2}).text("OPER", 8).text("row one", 80).text("row two", 80);
  bytes.ints({2, 3}).text("A", 8).ramp(1, 6).ints({1}).text("B", 8).ramp(7, 2);
}

}  // namespace

std::vector<unsigned char> sample_dataset(const Form& form) {
  Bytes bytes(form);
  bytes.opening({0,  2,  3,  4,  5,  6,  8,  9,  10, 12, 13, 14, 15, 16, 17, 18,
                 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 31, 32, 33});
  bytes.ints({3, 3});  // 4
  bytes.ints({30}).reals({0.5, 1.5, 2.5}).ints({10}).reals({-1, -2, -3}).ints({20}).reals({4, 5, 6});
  bytes.reals({6.0, 0.1, 0.2, 0.3}).ramp(1, 9);                          // 6
  bytes.ints({2, 1}).ramp(10, 5).ints({2}).ramp(20, 5);                  // 7
  append_mode_vectors(bytes, {30, 10, 20}, form.shape_word, 0.0);        // 8
  bytes.ints({3, 1, 30}).real(1).ints({10}).real(2).ints({20}).real(3);  // 9
  bytes.ints({2, 30}).character(4).character(4).real(0.5);               // 10
  bytes.ints({20}).character(4).character(6).real(-0.25);
  bytes.text("MEGAGRAM", 16).text("MILLIMETER", 16).text("SECOND", 16).text("NEWTON", 16);  // 11
  bytes.ints({1, 2, 1, 1}).real(99).ints({1});                                              // 12
  bytes.ints({1, 2, 2, 1}).real(98).ints({1});                                              // 13
  bytes.ints({16 + 4 * 7, 0, 2, 7, 3, 0, 1, 2, 2, 2, 0});                                   // 14
  bytes.ints({1, 1, 3, 4}).real(0.75).ints({1});                                            // 15
  bytes.ints({2, 11, 12}).reals({1, 2, 3, 4});                                              // 16
  bytes.ints({2, 2, 0});                                                                    // 17
  append_mode_vectors(bytes, {20, 30}, form.stress_word, 1000.0);                           // 18
  bytes.real(6).reals({1, 2, 3});                                                           // 19, 20
  bytes.ints({2}).ramp(1, 6).ints({2}).ramp(11, 6).ints({2}).ramp(21, 12);                  // 21, 22, 23
  bytes.ramp(1, 9).ints({2}).ramp(11, 18).ints({2}).ramp(31, 36);                           // 24, 25, 26
  append_loads(bytes);
  append_mode_vectors(bytes, {10}, form.stress_word, 2000.0);  // 29
  append_statistics(bytes);                                    // 30
  bytes.ints({2}).ramp(1, 12).ints({1}).ramp(21, 6);           // 31, 32
  append_monitor_points(bytes);                                // 33
  append_operators(bytes);                                     // 34
  bytes.ints({2, 1, 2, 6}).real(-9).ints({0});                 // 35
  return bytes.data;
}

}  // namespace dataset_reader
