// What the library that hosts load offers: the ten exports and nothing else.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace {

using ::testing::Contains;
using ::testing::StartsWith;
using ::testing::UnorderedElementsAre;

std::string OutputOf(const std::string& command) {
  struct Closer {
    void operator()(std::FILE* pipe) const { EXPECT_EQ(pclose(pipe), 0); }
  };
  const std::unique_ptr<std::FILE, Closer> pipe(popen(command.c_str(), "r"));
  EXPECT_NE(pipe, nullptr);
  std::string output;
  std::array<char, 4096> part;
  while (pipe && std::fgets(part.data(), static_cast<int>(part.size()), pipe.get()) != nullptr) {
    output += part.data();
  }
  return output;
}

/// The demangled names of the dynamic symbols that the library defines.
std::vector<std::string> DefinedSymbols() {
  std::istringstream lines(
      OutputOf("'" ZT_NM_PROGRAM "' --dynamic --defined-only --demangle --format=posix '" ZT_LIBRARY_FILE "'"));
  std::vector<std::string> symbols;
  // A line ends in type, value and size; a demangled name may hold spaces.
  for (std::string line; std::getline(lines, line);) {
    for (int field = 0; field < 3; ++field) {
      line.erase(std::min(line.size(), line.rfind(' ')));
    }
    symbols.push_back(line);
  }
  return symbols;
}

std::vector<std::string> FunctionNames(const std::vector<std::string>& symbols) {
  std::vector<std::string> names(symbols.size());
  std::transform(symbols.begin(), symbols.end(), names.begin(),
                 [](const std::string& symbol) { return symbol.substr(0, symbol.find('(')); });
  return names;
}

TEST(ExportsTest, ExactlyTheTenExportsAreVisible) {
  EXPECT_THAT(FunctionNames(DefinedSymbols()),
              UnorderedElementsAre("ZtInitEngineCore", "ZtCleanupEngineCore", "ZtGetProcTree", "ZtGetProcTree", "ZtInsertLog",
                                   "ZtCalculateSingleLineScore", "ZtUpdateScore", "ZtSearchSimilarFile", "ZtResetScore",
                                   "ZtGetFinalStateFileByPid"));
}

TEST(ExportsTest, TheExportsTakeTheArgumentsThatHostsPass) {
  const std::vector<std::string> symbols = DefinedSymbols();
  EXPECT_THAT(symbols, Contains("ZtInitEngineCore(std::shared_ptr<void>&, unsigned int)"));
  EXPECT_THAT(symbols, Contains("ZtCleanupEngineCore(std::shared_ptr<void>&)"));
  EXPECT_THAT(symbols, Contains("ZtInsertLog(std::shared_ptr<void>&, _LOG_ITEM*)"));
  EXPECT_THAT(symbols, Contains("ZtCalculateSingleLineScore(std::shared_ptr<void>&, _LOG_ITEM*, int)"));
  EXPECT_THAT(symbols, Contains("ZtUpdateScore(std::shared_ptr<void>&, void*, int)"));
  EXPECT_THAT(symbols, Contains("ZtResetScore(std::shared_ptr<void>&, long, long)"));
  EXPECT_THAT(symbols, Contains("ZtGetProcTree(std::shared_ptr<void>&, void*)"));
  EXPECT_THAT(symbols, Contains(StartsWith("ZtGetProcTree(std::shared_ptr<void>&, void*, std::map<void*, ")));
  EXPECT_THAT(symbols, Contains(StartsWith("ZtSearchSimilarFile(std::shared_ptr<_ZtEngineCore>&, _ZT_PID_ITEM&, std::map<")));
  EXPECT_THAT(symbols, Contains(StartsWith("ZtGetFinalStateFileByPid(std::shared_ptr<void>&, void*, std::map<")));
}

}  // namespace
