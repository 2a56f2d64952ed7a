/* The header of the extensions needs no other before it, and may come twice. */
#include <fmdtoolkit/extensions.h>
#include <fmdtoolkit/extensions.h>

_Static_assert(sizeof(FmdxProgressHandler) == sizeof(void*), "a handler is a pointer");
