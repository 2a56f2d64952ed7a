/* The chief header needs no other before it, and may come twice. */
#include <fmdtoolkit/fmdtoolkit.h>
#include <fmdtoolkit/fmdtoolkit.h>

/* Hosts store positions and hand streams over by value: their layout is part of the interface. */
_Static_assert(sizeof(FmdPosition) == 8, "a position is two words");
_Static_assert(sizeof(FmdStream) == 72, "the record stream keeps its size");
_Static_assert(sizeof(FmdUnit) == 16, "a unit is a label and a factor");
_Static_assert(sizeof(FmdMessageHandlers) == 3 * sizeof(void*), "three handlers");
