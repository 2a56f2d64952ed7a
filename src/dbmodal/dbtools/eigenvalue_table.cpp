#include "dbmodal/dbtools/eigenvalue_table.h"

#include <cmath>

#include "body/body.h"
#include "fmdtoolkit/fmdtoolkit.h"

namespace fmd {

namespace {

// Whether an eigenvalue stands clear of the rigid body motions; the seventh is the first elastic one of a
// free body.
bool stands_clear(double eigenvalue, const double* eigenvalues, int n) {
  return n > 6 && std::fabs(eigenvalue) > eigenvalues[6] / 1000.0;
}

void report_negative(int number, double eigenvalue, bool elastic) {
  const char* const text = elastic ? " %3d : %20.14e  Sqrt undefined.  Possible problem with input data."
                                   : " %3d : %20.14e  Sqrt undefined.     (probable rigid body mode)";
  FMD_Info(text, number, eigenvalue);
}

void report_positive(int number, double eigenvalue, double hertz, bool elastic) {
  const char* const text =
      elastic ? " %3d : %20.14e  %20.14e" : " %3d : %20.14e  %20.14e (probable rigid body mode)";
  FMD_Info(text, number, eigenvalue, hertz);
}

}  // namespace

void report_eigenvalues(const double* eigenvalues, int n, double consistency) {
  FMD_Info("%49s", "");
  FMD_Info("  Real Eigenvalues and Natural Frequencies [Hz] :");
  FMD_Info("  ===============================================");
  for (int i = 0; i < n; ++i) {
    const double value = eigenvalues[i];
    const bool clear = stands_clear(value, eigenvalues, n);
    if (value == kInfiniteEigenvalue) {
      FMD_Info(" %3d : Infinity.  Possible mass singularity.  Ignored.", i + 1);
    } else if (value < 0.0) {
      report_negative(i + 1, value, value < -1.0 || clear);
    } else {
      report_positive(i + 1, value, std::sqrt(value * consistency) / kTwoPi, value > 1.0 || clear);
    }
  }
}

}  // namespace fmd
