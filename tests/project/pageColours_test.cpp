#include <gtest/gtest.h>

#include <map>
#include <regex>
#include <string>

#include "platform/windowing/looks.h"
#include "tests/project/tree.h"

namespace {

/// The colour as style sheets write it.
std::string styleText(kelvora::Colour colour) {
  return "rgb(" + std::to_string(colour.red) + " " + std::to_string(colour.green) + " " + std::to_string(colour.blue) +
         ")";
}

TEST(PageColours, AreThoseOfTheDesktopsDialogs) {
  const std::string style = tree::text("platform/web/page/style.css");
  std::map<std::string, std::string> page;
  static const std::regex variable("--([a-z]+): ([^;]+);");
  for (std::sregex_iterator at(style.begin(), style.end(), variable), end; at != end; ++at) page[(*at)[1]] = (*at)[2];
  const auto& looks = kelvora::dialogLooks;
  const std::map<std::string, std::string> desktop = {
      {"ground", styleText(looks.ground)}, {"raised", styleText(looks.raised)}, {"edge", styleText(looks.line)},
      {"field", styleText(looks.field)},   {"menu", styleText(looks.menu)},     {"words", styleText(looks.text)},
      {"quiet", styleText(looks.quiet)},   {"chosen", styleText(looks.chosen)}};
  EXPECT_EQ(page, desktop);
}

}  // namespace
