#include <stdexcept>

#include "tests/server/http/siteTest.h"

namespace kelvora::server {
namespace {

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
  write("site/.hidden", "secret");
  write("site/.git/config", "secret");
  write("site/js/only.gz", "z");
  const Site site(folder);
  for (const char* path : {"/js", "/js/", "/../secret.txt", "/js/../index.html", "/./index.html", "/js/game.wasm.gz",
                           "/js/only.gz", "/js/only", "index.html", "", "/%69ndex.html", "//index.html", "/index.html/",
                           "/index.html/x", "/.hidden", "/.git/config", "/nothing"}) {
    EXPECT_FALSE(site.answer(get(path)).has_value()) << path;
  }
  const std::string zero("/index.html\0.txt", 16);
  EXPECT_FALSE(site.answer(get(zero)).has_value());
  EXPECT_FALSE(site.answer(get("/" + std::string(4'000, 'x'))).has_value());
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

TEST_F(SiteTest, PlayersOfMediaGetParts) {
  write("site/song.mp3", "abcde");
  write("site/empty.mp3", "");
  const Site site(folder);
  EXPECT_EQ(header(ask(site, "/song.mp3"), "Accept-Ranges"), "bytes");
  const auto answerTo = [&](const char* range, HttpRequest request = get("/song.mp3")) {
    request.range = range;
    const HttpAnswer answer = ask(site, request);
    return std::to_string(answer.status) + " " + header(answer, "Content-Range") + " " + bodyOf(answer);
  };
  EXPECT_EQ(answerTo("bytes=0-1"), "206 bytes 0-1/5 ab");
  EXPECT_EQ(answerTo("bytes=1-1"), "206 bytes 1-1/5 b");
  EXPECT_EQ(answerTo("bytes=3-"), "206 bytes 3-4/5 de");
  EXPECT_EQ(answerTo("bytes=4-99"), "206 bytes 4-4/5 e");
  for (const char* other : {"", "bytes", "bytes=", "bytes=-", "bytes=-2", "bytes=5-", "bytes=2-1", "bytes=0-1,3-4",
                            "bytes=a-1", "bytes=0-b", "bytes=+1-2", "bytes=0-99999999999999999999", "lines=0-1"}) {
    EXPECT_EQ(answerTo(other), "200  abcde") << other;
  }
  EXPECT_EQ(answerTo("bytes=0-", get("/empty.mp3")), "200  ");
  HttpRequest compressed = get("/js/game.wasm");
  compressed.acceptsGzip = true;
  EXPECT_EQ(answerTo("bytes=0-1", compressed), "200  zzz");
  EXPECT_EQ(answerTo("bytes=0-1", {.method = "HEAD", .target = "/song.mp3"}), "200  abcde");
}

TEST_F(SiteTest, ShrunkFileIsPadded) {
  const HttpAnswer answer = ask(Site(folder), "/js/game.wasm");
  write("site/js/game.wasm", "new");
  EXPECT_EQ(bodyOf(answer).size(), 40'000U);
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
  write("site/js/added.css", "p{}");
  EXPECT_EQ(bodyOf(ask(site, "/js/added.css")), "p{}");
  fs::remove_all(folder);
  EXPECT_FALSE(site.answer(get("/")).has_value());
  write("site/index.html", "<b>");
  EXPECT_EQ(bodyOf(ask(site, "/")), "<b>");
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
