#include <gtest/gtest.h>

#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "generated/version.h"
#include "tests/project/tree.h"

namespace {

const std::set<std::string> textual = {".h", ".cpp", ".md", ".txt", ".cmake", ".json", ".py", ".sh", ""};

const std::vector<tree::File>& texts() {
  static const std::vector<tree::File> files = [] {
    auto found = tree::files(textual);
    std::erase_if(found, [](const auto& file) { return file.text.find('\0') != std::string::npos; });
    return found;
  }();
  return files;
}

/// The first line, counted from 1, that matches the expression; 0 if none does.
long lineOf(const tree::File& file, const std::regex& expression) {
  std::smatch match;
  if (!std::regex_search(file.text, match, expression)) return 0;
  return 1 + std::count(file.text.begin(), match[0].first, '\n');
}

TEST(Hygiene, NoTodosAreLeft) {
  // Split so that this file doesn't match.
  const std::regex marks(std::string(R"(\b(TO)") + R"(DO|FIX)" + R"(ME)\b)");
  for (const auto& file : texts()) EXPECT_EQ(lineOf(file, marks), 0) << file.path;
}

TEST(Hygiene, NoTestIsDisabled) {
  const std::regex marks(std::string(R"(\b(DIS)") + R"(ABLED_|GTEST_)" + R"(SKIP))");
  for (const auto& file : texts()) EXPECT_EQ(lineOf(file, marks), 0) << file.path;
}

TEST(Hygiene, LinesHaveNoTabsOrTrailingBlanks) {
  const std::regex tab(R"(\t)");
  const std::regex trailing(R"([ \r]\n)");
  for (const auto& file : texts()) {
    EXPECT_EQ(lineOf(file, tab), 0) << file.path;
    EXPECT_EQ(lineOf(file, trailing), 0) << file.path;
  }
}

TEST(Hygiene, TextsBeginWithoutALineBreakAndEndWithOne) {
  for (const auto& file : texts()) {
    if (file.text.empty()) continue;
    EXPECT_FALSE(file.text.starts_with('\n')) << file.path;
    EXPECT_TRUE(file.text.ends_with('\n')) << file.path;
    EXPECT_FALSE(file.text.ends_with("\n\n")) << file.path;
  }
}

TEST(Hygiene, LinesOfPythonHaveAtMost120Columns) {
  for (const auto& file : tree::files({".py"})) {
    std::istringstream lines(file.text);
    for (std::string line; std::getline(lines, line);) EXPECT_LE(line.size(), 120) << file.path << ": " << line;
  }
}

TEST(Hygiene, HeadersStartWithPragmaOnce) {
  for (const auto& file : tree::files({".h"})) EXPECT_TRUE(tree::startsWith(file.text, "#pragma once\n")) << file.path;
}

TEST(Hygiene, NoMachineSpecificPathAppears) {
  const std::regex home(R"(/(home|Users|root|work)/[A-Za-z])");
  for (const auto& file : texts()) EXPECT_EQ(lineOf(file, home), 0) << file.path;
}

TEST(Hygiene, VersionAppearsOnlyInOnePlaceAndTheHistory) {
  const std::regex version("(^|[^0-9.])" + std::regex_replace(KELVORA_VERSION, std::regex(R"(\.)"), R"(\.)") +
                           "(?![0-9]|\\.[0-9])");
  std::set<std::string> found;
  for (const auto& file : texts()) {
    if (lineOf(file, version) != 0) found.insert(file.path);
  }
  found.erase("CHANGELOG.md");  // a version is released under its own heading
  EXPECT_EQ(found, std::set<std::string>{"CMakeLists.txt"});
}

}  // namespace
