// The file that a write makes or does not leave, and the body that it leaves.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <fstream>

#include "body/body.h"
#include "dbmodal/write_fixture.h"
#include "messages/memory.h"
#include "support/failing_file_system.h"

namespace fmdtest {

namespace {

class WriteFile : public WriteTest {
 protected:
  // The n-th file call of a write fails with the n-th message, no file stays, and the body is as good as
  // ever.
  void expect_refusals(FmdBody* body, const std::string& options, const std::vector<Strings>& parts) {
    ASSERT_EQ(write(body, options, "whole.fmd"), 1);
    long call = 0;
    for (const Strings& part : parts) {
      for (const std::string& message : part) {
        {
          FailingFileSystem failing(++call);
          expect_failure(body, options, {message});
        }
        EXPECT_EQ(write(body, options, "again.fmd"), 1);
        EXPECT_EQ(dataset_reader::read_bytes("again.fmd"), dataset_reader::read_bytes("whole.fmd"));
      }
    }
    FailingFileSystem counting;
    EXPECT_EQ(write(body, options), 1);
    EXPECT_EQ(counting.calls(), call);
    std::filesystem::remove("out.fmd");
  }
};

TEST_F(WriteFile, WithoutABodyIsRefused) {
  EXPECT_EQ(write(nullptr), 0);
  EXPECT_EQ(log.all, Strings{"E:The database has not been initialized."});
  EXPECT_FALSE(std::filesystem::exists("out.fmd"));
}

TEST_F(WriteFile, OfTheBodysOwnNameIsNotTouched) {
  FmdBody* body = make_sample_body();
  std::ofstream("source.fmd") << "what the body reads";
  std::string name = "source.fmd";
  body->DataFile.Name = name.data();
  EXPECT_EQ(write(body, "", "source.fmd"), 0);
  EXPECT_EQ(log.all, Strings{"E:The output FMD name must be different than the current FMD name.\n"
                             "  Current FMD name:  source.fmd\n  Output FMD name:  source.fmd"});
  EXPECT_EQ(std::filesystem::file_size("source.fmd"), 19U);
  EXPECT_EQ(write(body, "", "./source.fmd"), 1);
  EXPECT_EQ(write(body, "", "out.fmd"), 1);
  body->DataFile.Name = nullptr;
}

TEST_F(WriteFile, DoesNotNameTheBody) {
  FmdBody* body = make_sample_body();
  ASSERT_EQ(write(body), 1);
  EXPECT_EQ(body->DataFile.Name, nullptr);
  EXPECT_EQ(write(body), 1);
}

TEST_F(WriteFile, ThatCannotBeOpenedIsNamed) {
  EXPECT_EQ(write(make_sample_body(), "full_str sparse_str", "no/such/folder.fmd"), 0);
  EXPECT_EQ(log.all,
            Strings{"E:Unable to open no/such/folder.fmd for write. Please check write permissions."});
}

TEST_F(WriteFile, ThatIsAFolderIsNamed) {
  std::filesystem::create_directory("folder");
  EXPECT_EQ(write(make_sample_body(), "", "folder"), 0);
  EXPECT_EQ(log.all, Strings{"E:Unable to open folder for write. Please check write permissions."});
  EXPECT_TRUE(std::filesystem::is_directory("folder"));
}

TEST_F(WriteFile, OnAFullDeviceFailsAndKeepsTheDevice) {
  // Reached through a link, so that a fault of the writer costs the link and not the machine's device.
  std::filesystem::create_symlink("/dev/full", "full");
  FmdBody* body = make_sample_body();
  for (const WordCase& word : kWordCases) {
    EXPECT_EQ(write(body, word.options, "full"), 0);
    EXPECT_EQ(log.errors, Strings{"Problem writing version number."});
    EXPECT_TRUE(std::filesystem::is_symlink("full"));
  }
}

TEST_F(WriteFile, BeyondTheFileSizeLimitIsRemoved) {
  FmdBody* body = make_sample_body();
  ASSERT_EQ(write(body), 1);
  const rlim_t whole = std::filesystem::file_size("out.fmd");
  const auto previous_action = std::signal(SIGXFSZ, SIG_IGN);
  rlimit previous;
  getrlimit(RLIMIT_FSIZE, &previous);
  for (const rlim_t limit : {rlim_t{0}, rlim_t{1}, rlim_t{2600}, whole / 2, whole - 1}) {
    const rlimit lowered = {limit, previous.rlim_max};
    setrlimit(RLIMIT_FSIZE, &lowered);
    const int result = write(body);
    setrlimit(RLIMIT_FSIZE, &previous);
    EXPECT_EQ(result, 0) << limit;
    ASSERT_EQ(log.errors.size(), 1U) << limit;
    EXPECT_EQ(log.errors[0].rfind("Problem writing ", 0), 0U) << log.errors[0];
    EXPECT_FALSE(std::filesystem::exists("out.fmd")) << limit;
  }
  std::signal(SIGXFSZ, previous_action);
  EXPECT_EQ(write(body), 1);
}

TEST_F(WriteFile, OfABodyThatWasWrittenBeforeHasTheSameBytes) {
  FmdBody* body = make_sample_body();
  for (const WordCase& word : kWordCases) {
    ASSERT_EQ(write(body, word.options, "first.fmd"), 1);
    ASSERT_EQ(write(body, word.options, "second.fmd"), 1);
    EXPECT_EQ(dataset_reader::read_bytes("first.fmd"), dataset_reader::read_bytes("second.fmd"));
  }
}

TEST_F(WriteFile, IsTheSameWithTheModeCacheOnAndOff) {
  FmdBody* body = make_sample_body();
  FMD_SetKeepModesInMemory(body, 0);
  ASSERT_EQ(write(body, "", "first.fmd"), 1);
  FMD_SetKeepModesInMemory(body, 1);
  ASSERT_EQ(write(body, "", "second.fmd"), 1);
  ASSERT_EQ(write(body, "", "third.fmd"), 1);
  EXPECT_EQ(dataset_reader::read_bytes("first.fmd"), dataset_reader::read_bytes("second.fmd"));
  EXPECT_EQ(dataset_reader::read_bytes("first.fmd"), dataset_reader::read_bytes("third.fmd"));
}

TEST_F(WriteFile, SurvivesTheFailureOfEachAllocation) {
  FmdBody* reference = make_sample_body();
  ASSERT_EQ(write(reference, "single sparse_str", "whole.fmd"), 1);
  bool complete = false;
  for (long n = 1; !complete && n < 500; ++n) {
    FmdBody* body = make_sample_body();
    for (std::size_t i = 0; i < sizeof body->CreationTime; ++i) {
      body->CreationTime[i] = reference->CreationTime[i];
    }
    fmd::fail_allocation(n);
    complete = write(body, "single sparse_str") == 1;
    fmd::fail_allocation(0);
    if (complete) {
      EXPECT_EQ(dataset_reader::read_bytes("out.fmd"), dataset_reader::read_bytes("whole.fmd")) << n;
    } else {
      EXPECT_FALSE(log.errors.empty()) << n;
      EXPECT_FALSE(std::filesystem::exists("out.fmd")) << n;
      EXPECT_EQ(write(body, "single sparse_str"), 1) << n;
      EXPECT_EQ(dataset_reader::read_bytes("out.fmd"), dataset_reader::read_bytes("whole.fmd")) << n;
      std::filesystem::remove("out.fmd");
    }
    FMD_UnLink(body);
  }
  EXPECT_TRUE(complete);
}

// A small block reaches the file in one call, so the calls fail in the order of the blocks.
TEST_F(WriteFile, TellsWhichBlockTheDiskRefused) {
  FmdBody* body = make_sample_body();
  FMD_SetGeneralizedDamping(body, 7, 7, 0.5);
  FMD_SetInvar1(body, 4.0);
  double numbers[6] = {1.0, 2.0, 3.0, 0.0, 0.0, 0.0};
  FMD_SetInvar2(body, numbers);
  FMD_SetInvar7(body, numbers);
  // The modes are in the cache from here on, so that no call reads them.
  FMD_SetKeepModesInMemory(body, 1);
  ASSERT_EQ(write(body), 1);
  std::filesystem::remove("out.fmd");
  const Strings opening = {"Unable to open out.fmd for write. Please check write permissions.",
                           "Problem writing version number.", "Problem writing header information.",
                           "Problem writing content summary.\n", "Problem writing nodal coordinates.\n"};
  const Strings topology = {"Problem writing element topology map."};
  const Strings properties = {"Problem writing Global Body Properties."};
  const Strings eigenvalues = {"Problem writing eigenvalues."};
  const Strings middle = {"Problem writing Mode Shapes.", "Problem writing Nodal Masses.\n",
                          "Problem writing Nodal Inertia info.", "Problem writing Units strings."};
  const Strings matrices = {"Problem writing Generalized Stiffness info.",
                            "Problem writing Generalized Mass info."};
  const Strings faces = {"Problem writing element face info."};
  const Strings damping = {"Problem writing Generalized Damping info."};
  const Strings transformation = {"Problem writing Mode Shape Transformation."};
  const Strings closing = {"Problem writing Interface Nodes.",    "Problem writing Modal Stress.\n",
                           "Problem writing Invariant 1.\n",      "Problem writing Invariant 2.\n",
                           "Problem writing Invariant 7.\n",      "Problem writing Modal Strain.",
                           "Problem writing Modal Statistics.\n", "Problem writing Pre-Stress.\n",
                           "Problem writing Pre-Strain.\n",       "Problem closing out.fmd."};
  expect_refusals(body, "",
                  {opening, properties, eigenvalues, middle, faces, damping, transformation, closing});
  expect_refusals(body, "no_ortho 82_comp",
                  {opening, topology, properties, middle, matrices, damping, closing});
}

TEST_F(WriteFile, LargerThanAnyBufferReadsBackInEveryForm) {
  std::vector<int> nodes;
  for (int id = 1; id <= 12000; ++id) nodes.push_back(id);
  FmdBody* body = make_nodes(nodes, 2);
  add_vectors(body, 0, {1, 2}, nodes);
  add_frequency(body, 1, 5.0);
  add_frequency(body, 2, 10.0);
  for (const WordCase& word : kWordCases) {
    const Dataset dataset = written(body, word.options);
    ASSERT_EQ(dataset.mode_shapes->node_ids, nodes);
    for (std::size_t i = 0; i < nodes.size(); ++i) {
      ASSERT_EQ(dataset.nodes->at(i).id, nodes[i]);
      ASSERT_EQ(dataset.nodes->at(i).xyz, sample_position(nodes[i]));
      ASSERT_EQ(dataset.mode_shapes->at(0, i), sample_vector(0, 1, nodes[i]));
      ASSERT_EQ(dataset.mode_shapes->at(1, i), sample_vector(0, 2, nodes[i]));
    }
  }
}

class EmptyBody : public WriteTest {};

TEST_F(EmptyBody, OfOneNodeIsSummaryNodesAndUnits) {
  FmdBody* body = FMD_Create(1, 1);
  FMD_SetNodeCoordinates(body, 5, 1.0, 2.0, 3.0);
  const Dataset dataset = written(body, "no_xdr");
  // 648 bytes, then block 4 of one node and block 11.
  EXPECT_EQ(std::filesystem::file_size("out.fmd"), 648U + (4 + 4 + 4 + 24) + 64);
  EXPECT_EQ(dataset.block(4)->offset, 648U);
  for (std::size_t byte = 0; byte < 100; ++byte) {
    EXPECT_EQ(dataset.summary[byte], byte == 0 || byte == 8 ? 1 : 0) << byte;
  }
  EXPECT_EQ(dataset_reader::trimmed(dataset.units->mass), "KILOGRAM");
  EXPECT_EQ(dataset_reader::trimmed(dataset.units->length), "METER");
  EXPECT_EQ(dataset_reader::trimmed(dataset.units->time), "SECOND");
  EXPECT_EQ(dataset_reader::trimmed(dataset.units->force), "NEWTON");
}

TEST_F(EmptyBody, WithoutNodesHoldsUnitsAlone) {
  const Dataset dataset = written(FMD_Create(1, 1));
  EXPECT_EQ(dataset.blocks.size(), 4U);
  ASSERT_TRUE(dataset.units.has_value());
}

TEST_F(EmptyBody, IsWrittenInEveryForm) {
  FmdBody* body = FMD_Create(1, 1);
  FMD_SetNodeCoordinates(body, 5, 1.0, 2.0, 3.0);
  for (const WordCase& word : kWordCases) {
    const Dataset dataset = written(body, word.options);
    EXPECT_EQ(dataset.version_word, word.word);
    EXPECT_EQ(dataset.nodes->at(0).id, 5);
    EXPECT_EQ(dataset.nodes->at(0).xyz, (std::array<double, 3>{1.0, 2.0, 3.0}));
    EXPECT_FALSE(dataset.statistics.has_value());
  }
}

}  // namespace

}  // namespace fmdtest
