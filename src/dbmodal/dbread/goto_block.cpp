// Finding a block in the dataset behind a body.
#include "body/body.h"
#include "fmdtoolkit/fmdtoolkit.h"

int FMD_goto_block(FmdBody* body, int id) {
  if (CheckFMD(body) == 0 || body->DataFile.Block == 0) return 0;
  if (FMD_Exists(body, id) == 0) return 0;
  return DB_FRESTORE(&body->BlockPosition[id], body->DataFile);
}
