/* fmdtoolkit.h - flexible bodies of a multibody simulation: build, check, store.
 *
 * This header is the manual of the toolkit. It is plain C (C11) and compiles as C++17.
 *
 * Conventions
 *
 *  1. Names.       FMD_ operations work on a body, DB_ operations on the database behind it.
 *  2. Results.     An int result is 1 for success and 0 for failure; an index lookup answers -1 for
 *                  "not found"; a getter answers 0, 0.0 or a null pointer for a bad argument. Where
 *                  an operation differs, its comment says so.
 *  3. Messages.    The library prints nothing. It speaks through three handlers that the host installs
 *                  with SetMessageHandlers before any other call; a message without a handler is a
 *                  fault of the host. A handler must not call back into the library.
 *  4. Null rule.   A null body is reported ("The database has not been initialized.") and answered
 *                  with the failure result. Other pointers must be valid unless "may be null" is said.
 *  5. Ownership.   The library owns a body and all that hangs on it. An array that a getter returns is
 *                  new and goes back with FMD_FreeMemory. Arrays that the caller passes stay the caller's.
 *  6. Keys.        Node ids and mode numbers are the caller's own sparse integers. Indices are dense and
 *                  count from 0 in the order of first mention. A setter that names an unknown node or
 *                  mode creates it; a getter never does.
 *  7. Types.       A mode info type is 0 mode shape, 1 modal stress, 2 modal strain. A mode vector holds
 *                  six doubles per node that carries the type: part 0 the first three (translations, or
 *                  normal components xx yy zz), part 1 the last three (rotations in radians, or shear
 *                  components xy xz yz).
 *  8. Order.       A 3 by 3 matrix is nine doubles, row by row; larger matrices are row by row too.
 *  9. Units.       Numbers are in the body's own units (FMD_Units). Frequencies are in Hz and in radians
 *                  per time unit. A body without units counts as kilogram, metre, second, newton.
 * 10. Frame.       All vectors and tensors are given in the body's one reference frame.
 * 11. Threads.     The library has no lock and starts no thread: a host makes all calls from one thread,
 *                  or one at a time. Even a lookup may change a body.
 * 12. Signals.     The library changes no signal's disposition. A host that limits file sizes ignores
 *                  SIGXFSZ; the write then fails with a message.
 * 13. Environment. KXI_KADCDB_DIR           an existing directory for the database; needed for any body
 *                  KXI_FMDWRITE_OPTIONS      options of FMD_write_FMD
 *                  FMD_MAX_MODE_MEMORY       budget of the mode cache in megabytes, default 200
 *                  FMD_RIGID_BODY_THRESHOLD  frequency in Hz up to which a mode is taken for rigid
 *                  KXI_MFORCE_NO_FEA_MASS    if set, rigid loads come from a fit, not from nodal masses
 *                  KXI_DATABASE_TRACE        if set when a session begins, each operation of the database
 *                                            is printed to standard error
 */
#ifndef FMDTOOLKIT_FMDTOOLKIT_H
#define FMDTOOLKIT_FMDTOOLKIT_H

#include <stdint.h>
#include <stdio.h>

#if defined(__GNUC__)
#pragma GCC visibility push(default) /* leaves the library, which hides all else */
#endif
#ifdef __cplusplus
extern "C" {
#endif

/* ---------------------------------------------------------------- records -- */

/* One flexible body. Hosts hold pointers to it and never look inside. */
typedef struct FmdBody FmdBody;

/* A saved place in a record stream. Stored and restored, never interpreted. */
typedef struct FmdPosition {
  int32_t Word[2];
} FmdPosition;

struct FmdXdr;

/* The state of one record stream of 32-bit words; it travels by value. */
typedef struct FmdStream {
  FILE* File;                /* plain file, where the stream is one; no record operation touches it */
  char* Name;                /* name of the database that the stream reads */
  int32_t UsesXdr;           /* nonzero while Xdr is live */
  struct FmdXdr* Xdr;        /* codec on File, owned */
  int32_t IsScratch;         /* 1: temporary store that the body owns */
  int32_t DoublePrecision;   /* 1: a real is two words; 0: one word */
  float* FloatBuffer;        /* room to narrow reals, shared and not owned */
  int32_t Block;             /* key of the open datablock; 0 none */
  FmdPosition StartPosition; /* where DB_REWIND goes */
  int32_t BodyIndex;         /* index of the body in its container */
  int32_t Key;               /* scratch id, or assignment number of an opened dataset */
} FmdStream;

/* One entry of a unit table; the entry after the last has a null label. */
typedef struct FmdUnit {
  const char* label;
  double factor; /* how many SI base units one of this unit is */
} FmdUnit;

/* Receives one zero-terminated text; a newline is there only if the message has one. */
typedef void (*FmdMessageHandler)(const char* text);

typedef struct FmdMessageHandlers {
  FmdMessageHandler error;
  FmdMessageHandler warning;
  FmdMessageHandler information;
} FmdMessageHandlers;

/* --------------------------------------------------------------- messages -- */

/* Installs the three handlers; comes before every other call. Always 1; pointers are not tested. */
int SetMessageHandlers(const FmdMessageHandlers* handlers);

/* Format as printf does and hand the text to the handler of that level. */
#if defined(__GNUC__)
#define FMD_PRINTF_LIKE __attribute__((format(printf, 1, 2)))
#else
#define FMD_PRINTF_LIKE
#endif
void FMD_Error(const char* format, ...) FMD_PRINTF_LIKE;
void FMD_Warning(const char* format, ...) FMD_PRINTF_LIKE;
void FMD_Info(const char* format, ...) FMD_PRINTF_LIKE;

/* Fixed texts with the name and revision of each module of the library. */
const char* fmdcreate_VersionId(void);
const char* fmddata_VersionId(void);
const char* fmdset_VersionId(void);
const char* fmdtools_VersionId(void);
const char* fmdcoarse_VersionId(void);
const char* dbinvar_VersionId(void);
const char* dbread_VersionId(void);
const char* dbunits_VersionId(void);
const char* dbwrite_VersionId(void);

/* Processor time of the process, in seconds. */
double FMD_cputime(void);

/* Local time as text: mode 1 "YYYY-MM-DD", mode 2 "hh:mm +zzzz", any other mode both. The zone offset is
   positive east of Greenwich. A negative mode writes the text of its absolute value and also prints two
   lines to standard output. The buffer needs 64 bytes. */
void FMD_localtime_ISO8601(int mode, char* text);

/* Name (mode 1, 11), version (2, 12) and platform number (3, 13) of the system; modes 1 to 3 join with
   blanks, 11 to 13 with underscores; any other mode gives the name. The buffer needs 64 bytes. */
void FMD_uname(int mode, char* text);

/* -------------------------------------------------------------- lifecycle -- */

/* A new, empty body with room for the planned numbers of nodes and modes in its temporary mode files, or
   null when there is no memory or the database session cannot start. It counts one reference. */
FmdBody* FMD_Create(int nodeCount, int modeCount);

/* Releases the body at once, whatever its reference count. Null and unknown handles are ignored. */
void FMD_UnLink(FmdBody* body);

/* Drops one reference; the last one releases the body. Unknown handles are ignored. */
void FMD_DeReference(FmdBody* body);

/* Releases all bodies and ends the database session, deleting its work files. */
void FMD_Terminate(void);

/* Does nothing; FMD_UnLink and FMD_DeReference release a body. */
void FMD_Destroy(void);

/* Gives back an array that the library returned; null is ignored. */
void FMD_FreeMemory(void* pointer);

/* The oldest live body, or null. */
FmdBody* FMD_GetFirstFMD(void);

/* The body with this index (from 1) in a database file: one that is live already, with one more reference, or
   a new one that is read; null, with a message, where it cannot be. A live body is found by the file's name
   as it was given. Mode vectors and invariants stay in the file until they are asked for. The second form
   hands out the body reduced to its surface mesh; whole and reduced, one stored body may be live twice. */
FmdBody* FMD_CreateFromFMD(char* fileName, int index);
FmdBody* FMD_CreateFromFMD_SurfaceMesh(char* fileName, int index);

/* Reads a stored body into a new, empty one: 1, or 0 with a message and the body half filled, which the
   caller releases. 0 without a word for a null body. */
int FMD_ReadFMD(FmdBody* body, char* fileName, int index);

/* 1 if the handle is a live body, otherwise 0; reports nothing. */
int FMD_IsValid(FmdBody* body);

/* 1 unless the handle is null, which it reports. */
int CheckFMD(FmdBody* body);

/* Whether the body holds a dataset block. The id is the block's number less one: 3 nodal coordinates, 5
   global mass, 6 eigenvalues, 7 mode shapes, 8 nodal masses, 9 nodal inertias, 11 and 12 generalized
   stiffness and mass, 13 faces, 16 interface nodes, 17 modal stress, 28 modal strain, and so on. Ids 0 to 2
   always answer 1; others the stored byte; 35 and above 0. */
int FMD_Exists(FmdBody* body, int id);

/* -------------------------------------------------------- nodes and modes -- */

/* Append a node or mode without looking for one of that key. The new index, or -1. Nodes in ascending id
   order are cheapest. A body holds at most the planned number of modes. */
int FMD_AddNode(FmdBody* body, int id);
int FMD_AddMode(FmdBody* body, int number);

/* The index of the node or mode, which is created if it is not there; -1 on failure. */
int FMD_LookupOrAddNode(FmdBody* body, int id);
int FMD_LookupOrAddMode(FmdBody* body, int number);

/* Between keys and indices. FMD_NodeID answers 0 and the others -1 for "not there". FMD_ModeIndex reports no
   null body. */
int FMD_NodeIndex(FmdBody* body, int id);
int FMD_NodeID(FmdBody* body, int index);
int FMD_ModeIndex(FmdBody* body, int number);
int FMD_ModeNumber(FmdBody* body, int index);

int FMD_NodeCount(FmdBody* body);
int FMD_ModeCount(FmdBody* body);

/* The nodes that carry data of a mode info type: their number, the id at a place, the place of an id. For
   mode shapes places are node indices. */
int FMD_ModeNodeCount(FmdBody* body, int type);
int FMD_ModeNodeID(FmdBody* body, int type, int index);
int FMD_ModeNodeIndex(FmdBody* body, int type, int id);

/* Compares the first int of each side, for qsort and bsearch over ids or (id, index) pairs. */
int By_Id(const void* left, const void* right);

/* The place of a mode number in an ascending array, or -1. */
int SelectedModeIndex(int number, int* selected, int count);

/* Marks an existing node as interface node; a second time changes nothing. 0 for an unknown id. */
int FMD_SetInterfaceNode(FmdBody* body, int id);

/* New arrays of the interface nodes' indices or ids in order of definition, or null; count is set. */
int* FMD_InterfaceNodes(FmdBody* body, int* count);
int* FMD_InterfaceNodeIDs(FmdBody* body, int* count);

/* Exchanges the records of two nodes in the node table. */
void FMD_SwapNodesByID(FmdBody* body, int first, int second);

/* Adds the offset to every node id. Always 1. */
int FMD_RenumberNodes(FmdBody* body, int offset);

/* Gives the i-th interface node the id ids[i]; a node that bears it already takes the old one. Always 1. */
int FMD_RenumberInterfaceNodes(FmdBody* body, int count, int* ids);

/* ------------------------------------------------- header and nodal data -- */

/* Sets the descriptive texts and the creation time. Limits are 127, 127, 15 and three times 79 characters;
   longer texts are cut with a warning. Newlines in the caller's texts become blanks. Always 1. */
int FMD_SetHeader(FmdBody* body, char* title, char* inputFileName, char* inputFileType, char* comment1,
                  char* comment2, char* comment3);

/* Copies the texts to the buffers that are not null: 128, 32, 128, 16 and three times 80 bytes. */
void FMD_Header(FmdBody* body, char* title, char* creationTime, char* inputFileName, char* inputFileType,
                char* comment1, char* comment2, char* comment3);

/* Format version of the body (low byte of its version word). Setting one of 10, 20, 30, 31, 40, 41, 50, 51
   also clears the single precision and coarsened marks. */
int FMD_Version(FmdBody* body);
void FMD_SetVersion(FmdBody* body, int version);

/* Coordinates of a node, in length units. The getter zeroes its three doubles for a bad index. */
int FMD_SetNodeCoordinates(FmdBody* body, int id, double x, double y, double z);
int FMD_NodeCoordinates(FmdBody* body, int index, double* xyz);

/* All coordinates, three doubles per node in node order, and the node count. */
int FMD_NodeCoordinateList(FmdBody* body, double* xyz, int* count);

/* Nodal mass: set, add to, get (0.0 for a bad index). */
int FMD_SetNodalMass(FmdBody* body, int id, double mass);
int FMD_AddNodalMass(FmdBody* body, int id, double mass);
double FMD_NodalMass(FmdBody* body, int index);

/* Nodal inertia tensor, symmetric. Rows and columns of the single entry count from 1 to 3; the getter
   writes nine doubles and answers 0 where the node has none. */
int FMD_SetNodalInertia(FmdBody* body, int id, double i11, double i22, double i33, double i12, double i13,
                        double i23);
int FMD_SetNodalInertiaEntry(FmdBody* body, int id, int row, int column, double value);
int FMD_NodalInertia(FmdBody* body, int index, double* tensor);

/* Nodal mass and coordinates in one call; the result is that of FMD_NodeCoordinates. */
int FMD_NodalMassAndGeometry(FmdBody* body, int index, double* mass, double* xyz);

/* Diagonal of the box around the element faces, worked out once; 0.0 without faces. */
double FMD_BodySize(FmdBody* body);

/* ----------------------------------------------------------- mode vectors -- */

/* Store the six values of a node in a mode, or one of them (dof 0 to 5). Any order of nodes and modes will
   do. Mode 0 of type 1 or 2 is the pre-stress or pre-strain vector (FMD_SetModeVec and FMD_SetMode only).
   The first call of a type makes its temporary file at full size, so a full disk shows there. A vector
   that has been read before keeps its old values until another is loaded and the cache is emptied. */
int FMD_SetModeVec(FmdBody* body, int mode, int node, int type, double* values);
int FMD_SetMode(FmdBody* body, int mode, int node, int type, double v1, double v2, double v3, double v4,
                double v5, double v6);
int FMD_SetModeEntry(FmdBody* body, int mode, int node, int type, int dof, double value);

/* One half of a mode vector: FMD_ModeNodeCount(body, type) times three doubles. FMD_ModeByRef hands out an
   internal array that the next call may change; a host that asks for several types asks for the one with
   the most nodes first. FMD_ModeByNode gives the three values of one node id, zeros on failure. */
int FMD_Mode(FmdBody* body, int mode, int type, double* values, int part);
int FMD_ModeByRef(FmdBody* body, int mode, int type, double** values, int part);
int FMD_ModeByNode(FmdBody* body, int mode, int type, int node, double* values, int part);

/* The whole vector, six values per node, past buffer and cache; for a store of that precision only. */
int FMD_Read_Mode_Single(FmdBody* body, int mode, int type, float* values);
int FMD_Read_Mode_Double(FmdBody* body, int mode, int type, double* values);

/* 1 if the stored mode vectors are in double precision. */
int FMD_Double_Prec(FmdBody* body);

/* Whether the body has data of a mode info type. */
int FMD_ModeExist(FmdBody* body, int type);

/* The mode cache holds half vectors within a budget (FMD_MAX_MODE_MEMORY) and never evicts. The first sizes
   it, the others put a copy in, copy out (0 when not cached), point into it, empty it, switch it. */
void FMD_InitializeModeMemory(FmdBody* body);
int FMD_ModetoMemory(FmdBody* body, int mode, int type, double* values, int part);
int FMD_ModeFromMemory(FmdBody* body, int mode, int type, double* values, int part);
int FMD_ModeFromMemoryByRef(FmdBody* body, int mode, int type, double** values, int part);
int FMD_ModeFromMemoryByNode(FmdBody* body, int mode, int type, int node, double* values, int part);
void FMD_CleanModesInMemory(FmdBody* body);
void FMD_SetKeepModesInMemory(FmdBody* body, int flag);
int FMD_GetKeepModesInMemory(FmdBody* body, int* flag);

/* ------------------------------------- stress, strain and mode statistics -- */

/* Six values of a node's pre-stress (xx yy zz xy xz yz) or pre-strain. */
int FMD_SetPreStressVec(FmdBody* body, int node, double* values);
int FMD_SetPreStrainVec(FmdBody* body, int node, double* values);

/* Largest displacement, rotation, von Mises stress and von Mises strain of a mode and the id of its node;
   each output may be null. Worked out once and kept, but for a value of 0.0. */
int FMD_GetMaxModeDisplacement(FmdBody* body, int mode, int* node, double* value);
int FMD_GetMaxModeRotation(FmdBody* body, int mode, int* node, double* value);
int FMD_GetMaxVonMisesStress(FmdBody* body, int mode, int* node, double* value);
int FMD_GetMaxVonMisesStrain(FmdBody* body, int mode, int* node, double* value);

/* 1 from the first of the four calls above on. */
int FMD_ModalStatisticsExist(FmdBody* body);

/* --------------------------------------------------- generalized matrices -- */

/* Append one entry of a symmetric matrix over modes, each pair once. Rows and columns are mode numbers. */
int FMD_SetGeneralizedMass(FmdBody* body, int row, int column, double value);
int FMD_SetGeneralizedStiffness(FmdBody* body, int row, int column, double value);
int FMD_SetGeneralizedDamping(FmdBody* body, int row, int column, double value);

/* Asks the next orthonormalisation to normalise the modes by mass (1) or not (0). */
void FMD_SetShouldMassNormalizeModes(FmdBody* body, int flag);

/* Read the generalized matrices of a stored body into tables that the body has for them: 1, also for a
   dataset without the block; 0 where a table is too small or the block ends before. FMD_ReadFMD has done it.
 */
int FMD_ReadGeneralizedStiffness(FmdBody* body);
int FMD_ReadGeneralizedMass(FmdBody* body);
int FMD_ReadGeneralizedDamping(FmdBody* body);

/* Entries that the sparse operations deliver; without a list, the diagonal of the eigenvalue table. */
int FMD_NumberOfGenStiff(FmdBody* body);
int FMD_NumberOfGenMass(FmdBody* body);
int FMD_NumberOfGenDamp(FmdBody* body);
int FMD_GenDampExist(FmdBody* body);

/* The entries with rows and columns as mode indices. Each array has room for all of them; values may be null
   where there is no list. */
int FMD_GenStiffSparse(FmdBody* body, double* values, int* rows, int* columns);
int FMD_GenMassSparse(FmdBody* body, double* values, int* rows, int* columns);
int FMD_GenDampSparse(FmdBody* body, double* values, int* rows, int* columns);

/* The matrix of n selected modes (mode numbers, ascending) into n rows of n. */
int FMD_GenStiffSelected(FmdBody* body, double** rows, int n, int* selected);
int FMD_GenMassSelected(FmdBody* body, double** rows, int n, int* selected);

/* The full matrix, n by n with n at least FMD_ModeCount. */
int FMD_GenStiffFull(FmdBody* body, double* matrix, int n);
int FMD_GenMassFull(FmdBody* body, double* matrix, int n);
int FMD_GenDampFull(FmdBody* body, double* matrix, int n);

/* Eigenvalue, frequency in Hz, circular frequency, generalized mass and stiffness of a mode; each output may
   be null. 0 and zeros where the matrices are not diagonal. A negative eigenvalue has a negative frequency.
 */
int FMD_Eigenvalue(FmdBody* body, int mode, double* eigenvalue, double* hertz, double* radians, double* mass,
                   double* stiffness);

/* The mode shape transformation, FMD_ModeCount squared doubles. Setting a second one multiplies it from the
   right. */
int FMD_Transformation(FmdBody* body, double* matrix);
int FMD_SetTransformation(FmdBody* body, double* matrix);

/* Makes the modes orthonormal in the generalized mass, with a diagonal generalized stiffness. Coupled modes come
   from the eigenproblem of the two matrices by the QZ algorithm and Gram-Schmidt, with their eigenvalues
   reported; diagonal masses other than 1 are divided out, unless FMD_SetShouldMassNormalizeModes(body, 0) says
   no. Mode shapes, stresses, strains, loads, preload and the operators of monitor points follow; damping
   follows the division alone. Afterwards the body has the eigenvalue table in place of the matrices, modes
   numbered from 1 and their transformation. The modes end before the first one with an infinite eigenvalue,
   one without mass. 0 on failure and for a body without modes; called again after a failure it goes on with
   what is left to do. Loads that have not one entry a mode make it fail. */
int FMD_OrthoNormalize(FmdBody* body);

/* Rewrites the mode vectors of a type so that new mode c is the sum over the old modes a of T(a, c) times
   mode a, T FMD_ModeCount squared doubles, row by row. At least the first count new modes are made, those
   after them may be zero; the number of modes stays. 0 after a message, with the vectors as they were, and
   for a null matrix. */
int FMD_TransformModes(FmdBody* body, int type, int count, double* matrix);

/* --------------------------------------------------------- mass and inertia -- */

/* Stores mass, centre (3) and inertia (9), with a warning for each that disagrees with the invariants. */
int FMD_SetGlobalMass(FmdBody* body, double mass, double* center, double* inertia);

/* Recomputes and delivers mass, inertia (9) and centre of mass (3). */
int FMD_TotalMassInertia(FmdBody* body, double* mass, double* inertia, double* center);

/* Recomputes mass, centre and inertia from the invariants. */
int FMD_CalculateGlobalMassFromNodeMass(FmdBody* body);

/* Inertia invariants, over nodes p with mass m, place r, inertia tensor J and modes with translations phi and
   rotations theta; ~x is the skew matrix of x, so that ~x y = x cross y. M is FMD_ModeCount; modes are given
   by index, in index order.

     1  sum m                                   a double
     2  sum m r                                 3
     3  sum m phi_j                             3 rows of M
     4  sum (m r x phi_j + J theta_j)           3 rows of M
     5  sum m phi_i x phi_j                     for a mode i, 3 rows of M over j; -0.0 for j = i
     6  the generalized mass                    M by M
     7  sum (-m ~r ~r + J)                      3 by 3
     8  sum m ~r ~phi_j                         for a mode j, 3 by 3
     9  sum m ~phi_i ~phi_j                     for a pair of modes, 3 by 3

   Units are mass (1), mass times length (2, 3) and mass times length squared (4, 5, 7, 8, 9). All but 1 are
   new arrays; null on failure, for an index out of range, and for 3 to 6, 8 and 9 of a body without modes.
   Each is what was set, else what the dataset has, else the sum over the nodes, else (1, 2, 7) what the
   global mass gives, else zeros; and it stays as it was first found.

   Sums run over the nodes in node order, each product and each addition rounded by itself: 9 for i <= j as
   incr_scalar_tilde_tilde adds, the others transposed; 5 from the off-diagonal entries of 9. So they are the
   same on every machine. */
double FMD_Invar1(FmdBody* body);
double* FMD_Invar2(FmdBody* body);
double* FMD_Invar3(FmdBody* body);
double* FMD_Invar4(FmdBody* body);
double* FMD_Invar5(FmdBody* body, int mode);
double* FMD_Invar6(FmdBody* body);
double* FMD_Invar7(FmdBody* body);
double* FMD_Invar8(FmdBody* body, int mode);
double* FMD_Invar9(FmdBody* body, int row, int column);

/* Set an invariant, or its part for a mode or a pair of modes, given by number; what is not set of it is zero
   and is never computed. 1 must be above zero; 2 to 5 take three doubles; 6 takes M ones, the diagonal, and
   adds them to the generalized mass; 7 takes xx yy zz xy xz yz; 8 and 9 take nine. 5 stores the negative and
   9 the transpose for the pair in reverse, last where both modes are one. 5 of a mode with itself that is not
   zero and 9 that is not symmetric are stored with a warning. */
int FMD_SetInvar1(FmdBody* body, double mass);
int FMD_SetInvar2(FmdBody* body, double* moment);
int FMD_SetInvar3(FmdBody* body, int mode, double* values);
int FMD_SetInvar4(FmdBody* body, int mode, double* values);
int FMD_SetInvar5(FmdBody* body, int row, int column, double* values);
int FMD_SetInvar6(FmdBody* body, double* diagonal);
int FMD_SetInvar7(FmdBody* body, double* values);
int FMD_SetInvar8(FmdBody* body, int mode, double* values);
int FMD_SetInvar9(FmdBody* body, int row, int column, double* values);

/* Add s (a x b) to three doubles, and s ~a ~b, the product of the skew matrices, to nine. */
void incr_scalar_tilde_vec(double* out, double s, double* a, double* b);
void incr_scalar_tilde_tilde(double* out, double s, double* a, double* b);

/* ----------------------------------------------------------- rigid motions -- */

/* Moves the body by the distance along the direction (3), which need not be of unit length. Coordinates, mass
   properties and the invariants that the body knows follow; mode shapes do not change. Mass, centre and
   inertia are recomputed from the invariants first. 0 where an invariant cannot follow (2 or 7 of a body
   without mass, 4 of one with neither nodal mass nor invariant 3): the nodes have moved then. Invariant 8
   without 3 stays behind with a message. */
int FMD_Translate(FmdBody* body, double* direction, double distance);

/* Turn the body about an axis (3), which need not be of unit length; the angle is in degrees. FMD_Rotate
   turns about the axis through the point (3), by the right-hand rule. FMD_Rotate_Origin turns about the axis
   through the origin, against that rule, and hands out the matrix A (9) by which row vectors were multiplied:
   r' = r A. Mode shapes, stresses and strains are rewritten in a new scratch block; coordinates, nodal
   inertias, mass properties and the invariants that the body knows follow. Eigenvalues, generalized matrices,
   loads, faces, monitor points and operators stay. A kind of mode vectors that cannot be rewritten stays with
   a message, which is not a failure. 0 where an invariant cannot be had or cannot follow. Nothing guards
   against an axis of no length, which fills the body with NaNs. */
int FMD_Rotate_Origin(FmdBody* body, double* axis, double angle, double* matrix);
int FMD_Rotate(FmdBody* body, double* axis, double* point, double angle);

/* Reflect the body in the plane with this normal (3), which need not be of unit length, through the origin or
   through the point (3); else as FMD_Rotate. Rotations of modes and cross products change their sign too. */
int FMD_Mirror_Origin(FmdBody* body, double* normal);
int FMD_Mirror(FmdBody* body, double* normal, double* point);

/* Rewrites the mode vectors of a type (0 to 2) for coordinates that went from r to r A, A a matrix of 9, and
   pre-stress or pre-strain with them. Rotations change sign besides where A mirrors. A kind that cannot be
   rewritten stays as it was, with a message. */
void transform_mode(FmdBody* body, double* matrix, int type);

/* ------------------------------------------------------- preload and loads -- */

/* Modal preload: one value per mode, set mode by mode. All modes come before the first value: a mode added
   later has no place in it and is refused. The getter returns a new array of FMD_ModeCount doubles, or null
   with a count of 0. "Processed" tells that the first entries are on the axes of the rigid body. */
int FMD_SetModalPreload(FmdBody* body, int mode, double value);
double* FMD_GetModalPreload(FmdBody* body, int* count);
int FMD_ModalPreloadExist(FmdBody* body);
int FMD_ModalPreloadProcessed(FmdBody* body);
void FMD_SetModalPreloadProcessed(FmdBody* body, int flag);

/* Modal load cases, counted from 0. Setting a value or a label makes the case and those before it, with zero
   loads and a default label; all modes come before the first case. Labels keep 255 characters; an empty one
   becomes the number. The label buffer needs 256 bytes; the load is a new array of FMD_ModeCount doubles. */
int FMD_SetModalLoad(FmdBody* body, int load_case, int mode, double value);
int FMD_SetModalLoadLabel(FmdBody* body, int load_case, char* label);
int FMD_GetModalLoadCaseCount(FmdBody* body);
int FMD_GetModalLoadCaseLabel(FmdBody* body, int load_case, char* label);
double* FMD_GetModalLoad(FmdBody* body, int load_case, int* count);
int FMD_ModalLoadProcessed(FmdBody* body, int load_case);
void FMD_SetModalLoadProcessed(FmdBody* body, int load_case, int flag);

/* Load cases as lists of node, coordinate (1 to 6) and value; repeated entries are all kept. The getters
   return new arrays of FMD_GetModalLoadNodalCount entries, or null; nodes are indices. */
int FMD_SetModalLoadNodal(FmdBody* body, int load_case, int node, int coordinate, double value);
int FMD_GetModalLoadNodalCaseCount(FmdBody* body);
int FMD_GetModalLoadNodalCount(FmdBody* body, int load_case);
int* FMD_GetModalLoadNodalNode(FmdBody* body, int load_case);
int* FMD_GetModalLoadNodalCoord(FmdBody* body, int load_case);
double* FMD_GetModalLoadNodalLoad(FmdBody* body, int load_case);

/* ------------------------------------------------- rigid body modes and axes -- */

/* How many of the first six modes are rigid body modes, by their frequencies: against the seventh mode (or
   FMD_RIGID_BODY_THRESHOLD, in Hz), or by the last gap where there are fewer than seven. */
int FMD_RigidBodyModeCount(FmdBody* body);

/* Participation of the first count modes in the six motions of the body frame, translations then rotations,
   into six rows of count doubles. Weighted by nodal mass. */
void FMD_RigidModes2KINEX(FmdBody* body, double** rows, int count);

/* Turns the first entries of preload and load cases that are not yet processed into forces and moments in the
   body frame: by the nodal masses, or by a fit to the node cloud where there are none or
   KXI_MFORCE_NO_FEA_MASS is set. */
void FMD_RigidBodyForcesOnPrincipalAxes(FmdBody* body);

/* Projects the generalized damping on the six rigid motions and the flexible modes, once. */
int FMD_DampingOnPrincipalAxes(FmdBody* body);

/* That damping for the six rigid motions and n selected modes (numbers, ascending) into n + 6 rows of n + 6.
 */
int FMD_GenDampPrincipalAndSelected(FmdBody* body, double** rows, int n, int* selected);

/* Adds the generalized mass between modes 1 to firstCount and the secondCount modes after them, from nodal
   mass and inertia. The two counts add up to FMD_ModeCount. */
int FMD_AnsysAddGenMass(FmdBody* body, int firstCount, int secondCount);

/* ----------------------------------------------------- small dense algebra -- */

/* LU factorisation with row pivoting of n rows in place: 0 for an exactly singular column. The permutation
   tells which input row stands at each row. Then solve for one right-hand side in place, or invert in place.
 */
int FMD_LUPDecomposition(double** rows, int n, int* permutation);
int FMD_LUPSolve(double** rows, int n, int* permutation, double* b);
int FMD_LUPInvert(double** rows, int n, int* permutation);

/* c = a b for 3 by 3 matrices (c may be a or b); v = sign v A for a row vector; a += b for vectors of three;
   T = sign A^T T A for a 3 by 3 tensor. */
void Matrix_Multiply(double* a, double* b, double* c);
void Vector_Transform(double* v, double* matrix, int sign);
void Move_Vector(double* a, double* b);
void Tensor_Transform(double* tensor, double* matrix, int sign);

/* --------------------------------------------------- generalized eigenproblem -- */

/* A x = lambda B x for real n by n matrices by the QZ algorithm (C. B. Moler and G. W. Stewart, SIAM J.
   Numer. Anal. 10, 1973), in four stages that a caller runs in this order, touching a and b not at all in
   between. Matrices are stored by columns, the columns nm doubles apart, nm >= n. A nonzero matz asks for
   vectors: z collects the transformations from the right; otherwise z is not touched and may be null. All
   work in place, allocate nothing and say nothing; n < 1 does nothing but set *ierr to 0. */

/* Halves *x at least once, and on while 1 + *x still exceeds 1; stores and returns the result. From 1.0 it is
   the roundoff level of the solver, 2 to the power -53. */
double EIGPSN(double* x);

/* a to upper Hessenberg and b to upper triangular form; z starts as the identity. */
void FMD_QZHESS(int* nm, int* n, double* a, double* b, int* matz, double* z);

/* a to quasi-triangular form: blocks of one or two rows on the diagonal. What lies within *eps1 times the
   largest row sum of its matrix is negligible; *eps1 <= 0.0 takes the roundoff level. *ierr is 0, or the
   number from 1 of the eigenvalue at which 30 n steps were spent; a and b are then as the last step left
   them. For n >= 2 the element of b in the last row of the first column holds the level for b, for the next
   stages. */
void FMD_QZITT(int* nm, int* n, double* a, double* b, double* eps1, int* matz, double* z, int* ierr);

/* The n eigenvalues (alfr + i alfi) / beta with beta >= 0; beta 0 is an infinite one, of a singular b. A real
   eigenvalue has alfi 0; a complex pair stands together, the positive imaginary part first. Blocks with real
   eigenvalues become triangular. */
void FMD_QZVALL(int* nm, int* n, double* a, double* b, double* alfr, double* alfi, double* beta, int* matz,
                double* z);

/* The eigenvectors into the columns of z, which holds the transformations of the stages before: a real vector
   in one, those of a complex pair as real and imaginary part of the first in two. The largest element of each
   has magnitude 1, for a complex one the sum of the magnitudes of its parts. Overwrites b. */
void FMD_QZVECC(int* nm, int* n, double* a, double* b, double* alfr, double* alfi, double* beta, double* z);

/* --------------------------------------------- monitor points and operators -- */

/* A monitor point is a quantity that follows from the modal coordinates. These accessors answer 0 for success
   and -1 for failure. The component is a number with one digit per selected component (123: three rows);
   location in the body's frame; names keep 8 and labels 56 characters (buffers of 9 and 57 bytes). Operator
   kinds: 1 displacement, 2 velocity, 3 acceleration (rows by modes), 4 load (load operators by rows by
   modes), row by row; set them when the modes are final. FMD_MonitorPointHasOperator answers 0, 1, 2, 4 or 8.
 */
void FMD_SetMonitorPointInfo(FmdBody* body, int type, int resultType, int component, int loadOperatorCount,
                             double* location, char* name, char* label);
int FMD_GetMonitorPointCount(FmdBody* body);
int FMD_GetMonitorPointType(FmdBody* body, int index);
int FMD_GetMonitorPointResultType(FmdBody* body, int index);
int FMD_GetMonitorPointComponent(FmdBody* body, int index);
int FMD_GetMonitorPointNameLabel(FmdBody* body, int index, char* name, char* label);
int FMD_GetMonitorPointLocation(FmdBody* body, int index, double* location);
int FMD_GetMonitorPointOperatorSize(FmdBody* body, int index, int* rows, int* columns);
int FMD_GetMonitorPointNumLoadOperator(FmdBody* body, int index);
int FMD_MonitorPointHasOperator(FmdBody* body, int index, int kind);
int FMD_SetMonitorPointOperator(FmdBody* body, int index, int kind, double* data);
int FMD_GetMonitorPointOperator(FmdBody* body, int index, int kind, double* out);

/* Carries every operator into new modal coordinates: each row becomes row times T, T being FMD_ModeCount
   squared doubles, row by row, with a column for each new mode. 1, or 0 where nothing was done. */
int FMD_TransformMonitorPoints(FmdBody* body, double* t);

/* A matrix operator is a named stack of labelled rows (texts of 79 characters) with tagged sub-matrices of
   the same row count. The setters answer the new index or -1; the accessors 0 or -1. Labels may be null: all
   empty. */
int FMD_SetMatrixOperatorInfo(FmdBody* body, char* name, char** labels, int rowCount);
int FMD_SetMatrixOperatorData(FmdBody* body, int index, char* tag, int columnCount, double* data);
int FMD_GetMatrixOperatorCount(FmdBody* body);
int FMD_GetMatrixOperatorNumRows(FmdBody* body, int index);
int FMD_GetMatrixOperatorName(FmdBody* body, int index, char* name);
int FMD_GetMatrixOperatorLabels(FmdBody* body, int index, char** labels);
int FMD_GetMatrixOperatorNumSubOperator(FmdBody* body, int index);
int FMD_GetMatrixOperatorSubNumCols(FmdBody* body, int index, int sub);
int FMD_GetMatrixOperatorSubTag(FmdBody* body, int index, int sub, char* tag);
int FMD_GetMatrixOperatorSubData(FmdBody* body, int index, int sub, double* out);

/* ------------------------------------------------------------------- units -- */

/* Factor of a label in a table: 1.0 for an empty label, 0.0 for an unknown one. A label matches the first
   entry that begins with it, in any case. */
double FMD_UnitsDivider(const char* label, const FmdUnit* table);

/* The label of the first entry whose factor is the value within 1e-4, or null. Not a copy. */
const char* FMD_UnitsLabel(double value, const FmdUnit* table);

/* A value of the body in SI units. */
double FMD_Mass2Kilogram(FmdBody* body, double value);
double FMD_Length2Meter(FmdBody* body, double value);
double FMD_Time2Second(FmdBody* body, double value);
double FMD_Force2Newton(FmdBody* body, double value);

/* Multiplies count doubles in place and returns the array. */
double* FMD_Convert_Units(double* values, int count, double factor);

/* The four unit labels, or their defaults, into buffers of 16 bytes. */
void FMD_Units(FmdBody* body, char* mass, char* length, char* time, char* force);

/* Sets the unit labels. A body that has none yet is only told what its numbers are; one that has is rescaled:
   all that it holds in memory now, mode vectors, pre-stress and what else lies in a file as it is fetched.
   Labels that no table knows, given or stored, change nothing, without a message; nor does a null body give
   one. Values set afterwards are in the new units, but for mode vectors and pre-stress, which are kept in the
   first ones. */
void FMD_SetUnits(FmdBody* body, char* mass, char* length, char* time, char* force);
/* The same by the sizes of the units in kilograms, metres, seconds and newtons, each within 1e-4 of an entry of
   its table; any other size changes nothing. */
void FMD_SetUnitsByMultiplierOnSI(FmdBody* body, double mass, double length, double time, double force);
/* Rescales the body by the factors of its latest change of units; FMD_SetUnits has done that already. */
void FMD_ScaleDatabase(FmdBody* body);

/* Unit consistency factor: eigenvalue times this is the square of the circular frequency. */
double FMD_UCF(FmdBody* body);

/* ------------------------------------------------------------------- faces -- */

/* Adds a display face of node ids, which may create nodes. Repeated neighbouring corners are dropped; 0 when
   fewer than two remain. FMD_SetFace takes at most 256 ids as further int arguments. */
int FMD_SetFaceList(FmdBody* body, int count, int* ids);
int FMD_SetFace(FmdBody* body, int count, ...);

/* Number of faces, and of ints in the face list: per face its corner count, then its node indices. The result
   is the length of the list, 0 for a null body; FMD_ElementFaces answers 1, or 0 where there is no list. */
int FMD_FaceListSize(FmdBody* body, int* faces, int* length);
int FMD_ElementFaces(FmdBody* body, int* list);

/* Strips the faces that two elements share: of faces with the same corners those of opposite orientation go
   in pairs, of those with one orientation the last stays. The rest is sorted. Runs once per body; a body
   without faces gets the message of a failed allocation. */
void FMD_StripCommonFaces(FmdBody* body);

/* The nodes that faces, interface nodes and nodal modal loads refer to: new array of count node indices,
   ascending, or null with count 0. Worked out once: faces and nodes added later are not in it. */
int* FMD_GeometryNodes(FmdBody* body, int* count);

/* Strips common faces and removes all nodes that are not geometry nodes, with their rows of all mode data;
   the nodes that stay come in ascending order of their old indices. Runs once per body. 1 once the interior
   faces have gone, also where the nodes then could not be removed: a message has said so and the body has
   them all.
   */
int FMD_RemoveInternalGeometry(FmdBody* body);

/* Replaces the faces by those of a text file: the face count, then for each face its corner count and its
   node ids, with white space between the numbers. The nodes must exist. What is wrong with a file is a
   warning, and the body then keeps its faces. */
void FMD_SketchGrid(FmdBody* body, char* path);

/* Coarsens the faces: where all faces around a node are nearly coplanar and their corners near, they become
   one polygon. Nodes, modes and masses stay. Options: "resolution,angle,flag,id,id,...,preserve_str", any one
   character between two numbers: how near, as a fraction of the diagonal of the nodes' box, up to 0.5; most
   degrees between faces, up to 45; not 0 to drop vertices on straight edges too; ids of nodes to preserve, up
   to the first 0; the word to preserve the nodes of stress and strain. Interface nodes are always preserved.
   A number out of range is a warning, and 0.02 or 10 is taken. No options: nothing happens. The mesh counts
   as coarsened from then on. */
void FMD_TrimGeometry(FmdBody* body, char* options);

/* 1 if the faces have been sketched or coarsened, or have more than four corners. */
int FMD_IsCoarsened(FmdBody* body);

/* ------------------------------------------- free edges and nearest nodes -- */

/* The edges of only one face, linked into chains of node ids; a closed chain has one node first and last.
   Generating them first removes the internal geometry. Count and size generate them once; chains count from
   0, and size and chain answer 0 for one that is not there. The last copies the ids to out, which has room
   for them, and answers the size. The classes behind it are in free_edges.h. */
int FMD_GenerateFreeEdges(FmdBody* body);
int FMD_GetFreeEdgeCount(FmdBody* body);
int FMD_GetFreeEdgeSize(FmdBody* body, int chain);
int FMD_GetFreeEdge(FmdBody* body, int chain, int* out);

/* Node index of the node nearest to a point (3, in length units), of several the first; among the interface
   nodes only if asked and if there are any. -1 without nodes; reports no null body. */
int FMD_ClosestNode(FmdBody* body, double* point, int interfaceOnly);

/* The wanted number of nodes nearest to a point, or all within a radius, nearest first: new array of found
   node indices, or null with found 0. Of equally distant nodes the first operation puts the earlier in front,
   the second the later. */
int* FMD_ClosestNodes(FmdBody* body, double* point, int wanted, int interfaceOnly, int* found);
int* FMD_ClosestNodesInNeighborhood(FmdBody* body, double* point, double radius, int interfaceOnly,
                                    int* found);

/* ------------------------------------------------------------------ dataset -- */

/* Writes the body as a Flexible Modal Dataset under the options in KXI_FMDWRITE_OPTIONS. The file is complete
   when the result is 1; otherwise what went wrong has been reported and no file is left. A write edits the
   body: it orthonormalises and numbers its modes and fills its statistics. */
int FMD_write_FMD(FmdBody* body, char* path);

/* Stores the body in a database, whose master file is path ("name.MASTER") and which is made if it is not
   there: with the options of FMD_write_FMD, but always in native numbers. Qualifiers are separated by commas:
   "SELABEL='arm',PROJNO=2", with VERSION, PEID, DESITER and STEPCUR besides; those left out are 1 (PROJNO,
   VERSION), 0 or empty. A body that has the same six is replaced. 1 when the body is stored; otherwise 0 with
   a message, and the database is what it was, but the session has to be ended with FMD_Terminate. */
int FMD_write_DB(FmdBody* body, char* path, char* qualifiers);

/* Moves a body to a new reference point and modal basis: masses and nodal inertias times massScale, mode
   vectors through the matrix transform (mode count squared, row by row; a column for each new mode), then
   points less origin (3), and points and vectors turned by rotation (9, row by row, the matrix R of R x for a
   column x; none where its diagonal holds ones). The body has modeCount modes then. Global mass and inertia,
   nodal inertias and monitor points are not turned. */
void FMD_PermuteFMD(FmdBody* body, double* origin, int modeCount, double massScale, double* transform,
                    double* rotation);

/* Drops what depends on the present modal basis, so that it can be set again: eigenvalues, generalized
   matrices, transformation and the nodal mass block. Always 1. */
int FMD_PreprocessBAPFMD(FmdBody* body);

/* Lists one block of the body, by its number 1 to 35, as text. What is listed is the body as it stands. */
void FMD_Contents(FmdBody* body, int block, FILE* out);

/* --------------------------------------------------------------- record layer -- */

/* Record streams of 32-bit words. Counts are in items of the call's type, in words for DB_SeekFWD. Read
   operations answer 0 on a failed read, write operations 0 when the store could not take the words. */
int DB_ReadINTs(FmdStream stream, int* values, int n);
int DB_ReadDOUBLEs(FmdStream stream, double* values, int n); /* widens in place where the stream is single */
int DB_ReadMODE(FmdStream stream, void* values, int n);      /* n reals in the stream's own width */
int DB_ReadCHARs(FmdStream stream, char* text, int n);       /* n bytes; untouched on failure */
int DB_WriteINTs(FmdStream stream, const int* values, int n);
int DB_WriteDOUBLEs(FmdStream stream, const double* values, int n);
int DB_WriteCHARs(FmdStream stream, const char* text, int n); /* padded with zero bytes to whole words */
int DB_WriteEOR(FmdStream stream);                            /* ends the record */
int DB_SkipRecord(FmdStream stream);                          /* to the start of the next record */
int DB_FSAVE(FmdPosition* position, FmdStream stream);
int DB_FRESTORE(const FmdPosition* position, FmdStream stream);
int DB_REWIND(FmdStream stream);
int DB_SeekFWD(FmdStream stream, int words); /* forward in the current record */

/* Trailer of a datablock, seven ints of which the first is the block's key. */
int DB_WriteTrailer(const int* words);
int DB_ReadTrailer(int* words);

/* A new temporary datablock open for writing: its key, or 0 with a message. Stores the scratch id. */
int DB_OpenScratch(int* scratch);
/* Closes the block and opens it again for reading and rewriting. */
int DB_ReOpenScratch(int block);
/* Closes a block; a scratch block is gone then, and one that was opened to be read keeps its file open no
   more. Always 1; 0 is a legal key. */
int DB_CloseDatablk(int block);

/* Moves the body's dataset to the start of a block (id 0 to 34); 0 if it has none. */
int FMD_goto_block(FmdBody* body, int id);

/* Makes a body's dataset readable: fills the places of its blocks and modes, from the position table or by a
   walk over the records. 1; 0 without an open dataset, memory or a sound table. FMD_ReadFMD has done it. */
int FMD_get_position_of_blocks(FmdBody* body);

/* Starts the database session, which FMD_Create does by itself; ends it and deletes its files. */
int DB_StartBase(void);
void DB_TermBase(void);

/* Checks the header of a database file: 0 when it can be used; otherwise the reason, which is reported, as 1
   foreign number format, 2 not found, 3 no permission, 4 no regular file, 5 not opened, 6 too short, 7 read
   error, -1 unknown, 10 to 13 offset, signature, format or record length of its time stamp header. */
int DB_CheckDBset(char* path);

/* Number of bodies in a database, 0 for none or a file that is no database. DB_BodyBrowser and DB_GetBodyInfo
   also copy the row of a body (index from 1) into 256 bytes: "SELABEL='arm',PROJNO=1,VERSION=1,PEID=0,
   DESITER=0,STEPCUR=0"; an index outside gives 0. DB_GetBodyInfo answers 1 or 0. A database is asked once in a
   session and later changes are not seen; DB_ResetBrowser forgets all. */
int DB_BodyBrowser(char* path, int index, char* row);
int DB_BodyCount(char* path);
int DB_GetBodyInfo(char* path, int index, char* row);
void DB_ResetBrowser(void);

/* Opens the datablock of a body (index from 1): its key, or 0 with a message. Stores its assignment number.
 */
int DB_OpenDatablk(char* path, int index, int* logicalId);
/* A new datablock in the open database, for writing: its key, or 0 with a message. The qualifiers are
   separated by commas, as in a row; those left out have their defaults. */
int DB_CreateFMDblk(char* qualifiers);
/* Moves the session to the target database, which is made if it is not there, and back; 1, or 0 with a
   message. Between the two only this body has open datablocks. What was written on the target is stored when
   DB_TermWrite leaves it. After a failure the session stays where it stopped: end it with FMD_Terminate. */
int DB_StartWrite(FmdBody* body, char* path);
int DB_TermWrite(FmdBody* body, char* path);

/* Turns blanks at the end of a text field of so many bytes into NUL bytes. */
void terminate_string(char* field, int width);

/* Widen (from the last element down, so both may start at one address) and narrow n reals. */
double* float2double(double* to, const float* from, int n);
float* double2float(float* to, const double* from, int n);

/* 64-bit positions in a stdio file. Seeking answers 0 on success; origin 0 start, 1 here, 2 end. */
int FileSeek_Win32(FILE* file, long long offset, int origin);
long long FileTell_Win32(FILE* file);

/* ----------------------------------------- interface table and forwarders -- */

/* Writes the functions of the interface into the host's table of 172 pointers, in their fixed order; entries
   without a function keep what the host put there. Always 1; the pointer is not tested. */
int PopulateInterface(void** table);

/* Kind of flexibility: always 1. Whether the discrete method is used: always 0. */
int DB_GetFlexType(void);
int FMD_DiscreteMethod(void);

/* Does nothing. */
void _terminate(void);

/* Each DB_ name below passes its arguments to the FMD_ operation of that name and returns its result. */
FmdBody* DB_Create(int nodeCount, int modeCount);
int DB_SetInvar1(FmdBody* body, double mass);
int DB_SetInvar2(FmdBody* body, double* moment);
int DB_SetInvar3(FmdBody* body, int mode, double* values);
int DB_SetInvar4(FmdBody* body, int mode, double* values);
int DB_SetInvar5(FmdBody* body, int row, int column, double* values);
int DB_SetInvar6(FmdBody* body, double* diagonal);
int DB_SetInvar7(FmdBody* body, double* values);
int DB_SetInvar8(FmdBody* body, int mode, double* values);
int DB_SetInvar9(FmdBody* body, int row, int column, double* values);
void DB_SetUnits(FmdBody* body, char* mass, char* length, char* time, char* force);
void DB_SetUnitsByMultiplierOnSI(FmdBody* body, double mass, double length, double time, double force);
void DB_Units(FmdBody* body, char* mass, char* length, char* time, char* force);
double DB_Mass2Kilogram(FmdBody* body, double value);
double DB_Force2Newton(FmdBody* body, double value);
double DB_Length2Meter(FmdBody* body, double value);
double DB_Time2Second(FmdBody* body, double value);
int DB_SetHeader(FmdBody* body, char* title, char* inputFileName, char* inputFileType, char* comment1,
                 char* comment2, char* comment3);
void DB_Header(FmdBody* body, char* title, char* creationTime, char* inputFileName, char* inputFileType,
               char* comment1, char* comment2, char* comment3);
int DB_SetGlobalMass(FmdBody* body, double mass, double* center, double* inertia);
int DB_TotalMassInertia(FmdBody* body, double* mass, double* inertia, double* center);
double DB_BodySize(FmdBody* body);
int DB_NodeIndex(FmdBody* body, int id);
int DB_NodeID(FmdBody* body, int index);
int DB_ModeIndex(FmdBody* body, int number);
int DB_ModeNumber(FmdBody* body, int index);
int DB_ModeNodeCount(FmdBody* body, int type);
int DB_ModeNodeIndex(FmdBody* body, int type, int id);
int DB_ModeNodeID(FmdBody* body, int type, int index);
int DB_NodeCount(FmdBody* body);
int DB_SetNodeCoordinates(FmdBody* body, int id, double x, double y, double z);
int DB_NodeCoordinates(FmdBody* body, int index, double* xyz);
int DB_NodeCoordinateList(FmdBody* body, double* xyz, int* count);
int DB_ClosestNode(FmdBody* body, double* point, int interfaceOnly);
int* DB_ClosestNodes(FmdBody* body, double* point, int wanted, int interfaceOnly, int* found);
int* DB_ClosestNodesInNeighborhood(FmdBody* body, double* point, double radius, int interfaceOnly,
                                   int* found);
int DB_SetNodalMass(FmdBody* body, int id, double mass);
double DB_NodalMass(FmdBody* body, int index);
int DB_SetNodalInertia(FmdBody* body, int id, double i11, double i22, double i33, double i12, double i13,
                       double i23);
int DB_NodalInertia(FmdBody* body, int index, double* tensor);
int DB_SetNodalInertiaEntry(FmdBody* body, int id, int row, int column, double value);
int DB_SetFaceList(FmdBody* body, int count, int* ids);
int DB_FaceListSize(FmdBody* body, int* faces, int* length);
int DB_ElementFaces(FmdBody* body, int* list);
int DB_RemoveInternalGeometry(FmdBody* body);
int DB_IsCoarsened(FmdBody* body);
int DB_SetInterfaceNode(FmdBody* body, int id);
int* DB_InterfaceNodeIDs(FmdBody* body, int* count);
int DB_SetModeVec(FmdBody* body, int mode, int node, int type, double* values);
int DB_SetMode(FmdBody* body, int mode, int node, int type, double v1, double v2, double v3, double v4,
               double v5, double v6);
int DB_ModeCount(FmdBody* body);
int DB_ModeExist(FmdBody* body, int type);
int DB_Mode(FmdBody* body, int mode, int type, double* values, int part);
int DB_Double_Prec(FmdBody* body);
int DB_Read_Mode_Single(FmdBody* body, int mode, int type, float* values);
int DB_Read_Mode_Double(FmdBody* body, int mode, int type, double* values);
int DB_ModeByNode(FmdBody* body, int mode, int type, int node, double* values, int part);
int DB_SetModeEntry(FmdBody* body, int mode, int node, int type, int dof, double value);
int DB_SetGeneralizedMass(FmdBody* body, int row, int column, double value);
int DB_SetGeneralizedStiffness(FmdBody* body, int row, int column, double value);
int DB_SetGeneralizedDamping(FmdBody* body, int row, int column, double value);
int DB_NumberOfGenStiff(FmdBody* body);
int DB_GenStiffSelected(FmdBody* body, double** rows, int n, int* selected);
int DB_GenStiffFull(FmdBody* body, double* matrix, int n);
int DB_GenStiffSparse(FmdBody* body, double* values, int* rows, int* columns);
int DB_NumberOfGenMass(FmdBody* body);
int DB_GenMassSelected(FmdBody* body, double** rows, int n, int* selected);
int DB_GenMassSparse(FmdBody* body, double* values, int* rows, int* columns);
int DB_GenMassFull(FmdBody* body, double* matrix, int n);
int DB_GenDampExist(FmdBody* body);
int DB_NumberOfGenDamp(FmdBody* body);
int DB_GenDampPrincipalAndSelected(FmdBody* body, double** rows, int n, int* selected);
int DB_GenDampSparse(FmdBody* body, double* values, int* rows, int* columns);
int DB_GenDampFull(FmdBody* body, double* matrix, int n);
int DB_Eigenvalue(FmdBody* body, int mode, double* eigenvalue, double* hertz, double* radians, double* mass,
                  double* stiffness);
int DB_Transformation(FmdBody* body, double* matrix);
int DB_SetTransformation(FmdBody* body, double* matrix);
int DB_SetModalPreload(FmdBody* body, int mode, double value);
double* DB_GetModalPreload(FmdBody* body, int* count);
int DB_ModalPreloadExist(FmdBody* body);
int DB_SetModalLoadLabel(FmdBody* body, int load_case, char* label);
int DB_GetModalLoadCaseLabel(FmdBody* body, int load_case, char* label);
int DB_SetModalLoad(FmdBody* body, int load_case, int mode, double value);
double* DB_GetModalLoad(FmdBody* body, int load_case, int* count);
int DB_GetModalLoadCaseCount(FmdBody* body);
int DB_SetModalLoadNodal(FmdBody* body, int load_case, int node, int coordinate, double value);
int DB_GetModalLoadNodalCaseCount(FmdBody* body);
int DB_GetModalLoadNodalCount(FmdBody* body, int load_case);
int* DB_GetModalLoadNodalNode(FmdBody* body, int load_case);
int* DB_GetModalLoadNodalCoord(FmdBody* body, int load_case);
double* DB_GetModalLoadNodalLoad(FmdBody* body, int load_case);
int DB_ModalStatisticsExist(FmdBody* body);
int DB_GetMaxModeDisplacement(FmdBody* body, int mode, int* node, double* value);
int DB_GetMaxModeRotation(FmdBody* body, int mode, int* node, double* value);
int DB_GetMaxVonMisesStress(FmdBody* body, int mode, int* node, double* value);
int DB_GetMaxVonMisesStrain(FmdBody* body, int mode, int* node, double* value);
int DB_write_FMD(FmdBody* body, char* path);
int DB_write_DB(FmdBody* body, char* path, char* qualifiers);
int DB_Version(FmdBody* body);
void DB_Destroy(void);
void DB_UnLink(FmdBody* body);
void DB_DeReference(FmdBody* body);
void DB_Terminate(void);
void DB_FreeMemory(void* pointer);
void DB_Contents(FmdBody* body, int block, FILE* out);
double DB_Invar1(FmdBody* body);
double* DB_Invar2(FmdBody* body);
double* DB_Invar3(FmdBody* body);
double* DB_Invar4(FmdBody* body);
double* DB_Invar5(FmdBody* body, int mode);
double* DB_Invar6(FmdBody* body);
double* DB_Invar7(FmdBody* body);
double* DB_Invar8(FmdBody* body, int mode);
double* DB_Invar9(FmdBody* body, int row, int column);
int DB_RigidBodyModeCount(FmdBody* body);
void DB_RigidBodyForcesOnPrincipalAxes(FmdBody* body);
int DB_DampingOnPrincipalAxes(FmdBody* body);
int DB_Exists(FmdBody* body, int id);
double DB_UCF(FmdBody* body);
int DB_ModalLoadProcessed(FmdBody* body, int load_case);
int* DB_InterfaceNodes(FmdBody* body, int* count);
void DB_SetVersion(FmdBody* body, int version);
void DB_SetModalLoadProcessed(FmdBody* body, int load_case, int flag);
int DB_ModalPreloadProcessed(FmdBody* body);
void DB_SetModalPreloadProcessed(FmdBody* body, int flag);
void DB_SetShouldMassNormalizeModes(FmdBody* body, int flag);
/* These two forward to FMD_CreateFromFMD and FMD_CreateFromFMD_SurfaceMesh. */
FmdBody* DB_CreateFromFileByIndex(char* fileName, int index);
FmdBody* DB_CreateFromFileByIndex_SurfaceMesh(char* fileName, int index);
int DB_IsValid(FmdBody* body);
int DB_ModeByRef(FmdBody* body, int mode, int type, double** values, int part);
void DB_SetMonitorPointInfo(FmdBody* body, int type, int resultType, int component, int loadOperatorCount,
                            double* location, char* name, char* label);
int DB_SetMonitorPointOperator(FmdBody* body, int index, int kind, double* data);
int DB_GetMonitorPointCount(FmdBody* body);
int DB_GetMonitorPointType(FmdBody* body, int index);
int DB_GetMonitorPointResultType(FmdBody* body, int index);
int DB_GetMonitorPointComponent(FmdBody* body, int index);
int DB_GetMonitorPointNameLabel(FmdBody* body, int index, char* name, char* label);
int DB_GetMonitorPointOperatorSize(FmdBody* body, int index, int* rows, int* columns);
int DB_GetMonitorPointNumLoadOperator(FmdBody* body, int index);
int DB_GetMonitorPointOperator(FmdBody* body, int index, int kind, double* out);
int DB_MonitorPointHasOperator(FmdBody* body, int index, int kind);
int DB_Mirror(FmdBody* body, double* normal, double* point);
int DB_Rotate(FmdBody* body, double* axis, double* point, double angle);
int DB_Translate(FmdBody* body, double* direction, double distance);
int DB_RenumberInterfaceNodes(FmdBody* body, int count, int* ids);
int DB_RenumberNodes(FmdBody* body, int offset);
int DB_GetFreeEdgeCount(FmdBody* body);
int DB_GetFreeEdgeSize(FmdBody* body, int chain);
int DB_GetFreeEdge(FmdBody* body, int chain, int* out);
void DB_PermuteFMD(FmdBody* body, double* origin, int modeCount, double massScale, double* transform,
                   double* rotation);
int DB_PreprocessBAPFMD(FmdBody* body);
int DB_SetMatrixOperatorInfo(FmdBody* body, char* name, char** labels, int rowCount);
int DB_SetMatrixOperatorData(FmdBody* body, int index, char* tag, int columnCount, double* data);
int DB_GetMatrixOperatorCount(FmdBody* body);
int DB_GetMatrixOperatorNumRows(FmdBody* body, int index);
int DB_GetMatrixOperatorName(FmdBody* body, int index, char* name);
int DB_GetMatrixOperatorLabels(FmdBody* body, int index, char** labels);
int DB_GetMatrixOperatorNumSubOperator(FmdBody* body, int index);
int DB_GetMatrixOperatorSubNumCols(FmdBody* body, int index, int sub);
int DB_GetMatrixOperatorSubTag(FmdBody* body, int index, int sub, char* tag);
int DB_GetMatrixOperatorSubData(FmdBody* body, int index, int sub, double* out);

#ifdef __cplusplus
}

/* These two carry their argument types in their symbols. DB_SetFace packs its node ids into a new array,
   which it leaves allocated. */
int DB_AnsysAddGenMass(void* body, int firstCount, int secondCount);
int DB_SetFace(void* body, int count, ...);
#endif
#if defined(__GNUC__)
#pragma GCC visibility pop
#endif

#endif
