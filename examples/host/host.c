/* host.c - a host that loads the FMD toolkit at run time and reaches all of it through one table.
 *
 * host LIBRARY OUT.fmd: makes a bar of two nodes with one mode and writes it as a dataset.
 * Build: cc host.c -I<include> -ldl
 */
#define _POSIX_C_SOURCE 200809L

#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>

#include "fmdtoolkit/fmdtoolkit.h"

/* Places in the table that this host needs. They never change. */
enum {
  kCreate = 0,
  kSetNodeCoordinates = 32,
  kSetNodalMass = 38,
  kSetModeVec = 51,
  kSetGeneralizedMass = 61,
  kSetGeneralizedStiffness = 62,
  kWriteFmd = 99,
  kTerminate = 105,
  kEntries = 172
};

/* A function out of a pointer to data: C has no cast for it, but the bytes are the same. */
#define TAKE(function, source)                     \
  do {                                             \
    void* address_ = (source);                     \
    memcpy(&(function), &address_, sizeof(void*)); \
  } while (0)

static void on_error(const char* text) {
  fprintf(stderr, "error: %s\n", text);
}
static void on_warning(const char* text) {
  fprintf(stderr, "warning: %s\n", text);
}
static void on_information(const char* text) {
  printf("%s\n", text);
}

static int write_bar(void** table, char* path) {
  FmdBody* (*create)(int, int);
  int (*set_coordinates)(FmdBody*, int, double, double, double);
  int (*set_mass)(FmdBody*, int, double);
  int (*set_mode)(FmdBody*, int, int, int, double*);
  int (*set_generalized_mass)(FmdBody*, int, int, double);
  int (*set_generalized_stiffness)(FmdBody*, int, int, double);
  int (*write_fmd)(FmdBody*, char*);
  TAKE(create, table[kCreate]);
  TAKE(set_coordinates, table[kSetNodeCoordinates]);
  TAKE(set_mass, table[kSetNodalMass]);
  TAKE(set_mode, table[kSetModeVec]);
  TAKE(set_generalized_mass, table[kSetGeneralizedMass]);
  TAKE(set_generalized_stiffness, table[kSetGeneralizedStiffness]);
  TAKE(write_fmd, table[kWriteFmd]);

  FmdBody* bar = create(2, 1);
  if (bar == NULL) return 0;
  double stretch[2][6] = {{-1.0, 0, 0, 0, 0, 0}, {1.0, 0, 0, 0, 0, 0}};
  int complete = 1;
  for (int node = 1; node <= 2; ++node) {
    complete = complete && set_coordinates(bar, node, node - 1.0, 0.0, 0.0) && set_mass(bar, node, 0.5) &&
               set_mode(bar, 1, node, 0, stretch[node - 1]);
  }
  return complete && set_generalized_mass(bar, 1, 1, 1.0) && set_generalized_stiffness(bar, 1, 1, 1.0e6) &&
         write_fmd(bar, path);
}

int main(int argc, char** argv) {
  if (argc != 3) {
    fprintf(stderr, "usage: %s LIBRARY OUT.fmd\n", argv[0]);
    return 2;
  }
  void* library = dlopen(argv[1], RTLD_NOW);
  if (library == NULL) {
    fprintf(stderr, "%s\n", dlerror());
    return 1;
  }
  int (*set_handlers)(const FmdMessageHandlers*);
  int (*populate)(void**);
  void (*terminate)(void);
  TAKE(set_handlers, dlsym(library, "SetMessageHandlers"));
  TAKE(populate, dlsym(library, "PopulateInterface"));

  /* Handlers first: a message without one is a fault. Then a directory for the database. */
  const FmdMessageHandlers handlers = {on_error, on_warning, on_information};
  set_handlers(&handlers);
  setenv("KXI_KADCDB_DIR", ".", 0);

  void* table[kEntries] = {NULL};
  populate(table);
  const int complete = write_bar(table, argv[2]);
  TAKE(terminate, table[kTerminate]);
  terminate();
  dlclose(library);

  struct stat written;
  if (!complete || stat(argv[2], &written) != 0) return 1;
  printf("%s: %ld bytes\n", argv[2], (long)written.st_size);
  return 0;
}
