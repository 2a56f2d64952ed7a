// The descriptive header and the version word, handed out.
#include <cstring>

#include "body/body.h"
#include "fmdtoolkit/fmdtoolkit.h"

namespace {

void copy_text(const char* field, char* to) {
  if (to != nullptr) std::strcpy(to, field);
}

}  // namespace

void FMD_Header(FmdBody* body, char* title, char* creationTime, char* inputFileName, char* inputFileType,
                char* comment1, char* comment2, char* comment3) {
  if (CheckFMD(body) == 0) return;
  copy_text(body->Title, title);
  copy_text(body->CreationTime, creationTime);
  copy_text(body->InputFileName, inputFileName);
  copy_text(body->InputFileType, inputFileType);
  copy_text(body->Comment1, comment1);
  copy_text(body->Comment2, comment2);
  copy_text(body->Comment3, comment3);
  // A text from an old dataset can bring a newline.
  if (creationTime == nullptr || creationTime[0] == '\0') return;
  char* const last = creationTime + std::strlen(creationTime) - 1;
  if (*last == '\n') *last = '\0';
}

int FMD_Version(FmdBody* body) {
  return CheckFMD(body) == 0 ? 0 : static_cast<int>(body->Version & 0xFFU);
}
