#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "dataset_reader/dataset_reader.h"
#include "tools/fmdtool_test_support.h"
#include "translators/frd_text.h"

using namespace fmdtest;
using dataset_reader::Dataset;
using dataset_reader::read_dataset_file;

namespace {

const std::string bracket = std::string(FMD_EXAMPLES) + "/bracket/";

const nlohmann::json& reference() {
  static const nlohmann::json json = nlohmann::json::parse(std::ifstream(bracket + "reference.json"));
  return json;
}

std::vector<std::int32_t> interface_ids(const Dataset& dataset) {
  std::vector<std::int32_t> ids;
  for (const std::int32_t index : *dataset.interface_nodes) {
    ids.push_back((*dataset.nodes)[static_cast<std::size_t>(index)].id);
  }
  return ids;
}

bool contains(const std::string& text, const std::string& piece) {
  return text.find(piece) != std::string::npos;
}

}  // namespace

TEST_F(FmdtoolTest, TellsItsVersionAndExplainsItself) {
  const Outcome version = run({"--version"});
  EXPECT_EQ(version.exit_code, 0);
  EXPECT_EQ(version.output, "fmdtool " FMDTOOL_VERSION "\n");
  const Outcome help = run({"--help"});
  EXPECT_EQ(help.exit_code, 0);
  EXPECT_TRUE(contains(help.output, "Example:\n  fmdtool translate calculix"));
  const Outcome translate_help = translate({"--help"});
  EXPECT_EQ(translate_help.exit_code, 0);
  for (const char* piece : {"JOB.frd", "--deck JOB.inp", "-o,--output OUT.fmd", "--density NUMBER",
                            "--interface-nodes", "--units MASS,LENGTH,TIME,FORCE", "--option TEXT", "--json",
                            "--invariants full|fast", "--monitor SET|FILE", "*CLOAD", "Example:"}) {
    EXPECT_TRUE(contains(translate_help.output, piece)) << piece;
  }
}

TEST_F(FmdtoolTest, RefusesABadCommandLine) {
  const std::vector<std::vector<std::string>> lines = {
      {},
      {"translate"},
      {"frobnicate"},
      {"translate", "calculix"},
      {"translate", "calculix", "a.frd", "b.frd"},
      {"translate", "calculix", "a.frd", "--nonsense"},
      {"translate", "calculix", "a.frd", "--density", "-1"},
      {"translate", "calculix", "a.frd", "--density", "nan"},
      {"translate", "calculix", "a.frd", "--units", "KILOGRAM"},
      {"translate", "calculix", "a.frd", "--invariants"},
      {"translate", "calculix", "a.frd", "--invariants", "most"},
      {"translate", "calculix", "a.frd", "--monitor"}};
  for (const auto& line : lines) {
    const Outcome outcome = run(line);
    EXPECT_NE(outcome.exit_code, 0);
    EXPECT_LT(outcome.exit_code, 128);
    EXPECT_NE(outcome.errors, "");
  }
  EXPECT_TRUE(contains(translate({"a.frd", "--units", "TON,METER,SECOND,NEWTON"}).errors,
                       "expected a unit of mass, found \"TON\"; known are MEGAGRAM KILOGRAM"));
  EXPECT_EQ(files(), (std::set<std::string>{"tmp"}));
}

TEST_F(FmdtoolTest, TellsInATableWhatIsInTheDataset) {
  write_cube();
  const Outcome outcome = translate({"job.frd", "--interface-nodes", "TOP", "-o", "cube.fmd"});
  EXPECT_EQ(outcome.exit_code, 0) << outcome.errors;
  EXPECT_EQ(outcome.errors, "");
  const auto bytes = std::filesystem::file_size("cube.fmd");
  const std::size_t time = outcome.output.find("  time              ");
  ASSERT_NE(time, std::string::npos);
  EXPECT_EQ(outcome.output.substr(0, time),
            "unit cube\n"
            "  results           job.frd\n"
            "  deck              job.inp\n"
            "  dataset           cube.fmd\n"
            "  units             MEGAGRAM MILLIMETER SECOND NEWTON\n"
            "  nodes             8\n"
            "  elements          1\n"
            "  faces             6\n"
            "  interface nodes   4\n"
            "  mass              7.85\n"
            "  centre of mass    0.5  0.5  0.5\n"
            "  bounding box      0  0  0  to  1  1  1\n"
            "  file size         " +
                std::to_string(bytes) + " bytes\n");
  EXPECT_EQ(outcome.output.substr(outcome.output.find(" s\n", time)),
            " s\n\n  mode    frequency [Hz]\n     1    0\n     2    12.5\n");
  EXPECT_EQ(files(), (std::set<std::string>{"tmp", "job.frd", "job.inp", "cube.fmd"}));
}

TEST_F(FmdtoolTest, ReproducesTheReferenceOfTheSample) {
  const Outcome outcome =
      translate({bracket + "bracket_free.frd.gz", "--deck", bracket + "bracket_free.inp", "--interface-nodes",
                 "P_HOLE_B1,P_HOLE_B2", "--interface-nodes", "P_HOLE_W1", "--json", "-o", "bracket.fmd"});
  ASSERT_EQ(outcome.exit_code, 0) << outcome.errors;
  const auto json = nlohmann::json::parse(outcome.output);
  EXPECT_EQ(json["nodes"], reference()["mesh"]["node_count"]);
  EXPECT_EQ(json["elements"], reference()["mesh"]["element_count"]);
  EXPECT_EQ(json["faces"], reference()["mesh"]["exterior_faces"]);
  EXPECT_EQ(json["interface_nodes"], 3);
  EXPECT_EQ(json["bounding_box"]["low"], reference()["mesh"]["bbox_min"]);
  EXPECT_EQ(json["bounding_box"]["high"], reference()["mesh"]["bbox_max"]);
  EXPECT_NEAR(json["mass"].get<double>() / reference()["mass_properties"]["mass"].get<double>(), 1.0, 1e-6);
  for (std::size_t k = 0; k < 3; ++k) {
    EXPECT_NEAR(json["center_of_mass"][k].get<double>(), reference()["hrz_lumped"]["com"][k].get<double>(),
                1e-5);
  }
  EXPECT_EQ(json["bytes"], std::filesystem::file_size("bracket.fmd"));
  EXPECT_EQ(json["units"]["mass"], "MEGAGRAM");

  const Dataset dataset = read_dataset_file("bracket.fmd");
  EXPECT_EQ(dataset.version_word, 0x13CU);
  EXPECT_EQ(dataset_reader::trimmed(dataset.header.title), "bracket free-free modes");
  EXPECT_EQ(dataset_reader::trimmed(dataset.header.input_file_type), "CalculiX");
  EXPECT_EQ(interface_ids(dataset), (std::vector<std::int32_t>{392, 393, 295}));
  EXPECT_EQ(dataset.faces->faces.size(), 1310U);
  EXPECT_EQ(dataset.stress->node_ids.size(), 3833U);
  const auto& hertz = reference()["free"]["hz_frd"];
  ASSERT_EQ(dataset.eigenvalues->size(), hertz.size());
  ASSERT_EQ(json["modes"].size(), hertz.size());
  for (std::size_t i = 0; i < hertz.size(); ++i) {
    const double expected = hertz[i].get<double>();
    EXPECT_NEAR((*dataset.eigenvalues)[i].hertz, expected, 1e-12 * expected);
    EXPECT_NEAR(json["modes"][i]["hertz"].get<double>(), expected, 1e-12 * expected);
    EXPECT_EQ(json["modes"][i]["number"], i + 1);
    EXPECT_EQ((*dataset.eigenvalues)[i].generalized_mass, 1.0);
  }
  const auto& tensor = reference()["hrz_lumped"]["inertia_about_origin"];
  for (std::size_t k = 0; k < 9; ++k) {
    EXPECT_NEAR(std::abs(dataset.global_properties->inertia[k]), std::abs(tensor[k / 3][k % 3].get<double>()),
                1e-6);
  }
}

TEST_F(FmdtoolTest, WritesTheSampleInEveryVersionWord) {
  const std::pair<const char*, std::uint32_t> words[] = {{"", 0x13C},
                                                         {"single", 0x33C},
                                                         {"no_xdr", 0x03C},
                                                         {"single no_xdr", 0x23C},
                                                         {"full_str", 0x029},
                                                         {"full_str single", 0x033},
                                                         {"full_str no_xdr", 0x028},
                                                         {"full_str single no_xdr", 0x032},
                                                         {"82_comp", 0x014},
                                                         {"81_comp", 0x00A}};
  for (const auto& [options, word] : words) {
    std::vector<std::string> arguments = {bracket + "bracket_fixed.frd.gz", "-o", "bracket.fmd"};
    if (*options != '\0') arguments.insert(arguments.end(), {"--option", options});
    const Outcome outcome = translate(arguments);
    ASSERT_EQ(outcome.exit_code, 0) << options << outcome.errors;
    const Dataset dataset = read_dataset_file("bracket.fmd");
    EXPECT_EQ(dataset.version_word, word) << options;
    EXPECT_EQ(dataset.nodes->size(), 3833U);
    ASSERT_EQ(dataset.eigenvalues->size(), 12U);
    const double first = reference()["fixed"]["hz_frd"][0].get<double>();
    EXPECT_NEAR((*dataset.eigenvalues)[0].hertz, first, dataset.single ? 1e-6 * first : 1e-12 * first)
        << options;
  }
}

TEST_F(FmdtoolTest, NeedsNoEnvironmentAndFindsTheDeckBesideTheResults) {
  std::filesystem::create_directory("there");
  write_file("there/job.frd", frd_text(cube()));
  write_file("there/job.inp", cube_deck());
  const auto temporary = settings.environment;
  settings.environment.clear();
  const Outcome outcome = translate({"there/job.frd"});
  EXPECT_EQ(outcome.exit_code, 0) << outcome.errors;
  EXPECT_TRUE(contains(outcome.output, "  dataset           job.fmd\n"));
  EXPECT_EQ(files(), (std::set<std::string>{"tmp", "there", "there/job.frd", "there/job.inp", "job.fmd"}));
  settings.environment = temporary;
  settings.environment["KXI_KADCDB_DIR"] = "there";
  EXPECT_EQ(translate({"there/job.frd"}).exit_code, 0);
  EXPECT_EQ(files().size(), 5U);
}

TEST_F(FmdtoolTest, DescribesWhatAFrequencyBandLeaves) {
  write_cube();
  const Outcome high = translate({"job.frd", "--option", "highpass(5)"});
  EXPECT_TRUE(contains(high.output, "[Hz]\n     1    12.5\n")) << high.output << high.errors;
  EXPECT_EQ(read_dataset_file("job.fmd").eigenvalues->size(), 1U);
  const Outcome low = translate({"job.frd", "--option", "single", "--option", "lowpass(5)", "--json"});
  const auto json = nlohmann::json::parse(low.output);
  ASSERT_EQ(json["modes"].size(), 1U);
  EXPECT_EQ(json["modes"][0]["hertz"], 0.0);
  EXPECT_EQ(read_dataset_file("job.fmd").version_word, 0x33CU);
  const Outcome all = translate({"job.frd", "--option", "no_ortho"});
  EXPECT_TRUE(contains(all.output, "[Hz]\n     1    0\n     2    12.5\n")) << all.output << all.errors;
}

TEST_F(FmdtoolTest, TakesWriteOptionsFromTheEnvironmentUnlessGiven) {
  write_cube();
  settings.environment["KXI_FMDWRITE_OPTIONS"] = "no_xdr";
  EXPECT_EQ(translate({"job.frd"}).exit_code, 0);
  EXPECT_EQ(read_dataset_file("job.fmd").version_word, 0x03CU);
  EXPECT_EQ(translate({"job.frd", "--option", "single"}).exit_code, 0);
  EXPECT_EQ(read_dataset_file("job.fmd").version_word, 0x33CU);
}

TEST_F(FmdtoolTest, TakesDensityUnitsAndInterfaceFiles) {
  write_cube();
  write_file("ids.txt", "3\n1\n");
  const Outcome outcome = translate({"job.frd", "--density", "2.5", "--units", "kilogram,meter,second,newton",
                                     "--interface-nodes", "ids.txt", "--json"});
  ASSERT_EQ(outcome.exit_code, 0) << outcome.errors;
  const auto json = nlohmann::json::parse(outcome.output);
  EXPECT_NEAR(json["mass"].get<double>(), 2.5, 1e-14);
  EXPECT_EQ(json["units"]["mass"], "KILOGRAM");
  EXPECT_EQ(interface_ids(read_dataset_file("job.fmd")), (std::vector<std::int32_t>{3, 1}));
}

TEST_F(FmdtoolTest, WarnsOfSkippedStaticDatasets) {
  write_cube();
  const std::string dataset =
      frd_head("DISP", {3, 1.0}, 1, 0) + " -1         1 0.00000E+00 0.00000E+00 0.00000E+00\n -3\n";
  write_file("job.frd", exchange(frd_text(cube()), " 9999", dataset + " 9999"));
  const Outcome outcome = translate({"job.frd"});
  EXPECT_EQ(outcome.exit_code, 0);
  EXPECT_EQ(outcome.errors,
            "fmdtool: warning: job.frd:115: skipped 1 dataset(s) that belong to no frequency analysis\n");
}

TEST_F(FmdtoolTest, TellsAllMessagesOfTheToolkitWhenAsked) {
  write_cube();
  const Outcome outcome = translate({"job.frd", "--verbose"});
  EXPECT_EQ(outcome.exit_code, 0);
  EXPECT_TRUE(contains(outcome.errors, "fmdtool: Trans Mode info: Modes: 2 Nodes: 8\n")) << outcome.errors;
}

TEST_F(FmdtoolTest, DrawsProgressOnATerminalOnly) {
  const std::vector<std::string> arguments = {bracket + "bracket_fixed.frd.gz", "-o", "b.fmd"};
  EXPECT_EQ(translate(arguments).errors, "");
  settings.errors_to_terminal = true;
  const Outcome outcome = translate(arguments);
  EXPECT_EQ(outcome.exit_code, 0);
  EXPECT_TRUE(contains(outcome.errors, "\rReading mesh") || contains(outcome.errors, "\r\033[KReading mesh"));
  EXPECT_TRUE(contains(outcome.errors, "Reading modes"));
  EXPECT_TRUE(contains(outcome.errors, "%"));
  EXPECT_TRUE(contains(outcome.errors, "Writing"));
  EXPECT_EQ(outcome.errors.substr(outcome.errors.size() - 4), "\r\033[K");  // cleared at the end
  EXPECT_TRUE(contains(outcome.output, "mass"));
}

TEST_F(FmdtoolTest, ReplacesTheFileThatALinkNames) {
  write_cube();
  write_file("real.fmd", "old");
  std::filesystem::create_symlink("real.fmd", "link.fmd");
  EXPECT_EQ(translate({"job.frd", "-o", "link.fmd"}).exit_code, 0);
  EXPECT_TRUE(std::filesystem::is_symlink("link.fmd"));
  EXPECT_EQ(read_dataset_file("real.fmd").nodes->size(), 8U);
}
