// In backticks, the documents and the comments of headers may only name what exists.

#include <gtest/gtest.h>

#include <cctype>
#include <filesystem>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "generated/sourceFolder.h"
#include "tests/project/tree.h"

namespace {

namespace fs = std::filesystem;
using Words = std::set<std::string, std::less<>>;

bool isWordCharacter(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_'; }
bool beginsWord(char c) { return isWordCharacter(c) && std::isdigit(static_cast<unsigned char>(c)) == 0; }

std::vector<std::string> wordsOf(std::string_view text) {
  std::vector<std::string> words;
  for (std::size_t i = 0; i < text.size();) {
    std::size_t end = i;
    while (end < text.size() && isWordCharacter(text[end])) ++end;
    if (end > i && beginsWord(text[i])) words.emplace_back(text.substr(i, end - i));
    i = end + 1;
  }
  return words;
}

/// Each line with the start of its comment; without a comment, the line's length.
template <class Visitor>
void forEachLine(const std::string& text, std::string_view mark, Visitor visit) {
  std::string_view rest = text;
  while (!rest.empty()) {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(line.size() + 1, rest.size()));
    std::size_t comment = line.find(mark);
    if (comment > 0 && comment != std::string_view::npos && line[comment - 1] == ':') {  // a URL
      comment = std::string_view::npos;
    }
    visit(line, std::min(comment, line.size()));
  }
}

/// Every word of the sources without comments, and of the file names.
const Words& sourceWords() {
  static const Words words = [] {
    Words found;
    const auto add = [&found](std::string_view text) {
      for (std::string& word : wordsOf(text)) found.insert(std::move(word));
    };
    for (const auto& file : tree::files({".h", ".cpp", ".py", ".sh", ".txt", ".cmake", ".json", ".in", ""})) {
      const bool isCpp = file.path.ends_with(".h") || file.path.ends_with(".cpp");
      add(file.path);
      forEachLine(file.text, isCpp ? "//" : "# ",
                  [&](std::string_view line, std::size_t comment) { add(line.substr(0, comment)); });
    }
    return found;
  }();
  return words;
}

/// The quotations in backticks in a line. Skips a document's code blocks.
std::vector<std::string> quotations(const std::string& text) {
  std::vector<std::string> found;
  bool isBlock = false;
  forEachLine(text, "\n", [&](std::string_view line, std::size_t) {
    const bool isFence = line.find("```") != std::string_view::npos;
    if (isFence) isBlock = !isBlock;
    if (isFence || isBlock) return;
    for (std::size_t begin = line.find('`'); begin != std::string_view::npos;) {
      const std::size_t end = line.find('`', begin + 1);
      if (end == std::string_view::npos) break;
      found.emplace_back(line.substr(begin + 1, end - begin - 1));
      begin = line.find('`', end + 1);
    }
  });
  return found;
}

/// The names in a quotation that is a plain or qualified identifier or a call of one; none for any other quotation.
std::vector<std::string> identifiers(std::string_view text) {
  if (text.ends_with(')')) text = text.substr(0, text.find('('));
  std::size_t expected = 0;  // where the next name must begin
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (isWordCharacter(text[i])) {
      if (i == expected && !beginsWord(text[i])) return {};
      continue;
    }
    if (i == expected) return {};
    if (text.substr(i, 2) == "::")
      ++i;
    else if (text[i] != '.')
      return {};
    expected = i + 1;
  }
  return expected < text.size() ? wordsOf(text) : std::vector<std::string>{};
}

/// True for a path of the project: it starts with one of its folders and contains only characters of paths.
bool isPath(std::string_view text) {
  const auto isPathCharacter = [](char c) {
    return isWordCharacter(c) || c == '/' || c == '.' || c == '-' || c == '@';
  };
  const std::size_t slash = text.find('/');
  return slash != std::string_view::npos && slash > 0 && std::ranges::all_of(text, isPathCharacter) &&
         fs::is_directory(fs::path(KELVORA_SOURCE_DIR) / text.substr(0, slash)) && !text.starts_with("build");
}

/// The problem with a quotation; empty if there is none.
std::string complaint(const std::string& quotation) {
  static const Words programs = {"nohup", "perf"};  // of the system
  if (isPath(quotation)) {
    return fs::exists(fs::path(KELVORA_SOURCE_DIR) / quotation) ? "" : "no file " + quotation;
  }
  for (const std::string& name : identifiers(quotation)) {
    if (!sourceWords().contains(name) && !programs.contains(name)) return "no " + name + " in the sources";
  }
  return "";
}

TEST(Identifiers, InTheDocumentsExist) {
  int names = 0;
  for (const auto& document : tree::files({".md"})) {
    if (document.path.find('/') != std::string::npos && !tree::startsWith(document.path, "docs/")) continue;
    for (const std::string& quotation : quotations(document.text)) {
      EXPECT_EQ(complaint(quotation), "") << document.path << ": `" << quotation << "`";
      names += identifiers(quotation).empty() ? 0 : 1;
    }
  }
  EXPECT_GT(names, 200);
}

TEST(Identifiers, InTheCommentsOfHeadersExist) {
  int names = 0;
  for (const auto& header : tree::files({".h"})) {
    std::string comments;
    forEachLine(header.text, "//", [&](std::string_view line, std::size_t comment) {
      comments.append(line.substr(comment)).append("\n");
    });
    for (const std::string& quotation : quotations(comments)) {
      EXPECT_EQ(complaint(quotation), "") << header.path << ": `" << quotation << "`";
      names += identifiers(quotation).empty() ? 0 : 1;
    }
  }
  EXPECT_GT(names, 50);
}

TEST(Identifiers, ThatAreMissingAreFound) {
  const std::string missing = std::string("wasNever") + "Written";
  EXPECT_EQ(complaint(missing), "no " + missing + " in the sources");
  EXPECT_EQ(complaint(missing + "()"), "no " + missing + " in the sources");
  EXPECT_EQ(complaint("Surface::" + missing), "no " + missing + " in the sources");
  EXPECT_EQ(complaint("Surface::Line(x1, y1, x2, y2)"), "");
  EXPECT_EQ(complaint("raster/surface.h"), "");
  EXPECT_EQ(complaint("raster/" + missing + ".h"), "no file raster/" + missing + ".h");
  EXPECT_EQ(complaint("--" + missing), "") << "no identifier";
  EXPECT_EQ(quotations("a `b` c\n```\n`d`\n```\n`e` `f"), (std::vector<std::string>{"b", "e"}));
  // Words that only comments contain don't count: this one is orphaned.
  EXPECT_EQ(complaint(std::string("orph") + "aned"), std::string("no orph") + "aned in the sources");
}

}  // namespace
