/* extensions.h - what hosts need beyond the interface of fmdtoolkit.h. */
#ifndef FMDTOOLKIT_EXTENSIONS_H
#define FMDTOOLKIT_EXTENSIONS_H

#if defined(__GNUC__)
#pragma GCC visibility push(default) /* leaves the library, which hides all else */
#endif
#ifdef __cplusplus
extern "C" {
#endif

/* Called by long work with the steps done and their total: once with 0 at its start, then after each step. */
typedef void (*FmdxProgressHandler)(int done, int total);

/* Installs the handler; null, as at the start, switches progress off. */
void FMDX_SetProgressHandler(FmdxProgressHandler handler);

/* How many bytes the words of an open datablock take in its database; -1 for a key that is none. */
long long FMDX_DatablockBytes(int block);

#ifdef __cplusplus
}
#endif
#if defined(__GNUC__)
#pragma GCC visibility pop
#endif

#endif
