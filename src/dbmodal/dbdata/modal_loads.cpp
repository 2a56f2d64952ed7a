// Getters of the modal preload, the modal load cases and the nodal modal load cases. They answer a bad case
// with null or 0 and say nothing; arrays are new and the caller's.
#include <algorithm>
#include <cstring>

#include "body/body.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace {

// A vector over the modes of the body; modes added since it was stored have zero.
double* copy_over_modes(const FmdBody& body, const double* stored, int stored_count, int* count) {
  *count = 0;
  auto* copy = static_cast<double*>(fmd::allocate_quietly(body.ModeCount, sizeof(double)));
  if (copy == nullptr) return nullptr;
  std::copy_n(stored, std::min(stored_count, body.ModeCount), copy);
  *count = body.ModeCount;
  return copy;
}

const FmdLoadCase* load_case_of(const FmdBody* body, int load_case) {
  if (load_case < 0 || load_case >= body->LoadCaseCount) return nullptr;
  return &body->LoadCases[load_case];
}

const FmdNodalLoadCase* nodal_case_of(FmdBody* body, int load_case) {
  if (CheckFMD(body) == 0 || load_case < 0 || load_case >= body->NodalLoadCaseCount) return nullptr;
  return &body->NodalLoadCases[load_case];
}

template <typename T>
T* copy_entries(const FmdNodalLoadCase* nodal, T* FmdNodalLoadCase::*entries) {
  if (nodal == nullptr) return nullptr;
  auto* copy = static_cast<T*>(fmd::allocate_quietly(nodal->Count, sizeof(T)));
  if (copy != nullptr) std::copy_n(nodal->*entries, nodal->Count, copy);
  return copy;
}

}  // namespace

double* FMD_GetModalPreload(FmdBody* body, int* count) {
  *count = 0;
  if (CheckFMD(body) == 0 || body->ModalPreload == nullptr) return nullptr;
  return copy_over_modes(*body, body->ModalPreload, body->PreloadCount, count);
}

int FMD_ModalPreloadExist(FmdBody* body) {
  return CheckFMD(body) != 0 && body->ModalPreload != nullptr ? 1 : 0;
}

int FMD_ModalPreloadProcessed(FmdBody* body) {
  if (CheckFMD(body) == 0 || body->BlockExists[fmd::kModalPreload] == 0) return 0;
  return body->PreloadProcessed;
}

int FMD_GetModalLoadCaseCount(FmdBody* body) {
  return CheckFMD(body) == 0 ? 0 : body->LoadCaseCount;
}

int FMD_GetModalLoadCaseLabel(FmdBody* body, int load_case, char* label) {
  if (CheckFMD(body) == 0) return 0;
  const FmdLoadCase* const stored = load_case_of(body, load_case);
  if (stored == nullptr) return 0;
  std::strcpy(label, stored->Label);
  return 1;
}

double* FMD_GetModalLoad(FmdBody* body, int load_case, int* count) {
  *count = 0;
  if (CheckFMD(body) == 0) return nullptr;
  const FmdLoadCase* const stored = load_case_of(body, load_case);
  return stored == nullptr ? nullptr : copy_over_modes(*body, stored->Loads, stored->LoadCount, count);
}

int FMD_ModalLoadProcessed(FmdBody* body, int load_case) {
  if (CheckFMD(body) == 0) return 0;
  const FmdLoadCase* const stored = load_case_of(body, load_case);
  return stored == nullptr ? 0 : stored->Processed;
}

int FMD_GetModalLoadNodalCaseCount(FmdBody* body) {
  return CheckFMD(body) == 0 ? 0 : body->NodalLoadCaseCount;
}

int FMD_GetModalLoadNodalCount(FmdBody* body, int load_case) {
  const FmdNodalLoadCase* const nodal = nodal_case_of(body, load_case);
  return nodal == nullptr ? 0 : nodal->Count;
}

int* FMD_GetModalLoadNodalNode(FmdBody* body, int load_case) {
  return copy_entries(nodal_case_of(body, load_case), &FmdNodalLoadCase::Nodes);
}

int* FMD_GetModalLoadNodalCoord(FmdBody* body, int load_case) {
  return copy_entries(nodal_case_of(body, load_case), &FmdNodalLoadCase::Coordinates);
}

double* FMD_GetModalLoadNodalLoad(FmdBody* body, int load_case) {
  return copy_entries(nodal_case_of(body, load_case), &FmdNodalLoadCase::Values);
}
