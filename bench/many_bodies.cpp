// A database of many small bodies: listing them, opening one by its qualifiers, storing one more, beside the
// same with fewer bodies.
//
// bench_many_bodies [bodies]
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "support/comparison.h"
#include "support/environment.h"
#include "support/sample_body.h"

namespace {

using fmdbench::require;
using fmdbench::seconds;

constexpr int kNodes = 4;
constexpr int kModes = 2;

// The records of a stored body.
struct Stored {
  std::vector<std::vector<int>> records;
  int trailer[7] = {};
};

std::string label(int number) {
  char text[16];
  std::snprintf(text, sizeof text, "body %05d", number);
  return text;
}

double store(FmdBody* body, std::string master, int number) {
  std::string qualifiers = "SELABEL='" + label(number) + "'";
  return seconds(
      [&] { require(FMD_write_DB(body, master.data(), qualifiers.data()) == 1, "a body is stored"); });
}

Stored read_stored(std::string master) {
  Stored stored;
  FmdStream stream{};
  int mark = 0;
  stream.Block = DB_OpenDatablk(master.data(), 1, &mark);
  require(stream.Block != 0, "the datablock opens");
  do {
    std::vector<int> record;
    int word = 0;
    while (DB_ReadINTs(stream, &word, 1) == 1) record.push_back(word);
    if (!record.empty()) stored.records.push_back(record);
  } while (DB_SkipRecord(stream) == 1);
  stored.trailer[0] = stream.Block;
  require(DB_ReadTrailer(stored.trailer) == 1, "the datablock has a trailer");
  DB_CloseDatablk(stream.Block);
  return stored;
}

// Copies of a stored body under labels of their own, in one commit.
double fill(std::string master, Stored stored, int from, int to) {
  FmdBody* const nobody = FMD_Create(1, 1);
  const double time = seconds([&] {
    require(DB_StartWrite(nobody, master.data()) == 1, "writing begins");
    for (int number = from; number < to; ++number) {
      std::string qualifiers = "SELABEL='" + label(number) + "'";
      FmdStream stream{};
      stream.Block = DB_CreateFMDblk(qualifiers.data());
      require(stream.Block != 0, "a datablock is made");
      for (const std::vector<int>& record : stored.records) {
        DB_WriteINTs(stream, record.data(), static_cast<int>(record.size()));
        DB_WriteEOR(stream);
      }
      stored.trailer[0] = stream.Block;
      DB_WriteTrailer(stored.trailer);
      DB_CloseDatablk(stream.Block);
    }
    require(DB_TermWrite(nobody, master.data()) == 1, "writing ends");
  });
  FMD_UnLink(nobody);
  return time;
}

double list(std::string master, int bodies) {
  DB_ResetBrowser();
  return seconds([&] {
    require(DB_BodyCount(master.data()) == bodies, "all bodies are listed");
    char row[256];
    for (int index = 1; index <= bodies; ++index)
      require(DB_GetBodyInfo(master.data(), index, row) == 1, "a body has a row");
  });
}

// As a host does that knows the qualifiers: through the list to the index, and opens that.
double open_by_qualifiers(std::string master, const std::string& wanted, int bodies) {
  DB_ResetBrowser();
  const std::string start = "SELABEL='" + wanted + "',";
  return seconds([&] {
    char row[256];
    require(DB_BodyCount(master.data()) == bodies, "all bodies are listed");
    int index = 1;
    while (index <= bodies && (DB_GetBodyInfo(master.data(), index, row) != 1 ||
                               std::strncmp(row, start.c_str(), start.size()) != 0))
      ++index;
    FmdBody* const body = FMD_CreateFromFMD(master.data(), index);
    require(body != nullptr && FMD_NodeCount(body) == kNodes, "the body opens");
    FMD_UnLink(body);
  });
}

struct Database {
  std::string master;
  int bodies;
};

Database make_database(const fmdbench::Environment& environment, FmdBody* body, int bodies) {
  const Database database{environment.path("many" + std::to_string(bodies) + ".MASTER"), bodies};
  store(body, database.master, 0);
  const Stored stored = read_stored(database.master);
  const double filling = fill(database.master, stored, 1, bodies);
  std::printf("%-45s %6d bodies %9.3f ms each\n", "store in one session of writing", bodies,
              filling * 1e3 / bodies);
  return database;
}

// n log n, and a quarter for memory that is farther away.
double most_growth(const Database& few, const Database& many) {
  return 1.25 * many.bodies * std::log(many.bodies) / (few.bodies * std::log(few.bodies));
}

void compare(const Database& few, const Database& many, FmdBody* body) {
  constexpr int kRounds = 15;
  const double most = most_growth(few, many);
  std::printf("job       %d bodies; peer: the same with %d bodies\n", many.bodies, few.bodies);
  const auto report = [&](const char* name, double (*job)(const Database&, FmdBody*)) {
    fmdbench::report_time(name,
                          fmdbench::compare(
                              kRounds, [&] { return job(few, body); }, [&] { return job(many, body); }),
                          most);
  };
  report("list all", [](const Database& of, FmdBody*) { return list(of.master, of.bodies); });
  report("list, and open one by its qualifiers", [](const Database& of, FmdBody*) {
    return open_by_qualifiers(of.master, label(of.bodies * 2 / 3), of.bodies);
  });
  report("store one in a commit of its own",
         [](const Database& of, FmdBody* one) { return store(one, of.master, of.bodies / 3); });
}

}  // namespace

int main(int argc, char** argv) {
  const int most = fmdbench::argument(argc, argv, 1, 10000);
  fmdbench::print_environment();
  const fmdbench::Environment environment;
  FmdBody* const body = fmdbench::make_body(kNodes, kModes);
  const Database eighth = make_database(environment, body, most / 8);
  const Database half = make_database(environment, body, most / 2);
  const Database whole = make_database(environment, body, most);
  compare(half, whole, body);
  compare(eighth, whole, body);
  FMD_UnLink(body);
  return 0;
}
