#include <gtest/gtest.h>

#include <cctype>
#include <regex>
#include <string>
#include <vector>

#include "tests/project/tree.h"

namespace {

/// The words of a list in a file, from after `begin` to the next `end`, without comments.
std::vector<std::string> wordsBetween(const std::string& path, const std::string& begin, char end) {
  const std::string text = tree::text(path);
  const std::size_t start = text.find(begin);
  if (start == std::string::npos) return {};
  const std::string list = std::regex_replace(
      text.substr(start + begin.size(), text.find(end, start) - start - begin.size()), std::regex("//.*"), "");
  static const std::regex word("[A-Za-z]+");
  return {std::sregex_token_iterator(list.begin(), list.end(), word), std::sregex_token_iterator()};
}

// The page sends a kind as its index in the list.
TEST(PageEvents, TheProgramNumbersThemAsThePage) {
  const auto page = wordsBetween("platform/web/page/events.js", "const eventKinds = [", ']');
  auto program = wordsBetween("platform/web/pageEvents.h", "enum class PageEventKind {", '}');
  for (std::string& kind : program) kind[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(kind[0])));
  EXPECT_GT(page.size(), 20U);
  EXPECT_EQ(page, program);
}

}  // namespace
