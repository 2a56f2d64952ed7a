// Operations on bodies that are stored in a database.
#include <cstdio>
#include <cstring>
#include <string>

#include "faults/operations.h"
#include "support/session.h"

namespace fmdtest {

namespace {

char master[] = "stored.MASTER";
char other_master[] = "other.MASTER";
char qualifiers[] = "SELABEL='one',PROJNO=2";

// The body of the scene stored with its generalized matrices; the session has ended since.
void stored(Scene& scene) {
  const EnvironmentVariable options("KXI_FMDWRITE_OPTIONS", "no_ortho");
  full_body(scene);
  FMD_write_DB(scene.body, master, qualifiers);
  leave(scene);
}

// A session of which the database is still unknown.
void stored_and_session(Scene& scene) {
  stored(scene);
  DB_StartBase();
}

void stored_and_new_body(Scene& scene) {
  stored(scene);
  scene.body = FMD_Create(0, 0);
}

void read_body(Scene& scene) {
  stored(scene);
  scene.body = FMD_CreateFromFMD(master, 1);
}

// A body with scratch modes, and a target that holds a body already.
void body_and_target(Scene& scene) {
  stored(scene);
  full_body(scene);
}

void on_target(Scene& scene) {
  body_and_target(scene);
  DB_StartWrite(scene.body, master);
}

// A body out of a database, about to go into one that is not there yet.
void read_body_and_new_target(Scene& scene) {
  read_body(scene);
  std::remove(other_master);
}

bool is_stored_body(FmdBody* body) {
  double xyz[3] = {};
  return body != nullptr && FMD_NodeCount(body) == kSceneNodes && FMD_ModeCount(body) == kSceneModes &&
         FMD_NodeCoordinates(body, FMD_NodeIndex(body, kFirstNode + 1), xyz) == 1 && xyz[0] == 1.0 &&
         FMD_NumberOfGenStiff(body) == kSceneModes;
}

bool creates(Scene& s, FmdBody* (*create)(char*, int)) {
  s.body = create(master, 1);
  return is_stored_body(s.body);
}

bool is_row(const Scene& s) {
  return std::strcmp(s.text[0], "SELABEL='one',PROJNO=2,VERSION=1,PEID=0,DESITER=0,STEPCUR=0") == 0;
}

}  // namespace

const std::vector<Operation> stored_operations = {
    {"DB_CheckDBset", stored_and_session, [](Scene&) { return DB_CheckDBset(master) == 0; },
     Failure::kSilent},
    {"DB_BodyBrowser", stored_and_session,
     [](Scene& s) { return DB_BodyBrowser(master, 1, s.text[0]) == 1 && is_row(s); }, Failure::kSilent},
    {"DB_BodyCount", stored_and_session, [](Scene&) { return DB_BodyCount(master) == 1; }, Failure::kSilent},
    {"DB_GetBodyInfo", stored_and_session,
     [](Scene& s) { return DB_GetBodyInfo(master, 1, s.text[0]) == 1 && is_row(s); }, Failure::kSilent},
    {"DB_ResetBrowser", stored_and_session,
     [](Scene&) {
       DB_ResetBrowser();
       return true;
     }},
    {"DB_OpenDatablk", stored_and_session,
     [](Scene& s) {
       const int key = DB_OpenDatablk(master, 1, s.ints);
       return key != 0 && s.ints[0] != 0 && DB_CloseDatablk(key) == 1;
     },
     Failure::kSilent},
    {"DB_CreateFMDblk", on_target, [](Scene&) { return DB_CreateFMDblk(qualifiers) != 0; }, Failure::kSilent},
    {"DB_StartWrite", body_and_target, [](Scene& s) { return DB_StartWrite(s.body, master) == 1; },
     Failure::kSilent, false},
    {"DB_StartWrite.of_a_read_body", read_body_and_new_target,
     [](Scene& s) { return DB_StartWrite(s.body, other_master) == 1; }, Failure::kSilent, false},
    {"DB_TermWrite", on_target, [](Scene& s) { return DB_TermWrite(s.body, master) == 1; }, Failure::kSilent,
     false},
    {"FMD_write_DB", body_and_target,
     [](Scene& s) { return FMD_write_DB(s.body, master, qualifiers) == 1 && DB_BodyCount(master) == 1; },
     Failure::kSilent, false},
    {"FMD_write_DB.of_a_read_body", read_body_and_new_target,
     [](Scene& s) {
       return FMD_write_DB(s.body, other_master, qualifiers) == 1 && DB_BodyCount(other_master) == 1;
     },
     Failure::kSilent, false},

    {"FMD_ReadFMD", stored_and_new_body,
     [](Scene& s) { return FMD_ReadFMD(s.body, master, 1) == 1 && is_stored_body(s.body); }, Failure::kSilent,
     false},
    {"FMD_CreateFromFMD", stored, [](Scene& s) { return creates(s, FMD_CreateFromFMD); }, Failure::kSilent},
    {"FMD_CreateFromFMD_SurfaceMesh", stored,
     [](Scene& s) { return creates(s, FMD_CreateFromFMD_SurfaceMesh); }, Failure::kSilent},
    {"DB_CreateFromFileByIndex", stored, [](Scene& s) { return creates(s, DB_CreateFromFileByIndex); },
     Failure::kSilent},
    {"DB_CreateFromFileByIndex_SurfaceMesh", stored,
     [](Scene& s) { return creates(s, DB_CreateFromFileByIndex_SurfaceMesh); }, Failure::kSilent},
    {"FMD_get_position_of_blocks", read_body,
     [](Scene& s) { return FMD_get_position_of_blocks(s.body) == 1 && FMD_goto_block(s.body, 7) == 1; }},
    {"FMD_ReadGeneralizedStiffness", read_body,
     [](Scene& s) { return FMD_ReadGeneralizedStiffness(s.body) == 1; }},
    {"FMD_ReadGeneralizedMass", read_body, [](Scene& s) { return FMD_ReadGeneralizedMass(s.body) == 1; }},
    {"FMD_ReadGeneralizedDamping", read_body,
     [](Scene& s) { return FMD_ReadGeneralizedDamping(s.body) == 1; }},
    {"terminate_string", no_body,
     [](Scene& s) {
       std::strcpy(s.text[0], "ab ");
       terminate_string(s.text[0], 3);
       return std::strcmp(s.text[0], "ab") == 0;
     }},

    {"FMD_PermuteFMD", full_body,
     [](Scene& s) {
       double origin[3] = {1, 0, 0};
       double basis[4] = {0, 1, 1, 0};
       double turn[9] = {0, 1, 0, -1, 0, 0, 0, 0, 1};
       FMD_PermuteFMD(s.body, origin, kSceneModes, 1.0, basis, turn);
       return FMD_ModeCount(s.body) == kSceneModes;
     }},
    {"FMD_PreprocessBAPFMD", full_body, [](Scene& s) { return FMD_PreprocessBAPFMD(s.body) == 1; }},
};

}  // namespace fmdtest
