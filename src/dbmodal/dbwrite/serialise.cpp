#include "dbmodal/dbwrite/serialise.h"

#include "dbmodal/block_table.h"
#include "dbmodal/dbwrite/record_form.h"
#include "fmdtoolkit/fmdtoolkit.h"

namespace fmd {

namespace {

void begin_block(WriteJob& job, const Block& block) {
  if (job.record != nullptr) job.record->begin_block(*job.sink, block.number);
}

// A block whose bytes do not arrive has failed, whatever its writer saw.
void finish_block(WriteJob& job, const Block& block, bool written) {
  job.ok =
      job.ok && written && (job.record != nullptr ? job.record->end_block(*job.sink) : job.sink->drain());
  if (!job.ok) FMD_Error("%s", block.write_failure);
}

void write_version(WriteJob& job) {
  const std::uint32_t coarsened = job.body->Coarsened != 0 ? kVersionCoarsened : 0;
  const std::uint32_t table = job.record != nullptr ? kVersionHasTable : 0;
  job.sink->put_int(static_cast<std::int32_t>(job.version | coarsened | table));
}

void write_header(WriteJob& job) {
  char title[128] = {};
  char creation_time[32] = {};
  char file_name[128] = {};
  char file_type[16] = {};
  char comments[3][80] = {};
  FMD_Header(job.body, title, creation_time, file_name, file_type, comments[0], comments[1], comments[2]);
  job.sink->put_chars(title, sizeof title);
  job.sink->put_chars(creation_time, sizeof creation_time);
  job.sink->put_chars(file_name, sizeof file_name);
  job.sink->put_chars(file_type, sizeof file_type);
  for (const auto& comment : comments) job.sink->put_chars(comment, sizeof comment);
}

struct ContentLine {
  const char* name;
  SummaryByte byte;
  bool of_body;  // looks at the body's own byte and not at the summary being written
};

constexpr ContentLine kContentLines[] = {{"Nodal Coords", kNodalCoordinates, false},
                                         {"Element Faces", kElementFaces, false},
                                         {"Eigenvalues", kEigenvalues, false},
                                         {"Mode Shapes", kModeShapes, false},
                                         {"Global Mass Properties", kGlobalProperties, false},
                                         {"Nodal Masses", kNodalMasses, false},
                                         {"Nodal Inertias", kNodalInertias, false},
                                         {"Generalized Stiffness", kGeneralizedStiffness, true},
                                         {"Generalized Mass", kGeneralizedMass, true},
                                         {"Generalized Damping", kGeneralizedDamping, false},
                                         {"Mode Transformation", kTransformation, false},
                                         {"Stress Modes", kModalStress, false},
                                         {"Interface Nodes", kInterfaceNodes, false},
                                         {"Inertia Invariants", kInvariant1, false},
                                         {"Modal Preload", kModalPreload, false},
                                         {"Modal Loads", kModalLoads, false},
                                         {"Strain Modes", kModalStrain, false},
                                         {"Nodal Pre-Stress", kPreStress, false},
                                         {"Nodal Pre-Strain", kPreStrain, false},
                                         {"Monitor Points", kMonitorPoints, false},
                                         {"Matrix Operators", kMatrixOperators, false},
                                         {"Modal Load Nodal", kModalLoadNodal, false}};

}  // namespace

void write_version_and_header(WriteJob& job) {
  if (job.ok) {
    begin_block(job, block_table()[0]);
    write_version(job);
  }
  finish_block(job, block_table()[0], true);
  if (!job.ok) return;
  begin_block(job, block_table()[1]);
  write_header(job);
  finish_block(job, block_table()[1], true);
}

void report_content(const WriteJob& job) {
  FMD_Info("\nCreating a Flexible Modal Dataset with the following information:\n");
  for (const ContentLine& line : kContentLines) {
    const char* const bytes = line.of_body ? job.body->BlockExists : job.summary;
    FMD_Info("%30s %s", line.name, bytes[line.byte] != 0 ? "Yes" : "No");
  }
}

void write_content(WriteJob& job) {
  // A byte says present or not, whatever value the body keeps in it.
  for (char& byte : job.summary) byte = byte != 0 ? 1 : 0;
  if (job.record != nullptr) job.ok = job.record->provide_modes(job);
  begin_block(job, block_table()[2]);
  job.sink->put_chars(job.summary, sizeof job.summary);
  finish_block(job, block_table()[2], true);
  for (const Block& block : block_table()) {
    if (!job.ok) return;
    if (block.summary_byte == kAlwaysPresent || job.summary[block.summary_byte] == 0) continue;
    begin_block(job, block);
    finish_block(job, block, block.write(job));
  }
  if (!job.ok || job.record == nullptr || job.record->write_positions(job)) return;
  FMD_Error("Problem writing the positions of the blocks.");
  job.ok = false;
}

}  // namespace fmd
