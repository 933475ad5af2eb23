#include <gtest/gtest.h>

#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "tests/project/tree.h"

namespace {

/// The permitted includes of each room besides itself: other rooms, or single headers. docs/architecture.md shows the
/// same rows and explains the cycles.
const std::map<std::string, std::set<std::string>> mayInclude = {
    {"base", {}},
    {"protocol", {"base"}},
    {"raster", {"base"}},
    {"platform", {"base", "raster"}},
    {"platform/pictures", {"base", "raster"}},
    {"platform/headless", {"base", "platform", "platform/pictures", "raster"}},
    {"platform/recording", {"base", "platform", "platform/pictures", "raster"}},
    {"platform/sound", {}},
    {"platform/desktop", {"base", "platform", "platform/sound"}},
    {"platform/qt", {"base", "platform", "platform/desktop", "platform/pictures", "raster"}},
    {"platform/win32", {"base", "platform", "platform/desktop", "platform/pictures", "platform/sound", "raster"}},
    {"platform/web", {"base", "platform", "platform/desktop", "platform/pictures", "raster"}},
    {"core", {"audio", "base", "frontend", "particles", "platform", "protocol", "raster", "rendering", "simulation"}},
    {"simulation",
     {"audio", "base", "core", "frontend", "network", "particles", "platform", "protocol", "raster", "store"}},
    {"particles", {"base", "core"}},
    {"network",
     {"audio", "base", "core", "frontend", "particles", "platform", "protocol", "rendering", "simulation", "store"}},
    {"rendering", {"base", "core", "frontend", "particles", "platform", "protocol", "raster", "simulation"}},
    {"store", {"audio", "base", "core", "frontend", "network", "platform", "protocol", "simulation"}},
    {"audio", {"base", "frontend", "platform", "store"}},
    {"frontend", {"audio", "base", "core", "network", "platform", "protocol", "raster", "store"}},
    {"server", {"base", "server/config", "server/net", "server/system", "server/web"}},
    {"server/arena", {"base", "protocol"}},
    {"server/bots", {"base", "protocol", "server/arena"}},
    {"server/system", {}},
    {"server/web", {"base", "server/system"}},
    {"server/lists", {"base", "server/system", "server/web"}},
    {"server/records", {"base", "server/arena", "server/system"}},
    {"server/moderation", {"base", "protocol", "server/arena", "server/bots", "server/records", "server/system"}},
    {"server/config",
     {"base", "protocol", "server/arena", "server/bots", "server/lists", "server/moderation", "server/records",
      "server/system"}},
    {"server/net",
     {"base", "protocol", "server/arena", "server/bots", "server/config", "server/lists", "server/moderation",
      "server/records", "server/system", "server/web"}},
    {"app",
     {"core", "frontend", "platform", "platform/desktop", "platform/pictures", "platform/recording", "platform/web",
      "raster", "rendering"}},
    {"app/windows", {"core", "platform/desktop"}},
};
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

TEST(Includes, EveryFolderWithSourcesIsARoomOfTheTable) {
  for (const auto& file : sources()) {
    EXPECT_TRUE(!isInARoom(file) || mayInclude.contains(folderOf(file.path))) << file.path;
  }
}

TEST(Includes, StayWithinTheTable) {
  int checked = 0;
  for (const auto& file : sources()) {
    const std::string room = folderOf(file.path);
    if (!isInARoom(file) || !mayInclude.contains(room)) continue;
    for (const auto& header : includes(file, R"re("([^"\n]+)")re")) {
      const std::string other = folderOf(header);
      const auto& allowed = mayInclude.at(room);
      EXPECT_TRUE(other == room || allowed.contains(other) || allowed.contains(header))
          << file.path << " includes " << header;
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
  std::map<std::string, std::set<std::string>> unused = mayInclude;
  for (const auto& file : sources()) {
    const auto row = unused.find(folderOf(file.path));
    if (row == unused.end()) continue;
    for (const auto& header : includes(file, R"re("([^"\n]+)")re")) {
      row->second.erase(folderOf(header));
      row->second.erase(header);
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

TEST(Includes, OnlyPlatformQtIncludesQt) {
  for (const auto& file : sources()) {
    bool mayUseToolkit = false;
    for (const char* folder : {"platform/qt/", "platform/sound/", "bench/", "tests/platform/qt/",
                               "tests/platform/sound/", "tests/platform/windows/"}) {
      mayUseToolkit = mayUseToolkit || tree::startsWith(file.path, folder);
    }
    if (mayUseToolkit) continue;
    EXPECT_TRUE(includes(file, R"re([<"]((?:Q[A-Z]|Qt|SDL|mpg123)[^>"\n]*)[>"])re").empty()) << file.path;
  }
}

TEST(Includes, OnlyTheRoomsOfWindowsIncludeItsHeaders) {
  int checked = 0;
  for (const auto& file : sources()) {
    const auto found = includes(
        file,
        R"re([<"]((?:windows|windowsx|winsock2|ws2tcpip|commctrl|mmsystem|shellapi|dwmapi|uxtheme|winhttp)\.h)[>"])re");
    bool isForWindows = false;
    for (const char* folder :
         {"app/windows/", "bench/windows/", "platform/win32/", "server/system/", "tests/platform/win32/"}) {
      isForWindows = isForWindows || tree::startsWith(file.path, folder);
    }
    if (isForWindows) {
      checked += static_cast<int>(found.size());
    } else {
      EXPECT_TRUE(found.empty()) << file.path;
    }
  }
  EXPECT_GT(checked, 0);
}

TEST(Includes, OfHeadersFormNoCycle) {
  std::map<std::string, std::vector<std::string>> graph;
  for (const auto& file : sources()) {
    if (file.path.ends_with(".h")) graph[file.path] = includes(file, R"re("([^"\n]+)")re");
  }
  // A header whose includes have all been removed can be removed itself. What remains forms a cycle.
  bool progress = true;
  while (progress) {
    progress = std::erase_if(graph, [&graph](const auto& entry) {
                 return std::ranges::none_of(entry.second, [&](const auto& other) { return graph.contains(other); });
               }) > 0;
  }
  for (const auto& [header, others] : graph) ADD_FAILURE() << header << " is in a cycle of headers or includes one";
}

TEST(Includes, TableIsInTheArchitecture) {
  const std::string document = tree::text("docs/architecture.md");
  for (const auto& [room, others] : mayInclude) {
    std::string row = "| `" + room + "` |";
    if (others.empty()) {
      row += " nothing |";
    } else {
      std::string list;
      for (const auto& other : others) list += (list.empty() ? " `" : ", `") + other + "`";
      row += list + " |";
    }
    EXPECT_NE(document.find(row), std::string::npos) << row;
  }
}

}  // namespace
