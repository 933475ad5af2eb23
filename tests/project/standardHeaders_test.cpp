#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "tests/project/tree.h"

namespace {

/// The standard headers that the rules know, each with names for which its users must include it.
const std::map<std::string, std::vector<std::string>> declared = {
    {"algorithm", {"all_of", "any_of", "clamp", "count_if", "fill", "find_if", "max", "min", "none_of", "sort"}},
    {"array", {"array", "to_array"}},
    {"atomic", {"atomic"}},
    {"charconv", {"from_chars", "to_chars"}},
    {"chrono", {"chrono"}},
    {"cmath", {"atan2", "ceil", "cos", "fabs", "floor", "hypot", "lround", "sin", "sqrt"}},
    {"condition_variable", {"condition_variable"}},
    {"cstdint", {"int16_t", "int32_t", "int64_t", "int8_t", "uint16_t", "uint32_t", "uint64_t", "uint8_t"}},
    {"cstdlib", {"abort", "exit", "getenv", "strtol"}},
    {"cstring", {"memchr", "memcpy", "memset", "strerror", "strlen"}},
    {"deque", {"deque"}},
    {"filesystem", {"filesystem"}},
    {"fstream", {"ifstream", "ofstream"}},
    {"functional", {"function"}},
    {"initializer_list", {"initializer_list"}},
    {"iterator", {"back_inserter", "istreambuf_iterator"}},
    {"limits", {"numeric_limits"}},
    {"list", {"list"}},
    {"map", {"map"}},
    {"memory", {"make_shared", "make_unique", "shared_ptr", "unique_ptr", "weak_ptr"}},
    {"mutex", {"lock_guard", "mutex", "scoped_lock", "unique_lock"}},
    {"optional", {"nullopt", "optional"}},
    {"random", {"mt19937", "mt19937_64"}},
    {"set", {"set"}},
    {"span", {"span"}},
    {"string", {"getline", "stoi", "string", "to_string"}},
    {"string_view", {"string_view"}},
    {"system_error", {"errc", "error_code"}},
    {"thread", {"this_thread", "thread"}},
    {"tuple", {"tuple"}},
    {"type_traits", {"conditional_t", "is_same_v", "remove_cvref_t", "underlying_type_t"}},
    {"utility", {"exchange", "forward", "move", "pair", "swap"}},
    {"variant", {"variant"}},
    {"vector", {"vector"}},
};

struct Unit {
  std::set<std::string> headers;  ///< of the project
  std::set<std::string> standardHeaders;
  std::set<std::string> names;  ///< in namespace std
};

bool isWord(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_'; }

void readLine(std::string_view line, Unit& unit) {
  constexpr std::string_view include = "#include ", scope = "std::";
  if (line.starts_with(include)) {
    const std::string name(
        line.substr(include.size() + 1, line.find_first_of(">\"", include.size() + 1) - include.size() - 1));
    (line[include.size()] == '<' ? unit.standardHeaders : unit.headers).insert(name);
    return;
  }
  line = line.substr(0, line.find("//"));
  for (std::size_t at = line.find(scope); at != std::string_view::npos; at = line.find(scope, at + 1)) {
    const auto name = line.substr(at + scope.size());
    unit.names.emplace(name.begin(), std::ranges::find_if_not(name, isWord));
  }
}

std::map<std::string, Unit> readUnits() {
  std::map<std::string, Unit> units;
  for (const auto& file : tree::files({".h", ".cpp"})) {
    if (tree::startsWith(file.path, "tests/") || tree::startsWith(file.path, "bench/")) continue;
    Unit& unit = units[file.path];
    std::string_view rest = file.text;
    while (!rest.empty()) {
      const std::size_t end = std::min(rest.find('\n'), rest.size() - 1);
      readLine(rest.substr(0, end), unit);
      rest.remove_prefix(end + 1);
    }
  }
  return units;
}

/// Adds the standard headers that a file includes, and those of the project's headers that it includes.
void collect(const std::map<std::string, Unit>& units, const std::string& path, std::set<std::string>& visited,
             std::set<std::string>& found) {
  const auto unit = units.find(path);
  if (unit == units.end() || !visited.insert(path).second) return;
  found.insert(unit->second.standardHeaders.begin(), unit->second.standardHeaders.end());
  for (const auto& header : unit->second.headers) collect(units, header, visited, found);
}

// Other standard libraries include fewer of each other's headers, and builds that combine sources don't notice a
// missing one.
TEST(StandardHeaders, AreIncludedWhereTheirNamesAreUsed) {
  std::map<std::string, std::string> headerOf;
  for (const auto& [header, names] : declared) {
    for (const auto& name : names) headerOf[name] = header;
  }
  const auto units = readUnits();
  std::size_t checked = 0;
  for (const auto& [path, unit] : units) {
    std::set<std::string> visited, included;
    collect(units, path, visited, included);
    for (const auto& name : unit.names) {
      const auto header = headerOf.find(name);
      if (header == headerOf.end()) continue;
      EXPECT_TRUE(included.contains(header->second))
          << path << " uses std::" << name << " without <" << header->second << ">";
      ++checked;
    }
  }
  EXPECT_GT(checked, 1000U);
}

}  // namespace
