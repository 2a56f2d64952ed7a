// What an operation is tried on: a session, a body with some of everything, a record stream.
#ifndef FMDTOOLKIT_TESTS_SCENE_H
#define FMDTOOLKIT_TESTS_SCENE_H

#include "fmdtoolkit/fmdtoolkit.h"

namespace fmdtest {

struct Scene {
  FmdBody* body = nullptr;
  FmdStream stream = {};
  FmdPosition start = {};

  double values[600] = {};
  float floats[600] = {};
  int ints[600] = {};
  char text[8][256] = {};
};

constexpr int kSceneModes = 2;
constexpr int kSceneNodes = 8;
constexpr int kFirstNode = 11;

// From nothing at all to a stream open for writing or reading.
void no_body(Scene& scene);
void empty_body(Scene& scene);
void full_body(Scene& scene);
void body_of_thousand_nodes(Scene& scene);
void written_stream(Scene& scene);
void readable_stream(Scene& scene);

// Whether a body still takes and gives data, whatever happened to it before.
bool is_usable(FmdBody* body);

// File descriptors that the process has open.
long open_descriptors();

// Releases all and ends the session.
void leave(Scene& scene);

}  // namespace fmdtest

#endif
