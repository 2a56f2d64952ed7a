#include "tools/fmdtool_database_support.h"

namespace fmdtest {

Outcome FmdtoolDatabaseTest::store(const std::string& database, const std::string& qualifiers,
                                   std::vector<std::string> arguments) const {
  arguments.insert(arguments.begin(), {"store", "calculix", "job.frd", "--database", database});
  if (!qualifiers.empty()) arguments.insert(arguments.end(), {"--qualifiers", qualifiers});
  return run(arguments);
}

void FmdtoolDatabaseTest::expect_stored(const std::string& database, const std::string& qualifiers,
                                        const std::vector<std::string>& arguments) const {
  const Outcome outcome = store(database, qualifiers, arguments);
  EXPECT_EQ(outcome.exit_code, 0) << outcome.errors;
  EXPECT_EQ(outcome.errors, "");
}

std::string FmdtoolDatabaseTest::expect_done(const std::vector<std::string>& arguments) const {
  const Outcome outcome = run(arguments);
  EXPECT_EQ(outcome.exit_code, 0) << outcome.errors << outcome.output;
  EXPECT_EQ(outcome.errors, "");
  return outcome.output;
}

nlohmann::json FmdtoolDatabaseTest::list(const std::string& database) const {
  return nlohmann::json::parse(expect_done({"list", database, "--json"}));
}

void FmdtoolDatabaseTest::store_past_the_program(const char* database, const char* write_options,
                                                 FmdBody* (*make)()) const {
  const MessageLog log;
  const EnvironmentVariable work("KXI_KADCDB_DIR", directory.path().c_str());
  const EnvironmentVariable options("KXI_FMDWRITE_OPTIONS", write_options);
  std::string path = database;
  char qualifiers[] = "SELABEL='odd'";
  EXPECT_EQ(FMD_write_DB(make(), path.data(), qualifiers), 1);
  FMD_Terminate();
}

std::vector<std::string> FmdtoolDatabaseTest::labels(const std::string& database) const {
  std::vector<std::string> found;
  const nlohmann::json listed = list(database);
  for (const auto& body : listed["bodies"]) {
    found.push_back(body["qualifiers"]["SELABEL"].get<std::string>());
  }
  return found;
}

std::string FmdtoolDatabaseTest::without_time(const std::string& path) {
  constexpr std::size_t version = 4;
  constexpr std::size_t title = 4 * 128;
  constexpr std::size_t time = 4 * 32;
  std::string bytes = bytes_of(path);
  EXPECT_GT(bytes.size(), version + title + time) << path;
  if (bytes.size() > version + title + time) bytes.replace(version + title, time, time, ' ');
  return bytes;
}

std::set<std::string> FmdtoolDatabaseTest::made() {
  std::set<std::string> names = files();
  for (const char* name : {"tmp", "job.frd", "job.inp"}) names.erase(name);
  return names;
}

}  // namespace fmdtest
