// The report of the eigenvalues that an orthonormalisation found.
#ifndef FMDTOOLKIT_DBMODAL_DBTOOLS_EIGENVALUE_TABLE_H
#define FMDTOOLKIT_DBMODAL_DBTOOLS_EIGENVALUE_TABLE_H

namespace fmd {

// One line an eigenvalue, ascending, with its frequency in Hz; for information alone. The consistency factor
// of the units turns an eigenvalue into the square of a circular frequency.
void report_eigenvalues(const double* eigenvalues, int n, double consistency);

}  // namespace fmd

#endif
