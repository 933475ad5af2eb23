#include <gtest/gtest.h>

#include <map>
#include <regex>
#include <set>
#include <string>

#include "tests/project/tree.h"

// An intentional quirk has an entry in docs/quirks.md, a comment at its site, and a test with the number in its name.
namespace {

struct Entry {
  int count = 0;
  std::string body;
};

/// All matches of an expression's first group in a text.
std::multiset<std::string> matches(const std::string& text, const char* pattern) {
  const std::regex expression(pattern);
  std::multiset<std::string> found;
  for (std::sregex_iterator match(text.begin(), text.end(), expression), end; match != end; ++match) {
    found.insert((*match)[1]);
  }
  return found;
}

/// The entries of the registry by number.
const std::map<std::string, Entry>& registry() {
  static const std::map<std::string, Entry> entries = [] {
    const std::string document = tree::text("docs/quirks.md");
    const std::regex heading(R"((?:^|\n)## Q-(\d{3}) \S[^\n]*)");
    std::map<std::string, Entry> found;
    for (std::sregex_iterator match(document.begin(), document.end(), heading), end; match != end; ++match) {
      const std::string rest = match->suffix();
      Entry& entry = found[(*match)[1]];
      ++entry.count;
      entry.body = rest.substr(0, rest.find("\n## "));
    }
    return found;
  }();
  return entries;
}

/// The numbers of the quirks marked by a comment in the sources.
std::set<std::string> markedSites() {
  std::set<std::string> numbers;
  for (const auto& file : tree::files({".h", ".cpp"})) {
    if (tree::startsWith(file.path, "tests/")) continue;
    const auto found = matches(file.text, R"(// Quirk Q-(\d{3}):)");
    numbers.insert(found.begin(), found.end());
  }
  return numbers;
}

/// "Suite.Name" for every C++ test, and the name of every Python test method.
std::set<std::string> testNames() {
  const std::regex definition(R"(\bTEST(?:_F|_P)?\(\s*(\w+)\s*,\s*(\w+)\s*\))");
  std::set<std::string> names;
  for (const auto& file : tree::files({".cpp", ".py"})) {
    if (!tree::startsWith(file.path, "tests/")) continue;
    for (std::sregex_iterator match(file.text.begin(), file.text.end(), definition), end; match != end; ++match) {
      names.insert((*match)[1].str() + "." + (*match)[2].str());
    }
    for (const auto& name : matches(file.text, R"(\n\s*def (test_\w+)\()")) names.insert(name);
  }
  return names;
}

/// The numbers of the quirks in test names.
std::set<std::string> testedNumbers() {
  std::set<std::string> numbers;
  for (const auto& name : testNames()) {
    const auto found = matches(name, R"([Qq](\d{3})(?!\d))");
    numbers.insert(found.begin(), found.end());
  }
  return numbers;
}

TEST(Quirks, HaveOneEntryEach) {
  EXPECT_FALSE(registry().empty());
  for (const auto& [number, entry] : registry()) EXPECT_EQ(entry.count, 1) << "Q-" << number;
}

TEST(Quirks, InTheRegistryAreMarkedInTheSources) {
  const auto sites = markedSites();
  for (const auto& [number, entry] : registry()) EXPECT_TRUE(sites.contains(number)) << "Q-" << number;
}

TEST(Quirks, InTheRegistryAreTested) {
  const auto tested = testedNumbers();
  for (const auto& [number, entry] : registry()) EXPECT_TRUE(tested.contains(number)) << "Q-" << number;
}

TEST(Quirks, MarkedInTheSourcesAreInTheRegistry) {
  for (const auto& number : markedSites()) EXPECT_TRUE(registry().contains(number)) << "Q-" << number;
}

TEST(Quirks, NamedByATestAreInTheRegistry) {
  for (const auto& number : testedNumbers()) EXPECT_TRUE(registry().contains(number)) << "Q-" << number;
}

TEST(Quirks, AreMarkedInOneSpelling) {
  for (const auto& file : tree::files({".h", ".cpp"})) {
    if (tree::startsWith(file.path, "tests/")) continue;
    EXPECT_EQ(matches(file.text, R"(([Qq]uirk Q))").size(), matches(file.text, R"((// Quirk Q-\d{3}:))").size())
        << file.path;
  }
}

TEST(Quirks, DescribeSymptomMechanismAndTest) {
  const auto names = testNames();
  for (const auto& [number, entry] : registry()) {
    for (const char* part : {"**Seen:** ", "**Mechanism:** ", "**Test:** "}) {
      EXPECT_NE(entry.body.find(part), std::string::npos) << "Q-" << number << " lacks " << part;
    }
    const std::string tests = entry.body.substr(std::min(entry.body.find("**Test:** "), entry.body.size()));
    const auto named = matches(tests, R"((\w+\.\w+|test_\w+))");
    EXPECT_FALSE(named.empty()) << "Q-" << number << " names no test";
    for (const auto& name : named) EXPECT_TRUE(names.contains(name)) << "Q-" << number << " names " << name;
  }
}

}  // namespace
