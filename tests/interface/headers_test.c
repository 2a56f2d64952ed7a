/* Linked to the shared library as a host is: every exported name has an address, no two have the same. */
#include <fmdtoolkit/fmdtoolkit.h>
#include <stdio.h>

#include "exported_names.h"

int body_lookup_from_cpp(FmdBody* body);
int outline_of_a_triangle_from_cpp(void);

static int count_faults(void) {
  int faults = 0;
  for (const exported_name* entry = exported_names; entry->name != NULL; entry++) {
    if (entry->function == NULL) {
      printf("%s has no address\n", entry->name);
      faults++;
    }
    for (const exported_name* other = exported_names; other != entry; other++) {
      if (other->function != entry->function) continue;
      printf("%s and %s are one function\n", other->name, entry->name);
      faults++;
    }
  }
  return faults;
}

int main(void) {
  int faults = count_faults();
  if (body_lookup_from_cpp(NULL) != 0) {
    printf("a null handle counts as a live body\n");
    faults++;
  }
  if (outline_of_a_triangle_from_cpp() != 4) {
    printf("a triangle has another outline\n");
    faults++;
  }
  return faults == 0 ? 0 : 1;
}
