#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "tests/project/tree.h"

namespace {

using Table = std::map<std::string, std::set<std::string>>;

/// The table of permitted includes in docs/architecture.md: for each room, the other rooms in its row.
Table readTable() {
  const std::string document = tree::text("docs/architecture.md");
  const std::string heading = "| room | may include |\n| --- | --- |\n";
  Table table;
  std::size_t row = document.find(heading);
  if (row == std::string::npos) return table;
  row += heading.size();
  while (document.compare(row, 1, "|") == 0) {
    const std::size_t end = document.find('\n', row);
    const std::string line = document.substr(row, end - row);
    static const std::regex name("`([^`]+)`");
    std::vector<std::string> names;
    for (std::sregex_iterator match(line.begin(), line.end(), name), last; match != last; ++match) {
      names.push_back((*match)[1]);
    }
    if (!names.empty()) table[names.front()] = {names.begin() + 1, names.end()};
    row = end + 1;
  }
  return table;
}

const Table& mayInclude() {
  static const Table table = readTable();
  return table;
}

const std::set<std::string> outsideTheRooms = {"tests", "bench", "tools", "assets", "docs", "cmake", "packaging"};

std::string folderOf(const std::string& path) {
  const auto slash = path.rfind('/');
  return slash == std::string::npos ? "" : path.substr(0, slash);
}

bool isInARoom(const tree::File& file) { return !outsideTheRooms.contains(file.path.substr(0, file.path.find('/'))); }

std::vector<std::string> includes(const tree::File& file, const std::string& pattern) {
  static const std::string prefix = R"((?:^|\n)[ \t]*#[ \t]*include[ \t]*)";
  const std::regex expression(prefix + pattern);
  std::vector<std::string> found;
  for (std::sregex_iterator match(file.text.begin(), file.text.end(), expression), end; match != end; ++match) {
    found.push_back((*match)[1]);
  }
  return found;
}

const std::vector<tree::File>& sources() {
  static const std::vector<tree::File> files = tree::files({".h", ".cpp"});
  return files;
}

TEST(Includes, TheTableListsEveryFolderWithSources) {
  std::set<std::string> folders;
  for (const auto& file : sources()) {
    if (isInARoom(file)) folders.insert(folderOf(file.path));
  }
  std::set<std::string> rooms;
  for (const auto& [room, others] : mayInclude()) rooms.insert(room);
  EXPECT_EQ(rooms, folders);
}

TEST(Includes, StayWithinTheTable) {
  int checked = 0;
  for (const auto& file : sources()) {
    const std::string room = folderOf(file.path);
    if (!mayInclude().contains(room)) continue;
    for (const auto& header : includes(file, R"re("([^"\n]+)")re")) {
      const std::string other = folderOf(header);
      EXPECT_TRUE(other == room || mayInclude().at(room).contains(other)) << file.path << " includes " << header;
      ++checked;
    }
  }
  EXPECT_GT(checked, 100);
}

/// The file a header comes from: CMake makes generated/x.h from cmake/x.h.in.
std::string originOf(const std::string& header) {
  const std::string generated = "generated/";
  return tree::startsWith(header, generated) ? "cmake/" + header.substr(generated.size()) + ".in" : header;
}

TEST(Includes, UseEveryEntryOfTheTable) {
  Table unused = mayInclude();
  for (const auto& file : sources()) {
    const auto row = unused.find(folderOf(file.path));
    if (row == unused.end()) continue;
    for (const auto& header : includes(file, R"re("([^"\n]+)")re")) {
      row->second.erase(folderOf(header));
    }
  }
  for (const auto& [room, others] : unused) {
    for (const auto& other : others) ADD_FAILURE() << room << " does not include " << other;
  }
}

TEST(Includes, AreRootedAtTheSourceFolder) {
  for (const auto& file : sources()) {
    for (const auto& header : includes(file, R"re("([^"\n]+)")re")) {
      EXPECT_FALSE(tree::text(originOf(header)).empty()) << file.path << " includes " << header;
    }
  }
}

TEST(Includes, BenchesAndToolsDoNotUseTests) {
  for (const auto& file : sources()) {
    if (!tree::startsWith(file.path, "bench/") && !tree::startsWith(file.path, "tools/")) continue;
    EXPECT_TRUE(includes(file, R"re("(tests/[^"\n]+)")re").empty()) << file.path;
  }
  for (const auto& file : tree::files({".py", ".txt"})) {
    if (!tree::startsWith(file.path, "bench/") && !tree::startsWith(file.path, "tools/")) continue;
    EXPECT_FALSE(std::regex_search(file.text, std::regex(R"re(["/]tests["/])re"))) << file.path;
  }
}

/// Expects includes that match the pattern in these folders, and nowhere else.
void expectOnlyIn(const std::vector<std::string>& folders, const std::string& pattern) {
  std::size_t found = 0;
  for (const auto& file : sources()) {
    const std::size_t count = includes(file, pattern).size();
    const bool isAllowed = std::ranges::any_of(
        folders, [&](const std::string& folder) { return tree::startsWith(file.path, folder + "/"); });
    EXPECT_TRUE(isAllowed || count == 0) << file.path;
    found += count;
  }
  EXPECT_GT(found, 0U);
}

TEST(Includes, OnlyPlatformQtIncludesQt) {
  expectOnlyIn({"platform/qt", "bench", "tests/platform/qt", "tests/platform/sound", "tests/platform/windowModel"},
               R"re([<"]((?:Q[A-Z]|Qt)[^>"\n]*)[>"])re");
}

TEST(Includes, OnlyPlatformSoundIncludesItsLibraries) {
  expectOnlyIn({"platform/sound", "tests/platform/sound"}, R"re([<"]((?:SDL|mpg123)[^>"\n]*)[>"])re");
}

TEST(Includes, OnlyTheRoomsOfWindowsIncludeItsHeaders) {
  expectOnlyIn(
      {"app/windows", "bench/windows", "platform/sockets", "platform/win32", "server/system", "tests/platform/sockets",
       "tests/server/system/console"},
      R"re([<"]((?:windows|windowsx|winsock2|ws2tcpip|commctrl|mmsystem|shellapi|dwmapi|uxtheme|winhttp)\.h)[>"])re");
}

TEST(Includes, OfHeadersFormNoCycle) {
  std::map<std::string, std::vector<std::string>> graph;
  for (const auto& file : sources()) {
    if (file.path.ends_with(".h")) graph[file.path] = includes(file, R"re("([^"\n]+)")re");
  }
  // A header whose includes have all been removed can be removed itself. The rest forms a cycle.
  bool progress = true;
  while (progress) {
    progress = std::erase_if(graph, [&graph](const auto& entry) {
                 return std::ranges::none_of(entry.second, [&](const auto& other) { return graph.contains(other); });
               }) > 0;
  }
  for (const auto& [header, others] : graph) ADD_FAILURE() << header << " is in a cycle of headers or includes one";
}

}  // namespace
