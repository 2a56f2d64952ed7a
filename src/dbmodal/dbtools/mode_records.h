// The table of eigenvalues of a body: from diagonal generalized matrices, or from an eigenproblem's solution.
#ifndef FMDTOOLKIT_DBMODAL_DBTOOLS_MODE_RECORDS_H
#define FMDTOOLKIT_DBMODAL_DBTOOLS_MODE_RECORDS_H

#include "body/body.h"
#include "messages/memory.h"

namespace fmd {

// A table of eigenvalues and the numbers that the modes bear until it is taken over, one of each a mode.
struct NewModeRecords {
  CArray<FmdModeRecord> records;
  CArray<std::int32_t> old_numbers;

  bool allocate(int modes);
};

// The table of a body without one, from its diagonal matrices, which it then replaces. Modes without
// generalized mass get the marker of an infinite eigenvalue. False and an unchanged body where an entry off
// the diagonal is met or memory is short.
bool build_mode_records(FmdBody* body);

// Records of modes with unit mass. The eigenvalue is the Rayleigh quotient, the marker where the solver found
// an infinite one.
void fill_orthonormal_records(const double* eigenvalues, const double* quotients, int modes,
                              double consistency, FmdModeRecord* records);

// Gives the body the table in place of its old one and of the sparse mass and stiffness; numbers the modes
// from 1.
void take_over_records(FmdBody& body, NewModeRecords made);

// Makes the mass of each record 1 and delivers the square root of what it was, by which the mode must be
// divided: 1 for a mode of no mass and for modes without a record.
void mass_normalize_records(FmdModeRecord* records, int count, int modes, double* roots);

// Modes before the first one with an infinite eigenvalue.
int count_active_modes(const FmdBody& body);

}  // namespace fmd

#endif
