/* A host in plain C: builds a small body, asks it for its mass and a mode, writes it as a dataset. */
#include <fmdtoolkit/fmdtoolkit.h>
#include <math.h>
#include <stdio.h>

enum { node_count = 4, mode_count = 2 };

static void show_error(const char* text) { fprintf(stderr, "error: %s", text); }
static void show_warning(const char* text) { fprintf(stderr, "warning: %s", text); }
static void ignore_information(const char* text) { (void)text; }

/* Four nodes of one kilogram on a unit square; each mode moves them along one axis. */
static FmdBody* make_body(void) {
  FmdBody* body = FMD_Create(node_count, mode_count);
  if (body == NULL) return NULL;
  for (int node = 1; node <= node_count; node++) {
    FMD_SetNodeCoordinates(body, node, node == 2 || node == 3, node >= 3, 0.0);
    FMD_SetNodalMass(body, node, 1.0);
  }
  for (int mode = 1; mode <= mode_count; mode++) {
    for (int node = 1; node <= node_count; node++) {
      double values[6] = {0.0};
      values[mode - 1] = 0.5;
      FMD_SetModeVec(body, mode, node, 0, values);
    }
    FMD_SetGeneralizedMass(body, mode, mode, 1.0);
    FMD_SetGeneralizedStiffness(body, mode, mode, 1000.0 * mode);
  }
  FMD_SetUnits(body, "KILOGRAM", "METER", "SECOND", "NEWTON");
  return body;
}

static int body_answers(FmdBody* body) {
  double mass = 0.0;
  double inertia[9];
  double center[3];
  double shape[3 * node_count];
  if (FMD_TotalMassInertia(body, &mass, inertia, center) == 0) return 0;
  if (FMD_Mode(body, 2, 0, shape, 0) == 0) return 0;
  return fabs(mass - 4.0) <= 1e-12 && fabs(center[0] - 0.5) <= 1e-12 && shape[1] == 0.5;
}

static int file_has_bytes(const char* path) {
  FILE* file = fopen(path, "rb");
  if (file == NULL) return 0;
  int first = fgetc(file);
  fclose(file);
  return first != EOF;
}

int main(int argc, char** argv) {
  static const FmdMessageHandlers handlers = {show_error, show_warning, ignore_information};
  SetMessageHandlers(&handlers);
  FmdBody* body = make_body();
  int good = argc == 2 && body != NULL && body_answers(body) && FMD_write_FMD(body, argv[1]) == 1 &&
             file_has_bytes(argv[1]);
  FMD_Terminate();
  printf(good ? "dataset written\n" : "failed\n");
  return good ? 0 : 1;
}
