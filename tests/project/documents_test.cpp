// Links and pictures in the documents must exist.

#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
#include <set>
#include <string>

#include "generated/sourceFolder.h"
#include "tests/project/tree.h"

namespace {

namespace fs = std::filesystem;

/// The anchor that a Markdown renderer generates for a heading: letters, digits, `_` and `-` in lower case, blanks as
/// `-`.
std::string anchor(const std::string& heading) {
  std::string result;
  for (const char c : heading) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == ' ') result += '-';
    if (std::isalnum(byte) != 0 || c == '-' || c == '_') result += static_cast<char>(std::tolower(byte));
  }
  return result;
}

std::set<std::string> anchorsIn(const std::string& text) {
  static const std::regex heading("(?:^|\n)#+ ([^\n]*)");
  std::set<std::string> found;
  for (std::sregex_iterator match(text.begin(), text.end(), heading), end; match != end; ++match) {
    found.insert(anchor((*match)[1]));
  }
  return found;
}

/// The problem with a link in a document; empty if its target exists.
std::string complaint(const tree::File& document, const std::string& link) {
  if (link.starts_with("http://") || link.starts_with("https://")) return {};
  const std::size_t hash = std::min(link.find('#'), link.size());
  const std::string name = link.substr(0, hash);
  const fs::path here(document.path);
  const std::string path =
      name.empty() ? document.path : (here.parent_path() / name).lexically_normal().generic_string();
  if (!fs::exists(fs::path(KELVORA_SOURCE_DIR) / path)) return "no file " + path;
  if (hash == link.size()) return {};
  return anchorsIn(tree::text(path)).contains(link.substr(hash + 1)) ? "" : "no heading " + link.substr(hash);
}

TEST(Documents, LinksAndPicturesExist) {
  static const std::regex expression(R"(\]\(([^)\s]+)\))");
  int links = 0;
  for (const auto& document : tree::files({".md"})) {
    for (std::sregex_iterator match(document.text.begin(), document.text.end(), expression), end; match != end;
         ++match) {
      EXPECT_EQ(complaint(document, (*match)[1]), "") << document.path;
      ++links;
    }
  }
  EXPECT_GT(links, 10);
}

TEST(Documents, BrokenLinksAreFound) {
  const tree::File guide{"docs/playing.md", ""};
  EXPECT_EQ(complaint(guide, "../README.md"), "");
  EXPECT_EQ(complaint(guide, "../README.md#controls"), "");
  EXPECT_EQ(complaint(guide, "README.md"), "no file docs/README.md");
  EXPECT_EQ(complaint(guide, "../README.md#mouse-and-keys"), "no heading #mouse-and-keys");
}

}  // namespace
