// Two types of the same name in one program would share the functions that the compiler writes for them, such as
// destructors. No tool reports that.

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <map>
#include <regex>
#include <string>
#include <string_view>
#include <vector>

#include "tests/project/tree.h"

namespace {

/// The source without comments, literals and preprocessor directives.
std::string codeOf(std::string_view text) {
  std::string code;
  bool isLineStart = true;
  for (std::size_t i = 0; i < text.size();) {
    const char c = text[i];
    const bool isSeparator = c == '\'' && i > 0 && std::isxdigit(static_cast<unsigned char>(text[i - 1])) != 0;
    if (text.substr(i, 2) == "//" || (isLineStart && c == '#')) {
      i = std::min(text.find('\n', i), text.size());
    } else if (text.substr(i, 2) == "/*") {
      i = std::min(text.find("*/", i), text.size() - 2) + 2;
    } else if (c == '"' || (c == '\'' && !isSeparator)) {
      for (++i; i < text.size() && text[i] != c; ++i) i += text[i] == '\\' ? 1U : 0U;
      ++i;
    } else {
      if (c == '\n') isLineStart = true;
      if (std::isspace(static_cast<unsigned char>(c)) == 0) isLineStart = false;
      code += c;
      ++i;
    }
  }
  return code;
}

/// The types that a header defines in namespaces, with these in front. Leaves out nested types. Adds "unbalanced" if
/// the code isn't understood.
std::vector<std::string> typesIn(const std::string& header) {
  static const std::regex space(R"(^\s*(?:inline\s+)?namespace\s+([\w:]+)\s*$)");
  static const std::regex type(
      R"(^\s*(?:template\s*<[^{]*>\s*)?(?:struct|class|union|enum(?:\s+class)?)\s+(?:\[\[.*\]\]\s*)?(\w+)[^(]*$)");
  std::vector<std::string> types;
  std::vector<std::string> scopes;  // the names of the open namespaces, then an empty one for each other brace
  std::string statement;
  for (const char c : codeOf(header)) {
    if (c != '{' && c != '}' && c != ';') {
      statement += c;
      continue;
    }
    if (c == '{') {
      std::smatch match;
      const bool isInNamespace = scopes.empty() || !scopes.back().empty();
      if (isInNamespace && std::regex_match(statement, match, space)) {
        scopes.push_back(match[1].str() + "::");
      } else {
        if (isInNamespace && std::regex_match(statement, match, type)) {
          types.emplace_back();
          for (const std::string& scope : scopes) types.back() += scope;
          types.back() += match[1];
        }
        scopes.emplace_back();
      }
    } else if (c == '}') {
      if (scopes.empty()) return {"unbalanced"};
      scopes.pop_back();
    }
    statement.clear();
  }
  if (!scopes.empty()) types.emplace_back("unbalanced");
  return types;
}

/// The programs that a header can be part of: those of one system, those of one folder of tests, or "" for all.
std::string programsOf(const std::string& path) {
  for (const char* const backend : {"platform/qt/", "platform/win32/", "platform/web/"}) {
    if (tree::startsWith(path, backend)) return backend;
  }
  const bool isOneTest = tree::startsWith(path, "tests/") && !tree::startsWith(path, "tests/support/");
  return isOneTest ? path.substr(0, path.rfind('/')) : "";
}

bool canMeet(const std::string& one, const std::string& other) {
  const std::string programs = programsOf(one);
  return programs.empty() || programsOf(other).empty() || programs == programsOf(other);
}

TEST(TypeNames, AreDefinedByOneHeaderOfEachProgram) {
  std::map<std::string, std::vector<std::string>> headers;  // of each type
  for (const auto& header : tree::files({".h"})) {
    for (const std::string& type : typesIn(header.text)) {
      EXPECT_NE(type, "unbalanced") << header.path;
      for (const std::string& other : headers[type]) {
        if (other == header.path) continue;  // where systems differ
        EXPECT_FALSE(canMeet(header.path, other)) << type << " is in " << other << " and in " << header.path;
      }
      headers[type].push_back(header.path);
    }
  }
  EXPECT_GT(headers.size(), 200U);
}

TEST(TypeNames, AreFoundInHeaders) {
  using Types = std::vector<std::string>;
  EXPECT_EQ(typesIn("namespace a {\nstruct B {\n  class Nested {};\n};\nenum class C : char { One };\nclass Known;\n}"),
            (Types{"a::B", "a::C"}));
  EXPECT_EQ(typesIn("namespace a::b {\ntemplate <class T>\nclass List final : public Base<T> {};\n}"),
            Types{"a::b::List"});
  EXPECT_EQ(
      typesIn("// struct A {\n#define B struct B {\nconst char* c = \"struct C {\\\"\";\nint n = 1'000; struct D {};"),
      Types{"D"});
  EXPECT_EQ(typesIn("inline void f(struct tm& when) {\n  struct Local {};\n}\nstruct E g() { return {}; }"), Types{});
  EXPECT_EQ(typesIn("struct A { } }"), Types{"unbalanced"});
}

TEST(TypeNames, MayRepeatInHeadersThatNeverMeet) {
  EXPECT_FALSE(canMeet("platform/qt/qtForm.h", "platform/win32/formPeer.h"));
  EXPECT_FALSE(canMeet("tests/match/replay.h", "tests/platform/sound/recording.h"));
  EXPECT_TRUE(canMeet("platform/win32/textLines.h", "raster/textLine.h"));
  EXPECT_TRUE(canMeet("tests/match/replay.h", "tests/support/temporaryFolder.h"));
  EXPECT_TRUE(canMeet("platform/qt/qtForm.h", "platform/qt/qtMenu.h"));
}

}  // namespace
