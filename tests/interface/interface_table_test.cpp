// The interface table of the built library, as a host that loads it at run time sees it.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

namespace {

constexpr std::size_t kEntries = 172;

class InterfaceTable : public ::testing::Test {
 protected:
  void SetUp() override {
    library = dlopen(FMDTOOLKIT_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    populate = reinterpret_cast<int (*)(void**)>(dlsym(library, "PopulateInterface"));
    ASSERT_NE(populate, nullptr);
  }

  void TearDown() override {
    if (library != nullptr) dlclose(library);
  }

  void* library = nullptr;
  int (*populate)(void**) = nullptr;
};

std::vector<std::string> expected_names() {
  std::ifstream list(FMDTOOLKIT_TABLE_LIST);
  std::vector<std::string> names;
  std::string line;
  while (std::getline(list, line)) {
    if (line.empty() || line[0] == '#') continue;
    EXPECT_EQ(line.substr(0, line.find(' ')), std::to_string(names.size()));
    names.push_back(line.substr(line.find(' ') + 1));
  }
  return names;
}

TEST_F(InterfaceTable, HoldsTheFunctionsInTheirOrderAndLeavesTheRest) {
  int marker = 0;
  std::vector<void*> table(kEntries + 1, &marker);
  EXPECT_EQ(populate(table.data()), 1);
  const std::vector<std::string> names = expected_names();
  ASSERT_EQ(names.size(), kEntries);
  std::size_t filled = 0;
  for (std::size_t entry = 0; entry < kEntries; ++entry) {
    // A function that the library does not have yet leaves its entry as an unfilled one.
    void* const function = names[entry] == "-" ? nullptr : dlsym(library, names[entry].c_str());
    EXPECT_EQ(table[entry], function == nullptr ? &marker : function) << entry << ' ' << names[entry];
    filled += function != nullptr;
  }
  EXPECT_EQ(filled, 164U);
  EXPECT_EQ(table[kEntries], &marker);
  for (const std::size_t unfilled : {1, 2, 44, 107, 108, 109, 110, 125}) EXPECT_EQ(names[unfilled], "-");
}

TEST_F(InterfaceTable, FillsTheSameValuesTwice) {
  std::vector<void*> first(kEntries, nullptr);
  std::vector<void*> second(kEntries, nullptr);
  populate(first.data());
  populate(second.data());
  populate(second.data());
  EXPECT_EQ(first, second);
}

}  // namespace
