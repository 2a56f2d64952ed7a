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

/* Told of a stored body: the nodes and modes that it was written with, and the bytes of its words. */
typedef void (*FmdxBodyReport)(int nodes, int modes, long long bytes, void* context);

/* Reports each body of a database in the order of DB_GetBodyInfo, from the list that the database keeps: none is
   opened. It needs no session. How many there are, or -1 where the list cannot be read; report may be null. */
int FMDX_ListBodies(const char* path, FmdxBodyReport report, void* context);

/* Called with one line of text, without a newline, which holds during the call. */
typedef void (*FmdxReport)(const char* text, void* context);

/* Walks every byte of a master file that counts: header, roots, dictionaries, directories and the checksum of
   every page of every datablock. Reports each thing that is wrong, and where; report may be null. It needs no
   session and no message handlers, changes nothing, and may run while others read and write the database.
   0: sound. 1: damaged. 2: the file cannot be read or is no database of this toolkit; the reason is reported. */
int FMDX_CheckDatabase(const char* path, FmdxReport report, void* context);

#ifdef __cplusplus
}
#endif
#if defined(__GNUC__)
#pragma GCC visibility pop
#endif

#endif
