/* The exported names with their addresses; a null name ends the table. */
#ifndef FMDTOOLKIT_TESTS_EXPORTED_NAMES_H
#define FMDTOOLKIT_TESTS_EXPORTED_NAMES_H

typedef void (*exported_function)(void);

typedef struct exported_name {
  const char* name;
  exported_function function;
} exported_name;

extern const exported_name exported_names[];

#endif
