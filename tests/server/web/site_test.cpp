#include "server/web/site.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>

namespace kelvora::server {
namespace {

namespace fs = std::filesystem;

class SiteTest : public testing::Test {
 protected:
  SiteTest() {
    std::string name = (fs::temp_directory_path() / "kelvora-site-XXXXXX").string();
    root = ::mkdtemp(name.data());
    write("secret.txt", "secret");
    folder = root / "site";
    write("site/index.html", "<p>");
    write("site/js/game.wasm", std::string(40'000, 'w'));
    write("site/js/game.wasm.gz", "zzz");
  }
  ~SiteTest() override { fs::remove_all(root); }

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
  static std::string header(const HttpAnswer& answer, const std::string& name) {
    for (const std::string& line : answer.headers) {
      if (line.starts_with(name + ": ")) return line.substr(name.size() + 2);
    }
    return {};
  }

  fs::path root;
  fs::path folder;
};

TEST_F(SiteTest, ServesItsFilesWithTheirTypes) {
  const Site site(folder);
  ASSERT_TRUE(site.has("/"));
  EXPECT_EQ(site.answer(get("/")).type, "text/html; charset=utf-8");
  EXPECT_EQ(bodyOf(site.answer(get("/?a=b"))), "<p>");
  const HttpAnswer game = site.answer(get("/js/game.wasm"));
  EXPECT_EQ(game.type, "application/wasm");
  EXPECT_TRUE(game.mayKeepAlive);
  EXPECT_EQ(header(game, "Content-Encoding"), "");
  EXPECT_EQ(bodyOf(game), std::string(40'000, 'w'));
}

TEST_F(SiteTest, NothingOutsideAndNoFolderIsServed) {
  fs::create_symlink(root / "secret.txt", folder / "link.txt");
  fs::create_directory_symlink(root, folder / "up");
  const Site site(folder);
  for (const char* path : {"/js", "/js/", "/../secret.txt", "/js/../index.html", "/link.txt", "/up/secret.txt",
                           "/js/game.wasm.gz", "index.html", "", "/%69ndex.html", "//index.html"}) {
    EXPECT_FALSE(site.has(path)) << path;
  }
}

TEST_F(SiteTest, SendsTheCompressedCopyToThoseWhoTakeIt) {
  const Site site(folder);
  HttpRequest request = get("/js/game.wasm");
  request.acceptsGzip = true;
  const HttpAnswer answer = site.answer(request);
  EXPECT_EQ(header(answer, "Content-Encoding"), "gzip");
  EXPECT_EQ(header(answer, "Vary"), "Accept-Encoding");
  EXPECT_EQ(answer.type, "application/wasm");
  EXPECT_EQ(bodyOf(answer), "zzz");
  HttpRequest page = get("/");
  page.acceptsGzip = true;
  EXPECT_EQ(bodyOf(site.answer(page)), "<p>") << "it has no compressed copy";
}

TEST_F(SiteTest, AKnownCopyIsNotSentAgain) {
  const Site site(folder);
  HttpRequest request = get("/js/game.wasm");
  const std::string tag = header(site.answer(request), "ETag");
  EXPECT_TRUE(tag.starts_with('"') && tag.ends_with('"') && tag.size() > 2) << tag;
  request.ifNoneMatch = tag;
  EXPECT_EQ(site.answer(request).status, 304U);
  EXPECT_EQ(site.answer(request).moreSize, 0U);
  request.acceptsGzip = true;
  EXPECT_EQ(site.answer(request).status, 200U) << "another copy has another tag";
  write("site/js/game.wasm", "new");
  request.acceptsGzip = false;
  EXPECT_EQ(Site(folder).answer(request).status, 200U);
}

TEST_F(SiteTest, AConditionMayListTagsWeakOrNotOrNameAnyCopy) {
  const Site site(folder);
  HttpRequest request = get("/js/game.wasm");
  const std::string tag = header(site.answer(request), "ETag");
  const auto statusFor = [&](const std::string& condition) {
    request.ifNoneMatch = condition;
    return site.answer(request).status;
  };
  for (const std::string& known : {"*" + std::string(), "W/" + tag, "\"a\", " + tag, tag + ",\"a\"",
                                   "\"a,b\",W/\"c\" , W/" + tag, "\"\", " + tag}) {
    EXPECT_EQ(statusFor(known), 304U) << known;
  }
  const std::string bare = tag.substr(1, tag.size() - 2);
  for (const std::string& other :
       {std::string(), std::string("\""), std::string("\"*\""), std::string("W/\"a\", \"b\""), bare, "\"" + bare,
        "\"x" + bare + "\"", "\"a\", " + bare + "\""}) {
    EXPECT_EQ(statusFor(other), 200U) << other;
  }
}

TEST_F(SiteTest, AFileThatHasShrunkIsFilledUp) {
  const Site site(folder);
  const HttpAnswer answer = site.answer(get("/js/game.wasm"));
  write("site/js/game.wasm", "new");
  EXPECT_EQ(bodyOf(answer).size(), 40'000U);
}

TEST_F(SiteTest, AReplacedFileIsServedAsItIsNow) {
  const Site site(folder);
  HttpRequest request = get("/js/game.wasm");
  request.ifNoneMatch = header(site.answer(request), "ETag");
  write("site/js/game.wasm", std::string(50'000, 'v'));
  EXPECT_EQ(site.answer(request).status, 200U);
  EXPECT_EQ(bodyOf(site.answer(request)), std::string(50'000, 'v'));
  fs::remove(folder / "js/game.wasm");
  EXPECT_EQ(site.answer(request).status, 404U);
  fs::create_symlink(root / "secret.txt", folder / "js/game.wasm");
  EXPECT_EQ(site.answer(request).status, 404U);
}

TEST_F(SiteTest, WithoutAFolderItIsEmpty) {
  EXPECT_FALSE(Site().has("/"));
  EXPECT_THROW(Site(root / "nowhere"), fs::filesystem_error);
}

}  // namespace
}  // namespace kelvora::server
