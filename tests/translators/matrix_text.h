// Stored matrices of a job, line by line.
#ifndef FMDTOOLKIT_TESTS_MATRIX_TEXT_H
#define FMDTOOLKIT_TESTS_MATRIX_TEXT_H

#include <string>
#include <vector>

#include "translators/small_models.h"

namespace fmdtest {

// The upper triangle with all its zeros.
std::string matrix_text(const DenseMatrix& matrix);
std::string dof_text(const std::vector<calculix::DegreeOfFreedom>& dofs);

// Bars between all corners of the cube of frd_text.h, whose mass is that of its deck.
Structure cube_structure();
std::vector<calculix::DegreeOfFreedom> cube_dofs();

// Writes job.sti, job.mas and job.dof of the cube.
void write_cube_matrices();

}  // namespace fmdtest

#endif
