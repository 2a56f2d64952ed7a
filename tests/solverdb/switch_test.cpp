// Exports with several live bodies: the session goes to another database and back, and every body goes on
// saying what it said.
#include <gtest/gtest.h>

#include <fstream>
#include <map>

#include "body/body.h"
#include "solverdb/stored_bodies.h"

namespace {

using fmdtest::everything_of;
using fmdtest::numbers_of;
using fmdtest::Strings;
using fmdtest::vectors_of;

class Switch : public fmdtest::StoredBodiesTest {
 protected:
  // Databases A and B of one body each, and what the three bodies of a test say, told by a session that has
  // ended: the bodies of the test itself have not been read yet.
  void SetUp() override {
    make_database("A.MASTER", {1});
    make_database("B.MASTER", {2});
    expected["a"] = everything_of(open("A.MASTER"));
    expected["b"] = everything_of(open("B.MASTER"));
    expected["s"] = everything_of(fmdtest::make_large_body(3));
    FMD_Terminate();
    bodies["a"] = open("A.MASTER");
    bodies["b"] = open("B.MASTER");
    bodies["s"] = fmdtest::make_large_body(3);
    for (const auto& [name, body] : bodies) ASSERT_NE(body, nullptr) << name;
  }

  void export_well(const char* name, const std::string& path, const std::string& qualifiers,
                   const std::string& options = "") {
    EXPECT_EQ(store(bodies[name], path, qualifiers, options), 1) << name << " to " << path;
    EXPECT_EQ(log.errors, Strings{}) << name << " to " << path;
    DB_ResetBrowser();
  }

  void expect_unchanged(const std::string& except = "") {
    for (const auto& [name, body] : bodies) {
      if (name == except) continue;
      EXPECT_TRUE(everything_of(body) == expected[name]) << name;
    }
    EXPECT_EQ(log.errors, Strings{});
  }

  // What a stored body says that is opened for it and released again.
  std::string stored(const std::string& path, int index, std::string (*tell)(FmdBody*)) {
    FmdBody* const body = open("./" + path, index);
    EXPECT_NE(body, nullptr) << path << ' ' << index;
    if (body == nullptr) return "";
    std::string told = tell(body);
    FMD_DeReference(body);
    return told;
  }
  std::string stored_numbers(const std::string& path, int index) { return stored(path, index, numbers_of); }
  std::string stored_vectors(const std::string& path, int index) { return stored(path, index, vectors_of); }

  std::map<std::string, FmdBody*> bodies;
  std::map<std::string, std::string> expected;
};

TEST_F(Switch, ExportsOfEachKindOfBodyChangeNoOther) {
  const std::string a = numbers_of(bodies["a"]);
  const std::string b = numbers_of(bodies["b"]);
  const std::string s = numbers_of(bodies["s"]);
  export_well("a", "B.MASTER", "SELABEL='from a'");
  expect_unchanged("a");
  export_well("s", "B.MASTER", "SELABEL='from scratch'");
  export_well("b", "A.MASTER", "SELABEL='from b'");
  for (const auto& [name, body] : bodies) EXPECT_FALSE(numbers_of(body).empty());
  EXPECT_TRUE(numbers_of(bodies["a"]) == a);
  EXPECT_TRUE(numbers_of(bodies["b"]) == b);
  EXPECT_TRUE(numbers_of(bodies["s"]) == s);

  EXPECT_EQ(count("B.MASTER"), 3);
  EXPECT_EQ(count("A.MASTER"), 2);
  EXPECT_TRUE(stored_numbers("B.MASTER", 1) == b);
  EXPECT_TRUE(stored_numbers("B.MASTER", 2) == a);
  EXPECT_TRUE(stored_numbers("B.MASTER", 3) == s);
  EXPECT_TRUE(stored_numbers("A.MASTER", 1) == a);
  EXPECT_TRUE(stored_numbers("A.MASTER", 2) == b);
}

TEST_F(Switch, BodiesThatHaveNotBeenReadAreReadAfterwards) {
  FmdBody* const extra = fmdtest::make_sample_body();
  EXPECT_EQ(store(extra, "B.MASTER", "SELABEL='extra'"), 1);
  EXPECT_EQ(store(extra, "A.MASTER", "SELABEL='extra'"), 1);
  EXPECT_EQ(store(extra, "C.MASTER", "SELABEL='extra'"), 1);
  expect_unchanged();
}

TEST_F(Switch, BodyWhoseStoredFormIsReplacedStaysWhatItWas) {
  for (int round = 0; round < 4; ++round) {
    export_well("s", "B.MASTER", "SELABEL='s2'");  // under the qualifiers of body b
    export_well("s", "A.MASTER", "SELABEL='s1'");  // and of body a
  }
  expect_unchanged("s");
  EXPECT_EQ(count("B.MASTER"), 1);
  const std::string s = numbers_of(bodies["s"]);
  EXPECT_TRUE(stored_numbers("B.MASTER", 1) == s);
  EXPECT_TRUE(stored_numbers("A.MASTER", 1) == s);

  // Its own body takes the place again, and is read to the end from what was there before.
  export_well("b", "./B.MASTER", "SELABEL='s2'");
  DB_ResetBrowser();
  EXPECT_TRUE(stored_numbers("B.MASTER", 1) == numbers_of(bodies["b"]));
  EXPECT_TRUE(everything_of(bodies["a"]) == expected["a"]);
}

TEST_F(Switch, OwnFileIsRefusedBeforeTheSessionMoves) {
  EXPECT_EQ(store(bodies["a"], "A.MASTER", "SELABEL='other'"), 0);
  EXPECT_EQ(log.all, Strings{"E:The output FMD name must be different than the current FMD name.\n"
                             "  Current FMD name:  A.MASTER\n  Output FMD name:  A.MASTER"});
  log.clear();
  expect_unchanged();
  EXPECT_EQ(count("A.MASTER"), 1);
}

TEST_F(Switch, ModeStreamsReplacedOnTheWayComeBackWithTheBody) {
  export_well("a", "B.MASTER", "SELABEL='a'", "full_invar,MKS");
  expect_unchanged("a");
  const std::string a = numbers_of(bodies["a"]);
  EXPECT_TRUE(stored_numbers("B.MASTER", 2) == a);
  export_well("a", "C.MASTER", "");
  EXPECT_TRUE(numbers_of(bodies["a"]) == a);
  EXPECT_TRUE(stored_vectors("C.MASTER", 1) == vectors_of(bodies["a"]));
  expect_unchanged("a");
}

TEST_F(Switch, UnitsChangedOnTheWayStayWithTheBody) {
  FmdBody* const sample = fmdtest::make_sample_body();  // in millimetres and megagrams
  EXPECT_EQ(store(sample, "F.MASTER"), 1);
  FMD_UnLink(sample);
  bodies["f"] = open("F.MASTER");
  ASSERT_NE(bodies["f"], nullptr);
  export_well("f", "B.MASTER", "SELABEL='f'", "full_invar,MKS");
  EXPECT_EQ(bodies["f"]->ModeFile[0].IsScratch, 1);
  EXPECT_TRUE(stored_numbers("B.MASTER", 2) == numbers_of(bodies["f"]));
  double at[3];
  EXPECT_EQ(FMD_NodeCoordinates(bodies["f"], 0, at), 1);
  EXPECT_NEAR(at[0], 0.001 * fmdtest::sample_position(FMD_NodeID(bodies["f"], 0))[0], 1e-15);
  expect_unchanged("f");
}

TEST_F(Switch, ModesThatAreTransformedOnTheWayComeBackWithTheBody) {
  FmdBody* const made = fmdtest::make_large_body(4, 700, 4, false);
  EXPECT_EQ(store(made, "D.MASTER", "", "no_ortho"), 1);
  EXPECT_EQ(made->ModeFile[0].IsScratch, 1);
  bodies["d"] = open("D.MASTER");
  ASSERT_NE(bodies["d"], nullptr);
  EXPECT_EQ(bodies["d"]->ModeFile[0].IsScratch, 0);
  // What is read is taken for orthonormal; given once more, an entry says otherwise.
  FMD_SetGeneralizedMass(bodies["d"], 2, 1, 0.25);
  const std::string before = vectors_of(bodies["d"]);
  const std::size_t files_before = fmdtest::open_files();

  EXPECT_EQ(store(made, "B.MASTER", "SELABEL='made'"), 1);
  EXPECT_EQ(fmdtest::open_files(), files_before);  // three streams replace three
  export_well("d", "B.MASTER", "SELABEL='read'");
  EXPECT_EQ(bodies["d"]->ModeFile[0].IsScratch, 1);
  const std::string after = vectors_of(bodies["d"]);
  EXPECT_FALSE(after == before);
  EXPECT_TRUE(stored_vectors("B.MASTER", 3) == after);
  EXPECT_TRUE(numbers_of(made) == stored_numbers("B.MASTER", 2));
  expect_unchanged("d");
  for (int round = 0; round < 3; ++round) export_well("d", "C.MASTER", "");
  EXPECT_TRUE(vectors_of(bodies["d"]) == after);
  EXPECT_TRUE(stored_vectors("C.MASTER", 1) == after);
  expect_unchanged("d");
}

TEST_F(Switch, SinglePrecisionBodiesGoAndComeToo) {
  export_well("a", "C.MASTER", "", "single");
  bodies["c"] = open("C.MASTER");
  ASSERT_NE(bodies["c"], nullptr);
  EXPECT_EQ(FMD_Double_Prec(bodies["c"]), 0);
  const std::string c = numbers_of(bodies["c"]);
  EXPECT_EQ(log.errors, Strings{});
  for (const char* options : {"", "single"}) {
    export_well("c", "B.MASTER", "SELABEL='c'", options);
    DB_ResetBrowser();
    EXPECT_EQ(FMD_Double_Prec(bodies["c"]), 0);
    EXPECT_TRUE(numbers_of(bodies["c"]) == c) << options;
    FmdBody* const again = open("./B.MASTER", 2);
    ASSERT_NE(again, nullptr);
    EXPECT_EQ(FMD_Double_Prec(again), options[0] == '\0' ? 1 : 0);
    std::vector<double> one(3 * 700);
    std::vector<double> other(3 * 700);
    for (int mode = 1; mode <= 4; ++mode) {
      EXPECT_EQ(FMD_Mode(bodies["c"], mode, 0, one.data(), 0), 1);
      EXPECT_EQ(FMD_Mode(again, mode, 0, other.data(), 0), 1);
      EXPECT_EQ(one, other);
    }
    FMD_UnLink(again);
  }
  expect_unchanged("c");
}

TEST_F(Switch, BothFormsOfABodyStayReadable) {
  FmdBody* const sample = fmdtest::make_sample_body();
  EXPECT_EQ(store(sample, "F.MASTER"), 1);
  FMD_UnLink(sample);
  std::string path = "F.MASTER";
  bodies["whole"] = FMD_CreateFromFMD(path.data(), 1);
  bodies["mesh"] = FMD_CreateFromFMD_SurfaceMesh(path.data(), 1);
  ASSERT_NE(bodies["whole"], nullptr);
  ASSERT_NE(bodies["mesh"], nullptr);
  EXPECT_NE(bodies["whole"], bodies["mesh"]);
  EXPECT_EQ(FMD_CreateFromFMD(path.data(), 1), bodies["whole"]);
  EXPECT_EQ(FMD_CreateFromFMD_SurfaceMesh(path.data(), 1), bodies["mesh"]);
  for (const char* name : {"whole", "mesh"}) expected[name] = everything_of(bodies[name]);
  export_well("a", "B.MASTER", "SELABEL='a'");
  expect_unchanged("a");
  const std::string mesh = numbers_of(bodies["mesh"]);
  export_well("mesh", "B.MASTER", "SELABEL='mesh'");
  EXPECT_TRUE(numbers_of(bodies["mesh"]) == mesh);
  EXPECT_TRUE(everything_of(bodies["whole"]) == expected["whole"]);
}

TEST_F(Switch, ManyWritesLeaveNothingOpenAndNoFileGrowing) {
  bodies["t"] = fmdtest::make_large_body(5, 700, 4, false);
  export_well("t", "C.MASTER", "SELABEL='t'");
  export_well("a", "C.MASTER", "SELABEL='a'");
  const auto again = [&] {
    export_well("t", "C.MASTER", "SELABEL='t'");
    export_well("a", "C.MASTER", "SELABEL='a'");
    DB_ResetBrowser();
    EXPECT_EQ(count("C.MASTER"), 2);
  };
  again();
  again();
  const std::size_t open_before = fmdtest::open_files();
  const auto size_before = std::filesystem::file_size("C.MASTER");
  for (int round = 0; round < 12; ++round) again();
  EXPECT_EQ(fmdtest::open_files(), open_before);
  EXPECT_LE(std::filesystem::file_size("C.MASTER"), size_before * 5 / 4);
  expect_unchanged("t");
}

TEST_F(Switch, MasterFilesAloneStayBesideTheSessions) {
  export_well("a", "B.MASTER", "SELABEL='a'");
  export_well("s", "C.MASTER", "");
  EXPECT_EQ(files(), (Strings{"A.MASTER", "B.MASTER", "C.MASTER"}));
  FMD_Terminate();
  std::size_t all = 0;
  for (const auto& entry : std::filesystem::directory_iterator(directory.path())) {
    EXPECT_EQ(entry.path().extension(), ".MASTER");
    ++all;
  }
  EXPECT_EQ(all, 3U);
}

TEST_F(Switch, BodiesMayBeReleasedBetweenWrites) {
  export_well("a", "C.MASTER", "");
  FMD_DeReference(bodies["a"]);
  bodies.erase("a");
  export_well("s", "B.MASTER", "SELABEL='s'");
  EXPECT_TRUE(everything_of(bodies["b"]) == expected["b"]);
  FMD_DeReference(bodies["s"]);
  bodies.erase("s");
  export_well("b", "A.MASTER", "SELABEL='b'");
  FMD_DeReference(bodies["b"]);
  bodies.erase("b");
  EXPECT_EQ(FMD_GetFirstFMD(), nullptr);
  bodies["a"] = open("A.MASTER");
  bodies["b"] = open("B.MASTER");
  expect_unchanged();
}

TEST_F(Switch, ReleasedBodiesKeepNoFileOpen) {
  FMD_Terminate();
  bodies.clear();
  FmdBody* const keeps_the_session = fmdtest::make_sample_body();
  const std::size_t before = fmdtest::open_files();
  for (int round = 0; round < 5; ++round) {
    FmdBody* const body = open("A.MASTER");
    ASSERT_NE(body, nullptr);
    EXPECT_GT(fmdtest::open_files(), before);
    FMD_DeReference(body);
    EXPECT_EQ(fmdtest::open_files(), before);
  }
  EXPECT_NE(keeps_the_session, nullptr);
}

TEST_F(Switch, OnTheTargetOnlyTheBodyBeingWrittenIsOpen) {
  std::string path = "B.MASTER";
  std::ifstream file("B.MASTER", std::ios::binary);
  const std::string bytes(std::istreambuf_iterator<char>(file), {});
  std::vector<double> values(6 * 700);
  log.clear();
  ASSERT_EQ(DB_StartWrite(bodies["a"], path.data()), 1);
  EXPECT_EQ(FMD_Read_Mode_Double(bodies["a"], 1, 0, values.data()), 1);
  EXPECT_EQ(FMD_Read_Mode_Double(bodies["b"], 1, 0, values.data()), 0);
  EXPECT_EQ(FMD_Read_Mode_Double(bodies["s"], 1, 0, values.data()), 0);
  ASSERT_EQ(DB_TermWrite(bodies["a"], path.data()), 1);
  log.clear();
  expect_unchanged();
  // Nothing was stored.
  std::ifstream after("B.MASTER", std::ios::binary);
  EXPECT_TRUE(std::string(std::istreambuf_iterator<char>(after), {}) == bytes);
}

TEST_F(Switch, WithoutABodyNothingHappens) {
  std::string path = "C.MASTER";
  std::string none;
  log.clear();
  EXPECT_EQ(DB_StartWrite(nullptr, path.data()), 0);
  EXPECT_EQ(DB_TermWrite(nullptr, path.data()), 0);
  EXPECT_EQ(FMD_write_DB(nullptr, path.data(), none.data()), 0);
  EXPECT_EQ(log.all, Strings(3, "E:The database has not been initialized."));
  log.clear();
  expect_unchanged();
}

TEST_F(Switch, BodyWithoutANameForItsFileIsNotTakenAlong) {
  // As a reading leaves it that had no memory for the name.
  char* const name = bodies["b"]->DataFile.Name;
  bodies["b"]->DataFile.Name = nullptr;
  export_well("a", "C.MASTER", "");
  expect_unchanged("a");
  EXPECT_EQ(store(bodies["b"], "C.MASTER"), 0);
  EXPECT_EQ(log.errors, Strings{"Unable to open C.MASTER for write. Please check the name and qualifier."});
  bodies["b"]->DataFile.Name = name;
}

TEST_F(Switch, PathWithoutTheSuffixIsABaseName) {
  export_well("a", "plain", "");
  EXPECT_EQ(files(), (Strings{"A.MASTER", "B.MASTER", "plain.MASTER"}));
  EXPECT_EQ(count("plain.MASTER"), 1);
  expect_unchanged("a");
  // There is no file of the name itself, so that a new database would be made.
  EXPECT_EQ(store(bodies["s"], "plain"), 0);
  EXPECT_EQ(log.errors, Strings{"Unable to open plain for write. Please check the name and qualifier."});
  FMD_Terminate();
  EXPECT_EQ(count("plain.MASTER"), 1);
  EXPECT_EQ(files(), (Strings{"A.MASTER", "B.MASTER", "plain.MASTER"}));
}

TEST_F(Switch, DatabaseInAnotherFolderStandsAloneThere) {
  std::filesystem::create_directory("deep");
  export_well("a", "deep/C.MASTER", "");
  export_well("s", directory.path().string() + "/deep/C.MASTER", "SELABEL='s'");
  EXPECT_EQ(count("deep/C.MASTER"), 2);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator("deep"), {}), 1);
  expect_unchanged("s");
}

TEST_F(Switch, SessionKeepsItsDirectoryVariable) {
  const fmdtest::EnvironmentVariable unset("KXI_KADCDB_DIR", nullptr);
  export_well("a", "C.MASTER", "");
  expect_unchanged("a");
}

TEST_F(Switch, OwnDatabaseOfTheSessionIsNoTarget) {
  std::string own;
  for (const auto& entry : std::filesystem::directory_iterator(directory.path())) {
    const std::string name = entry.path().filename();
    if (name.rfind("fmd", 0) == 0 && entry.path().extension() == ".MASTER") own = name;
  }
  ASSERT_NE(own, "");
  EXPECT_EQ(store(bodies["s"], own), 0);
  EXPECT_EQ(log.errors,
            Strings{"Unable to open " + own + " for write. Please check the name and qualifier."});
  log.clear();
  expect_unchanged();
}

TEST_F(Switch, FolderMayHaveAnyName) {
  for (const char* name : {"it's, here (1); and more", "dblocate logical=x", "ümlaut '", "*"}) {
    SCOPED_TRACE(name);
    std::filesystem::create_directory(name);
    const std::string path = std::string(name) + "/C.MASTER";
    export_well("s", path, "SELABEL='s'");
    expected["s"] = everything_of(bodies["s"]);
    EXPECT_EQ(count(path), 1);
    bodies["c"] = open(path);
    ASSERT_NE(bodies["c"], nullptr);
    expected["c"] = everything_of(bodies["c"]);
    export_well("c", "B.MASTER", "SELABEL='c'");
    expected["c"] = everything_of(bodies["c"]);
    expect_unchanged();
    FMD_DeReference(bodies["c"]);
    bodies.erase("c");
  }
}

TEST_F(Switch, ChangeOfTheCurrentFolderLeavesOpenBodiesReadable) {
  std::filesystem::create_directory("deep");
  const std::string c = directory.path().string() + "/C.MASTER";
  std::filesystem::current_path("deep");
  export_well("s", c, "");
  expect_unchanged("s");
  expected["s"] = everything_of(bodies["s"]);
  export_well("a", c, "SELABEL='a'");
  std::filesystem::current_path("..");
  expect_unchanged("a");
}

}  // namespace
