#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "server/http/site.h"
#include "tests/support/temporaryFolder.h"

namespace kelvora::server {

namespace fs = std::filesystem;

/// A folder with a small page, and a secret beside it.
class SiteTest : public testing::Test {
 protected:
  SiteTest() {
    write("secret.txt", "secret");
    write("site/index.html", "<p>");
    write("site/js/game.wasm", std::string(40'000, 'w'));
    write("site/js/game.wasm.gz", "zzz");
  }

  void write(const std::string& path, const std::string& text) const {
    fs::create_directories((root / path).parent_path());
    std::ofstream(root / path, std::ios::binary) << text;
  }
  static HttpRequest get(const std::string& target) { return {.method = "GET", .target = target}; }
  static std::string bodyOf(const HttpAnswer& answer) {
    std::string all = answer.body;
    for (std::string piece = answer.more(7'000); !piece.empty(); piece = answer.more(7'000)) {
      EXPECT_LE(piece.size(), 7'000U);
      all += piece;
    }
    EXPECT_EQ(all.size(), answer.body.size() + answer.moreSize);
    return all;
  }
  /// The answer, which there must be.
  static HttpAnswer ask(const Site& site, const HttpRequest& request) {
    auto answer = site.answer(request);
    EXPECT_TRUE(answer.has_value()) << request.target;
    return answer.value_or(HttpAnswer{.more = [](std::size_t) { return std::string(); }});
  }
  static HttpAnswer ask(const Site& site, const std::string& target) { return ask(site, get(target)); }
  static std::string header(const HttpAnswer& answer, const std::string& name) {
    for (const std::string& line : answer.headers) {
      if (line.starts_with(name + ": ")) return line.substr(name.size() + 2);
    }
    return {};
  }

  const TemporaryFolder parent;
  const fs::path root = parent.path();
  const fs::path folder = root / "site";
};

}  // namespace kelvora::server
