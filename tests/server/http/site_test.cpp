#include "server/http/site.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>

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

  fs::path root;
  fs::path folder;
};

TEST_F(SiteTest, ServesItsFilesWithTheirTypes) {
  const Site site(folder);
  EXPECT_EQ(ask(site, "/").type, "text/html; charset=utf-8");
  EXPECT_EQ(bodyOf(ask(site, "/?a=b")), "<p>");
  const HttpAnswer game = ask(site, "/js/game.wasm");
  EXPECT_EQ(game.type, "application/wasm");
  EXPECT_TRUE(game.mayKeepAlive);
  EXPECT_EQ(header(game, "Content-Encoding"), "");
  EXPECT_EQ(header(game, "Cache-Control"), "no-cache");
  EXPECT_EQ(bodyOf(game), std::string(40'000, 'w'));
}

TEST_F(SiteTest, NothingOutsideHiddenOrNoFileIsServed) {
  fs::create_symlink(root / "secret.txt", folder / "link.txt");
  fs::create_directory_symlink(root, folder / "up");
  fs::create_symlink("loop.txt", folder / "loop.txt");
  write("site/.hidden", "secret");
  write("site/.git/config", "secret");
  write("site/js/only.gz", "z");
  fs::create_symlink(folder / "js/only.gz", folder / "compressed.txt");
  const Site site(folder);
  for (const char* path : {"/js",
                           "/js/",
                           "/../secret.txt",
                           "/js/../index.html",
                           "/./index.html",
                           "/link.txt",
                           "/up/secret.txt",
                           "/js/game.wasm.gz",
                           "/js/only.gz",
                           "/js/only",
                           "/compressed.txt",
                           "index.html",
                           "",
                           "/%69ndex.html",
                           "//index.html",
                           "/index.html/",
                           "/index.html/x",
                           "/loop.txt",
                           "/.hidden",
                           "/.git/config",
                           "/nothing"}) {
    EXPECT_FALSE(site.answer(get(path)).has_value()) << path;
  }
  const std::string zero("/index.html\0.txt", 16);
  EXPECT_FALSE(site.answer(get(zero)).has_value());
  EXPECT_FALSE(site.answer(get("/" + std::string(4'000, 'x'))).has_value());
}

TEST_F(SiteTest, FollowsALinkThatStaysInside) {
  fs::create_symlink(folder / "index.html", folder / "start.html");
  EXPECT_EQ(bodyOf(ask(Site(folder), "/start.html")), "<p>");
}

TEST_F(SiteTest, SendsTheCompressedCopyToClientsThatAcceptIt) {
  const Site site(folder);
  HttpRequest request = get("/js/game.wasm");
  request.acceptsGzip = true;
  const HttpAnswer answer = ask(site, request);
  EXPECT_EQ(header(answer, "Content-Encoding"), "gzip");
  EXPECT_EQ(header(answer, "Vary"), "Accept-Encoding");
  EXPECT_EQ(answer.type, "application/wasm");
  EXPECT_EQ(bodyOf(answer), "zzz");
  HttpRequest page = get("/");
  page.acceptsGzip = true;
  EXPECT_EQ(bodyOf(ask(site, page)), "<p>") << "it has no compressed copy";
}

TEST_F(SiteTest, AKnownCopyIsNotSentAgain) {
  const Site site(folder);
  HttpRequest request = get("/js/game.wasm");
  const std::string tag = header(ask(site, request), "ETag");
  EXPECT_TRUE(tag.starts_with('"') && tag.ends_with('"') && tag.size() > 2) << tag;
  request.ifNoneMatch = tag;
  EXPECT_EQ(ask(site, request).status, 304U);
  EXPECT_EQ(ask(site, request).moreSize, 0U);
  request.acceptsGzip = true;
  EXPECT_EQ(ask(site, request).status, 200U) << "another copy has another tag";
  write("site/js/game.wasm", "new");
  request.acceptsGzip = false;
  EXPECT_EQ(ask(site, request).status, 200U);
}

TEST_F(SiteTest, AConditionMayListTagsWeakOrNotOrNameAnyCopy) {
  const Site site(folder);
  HttpRequest request = get("/js/game.wasm");
  const std::string tag = header(ask(site, request), "ETag");
  const auto statusFor = [&](const std::string& condition) {
    request.ifNoneMatch = condition;
    return ask(site, request).status;
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

TEST_F(SiteTest, ShrunkFileIsPadded) {
  const HttpAnswer answer = ask(Site(folder), "/js/game.wasm");
  write("site/js/game.wasm", "new");
  EXPECT_EQ(bodyOf(answer).size(), 40'000U);
}

TEST_F(SiteTest, AnAnswerUnderWayKeepsTheFileThatWasReplaced) {
  const HttpAnswer answer = ask(Site(folder), "/js/game.wasm");
  write("new.wasm", "new");
  fs::rename(root / "new.wasm", folder / "js/game.wasm");
  EXPECT_EQ(bodyOf(answer), std::string(40'000, 'w'));
}

TEST_F(SiteTest, FilesAreServedAsTheyAreNow) {
  const Site site(folder);
  HttpRequest request = get("/js/game.wasm");
  request.ifNoneMatch = header(ask(site, request), "ETag");
  write("site/js/game.wasm", std::string(50'000, 'v'));
  EXPECT_EQ(ask(site, request).status, 200U);
  EXPECT_EQ(bodyOf(ask(site, request)), std::string(50'000, 'v'));
  fs::remove(folder / "js/game.wasm");
  EXPECT_FALSE(site.answer(request).has_value());
  fs::create_symlink(root / "secret.txt", folder / "js/game.wasm");
  EXPECT_FALSE(site.answer(request).has_value());
  write("site/js/added.css", "p{}");
  EXPECT_EQ(bodyOf(ask(site, "/js/added.css")), "p{}");
  fs::remove_all(folder);
  EXPECT_FALSE(site.answer(get("/")).has_value());
  write("site/index.html", "<b>");
  EXPECT_EQ(bodyOf(ask(site, "/")), "<b>");
}

TEST_F(SiteTest, AnUnreadableFileIsNotServed) {
  fs::permissions(folder / "index.html", fs::perms::none);
  fs::permissions(root, fs::perms::others_exec, fs::perm_options::add);
  const Site site(folder);
  // The administrator could read it all the same.
  const bool isAdministrator = ::geteuid() == 0;
  ASSERT_TRUE(!isAdministrator || ::seteuid(65'534) == 0);
  const bool isServed = site.answer(get("/")).has_value();
  ASSERT_TRUE(!isAdministrator || ::seteuid(0) == 0);
  EXPECT_FALSE(isServed);
  EXPECT_TRUE(site.answer(get("/js/game.wasm")).has_value());
}

TEST_F(SiteTest, WithoutAFolderItIsEmpty) {
  EXPECT_FALSE(Site().answer(get("/")).has_value());
  for (const char* place : {"nowhere", "secret.txt"}) {
    try {
      const Site site(root / place);
      FAIL() << place;
    } catch (const std::runtime_error& error) {
      EXPECT_NE(std::string(error.what()).find(place), std::string::npos) << error.what();
    }
  }
}

TEST_F(SiteTest, AProgramFindsItsPageBesideItInItsBuildTreeAndInItsInstallation) {
  fs::create_directories(root / "build/release");
  fs::create_directories(root / "usr/games");
  EXPECT_EQ(usualSite(root / "build/release"), "");
  EXPECT_EQ(usualSite(root / "usr/games"), "");
  fs::create_directories(root / "build/web/site");
  fs::create_directories(root / "usr/share/kelvora-server/site");
  EXPECT_EQ(usualSite(root / "build/release"), fs::canonical(root / "build/web/site"));
  EXPECT_EQ(usualSite(root / "usr/games"), fs::canonical(root / "usr/share/kelvora-server/site"));
  fs::create_directory(root / "usr/games/site");
  EXPECT_EQ(usualSite(root / "usr/games"), fs::canonical(root / "usr/games/site"));
}

}  // namespace
}  // namespace kelvora::server
