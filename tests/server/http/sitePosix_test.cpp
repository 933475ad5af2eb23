// Features of files that Windows lacks: links without an administrator, replacing an open file, permissions of other
// users.

#include <unistd.h>

#include "tests/server/http/siteTest.h"

namespace kelvora::server {
namespace {

TEST_F(SiteTest, FollowsALinkThatStaysInside) {
  fs::create_symlink(folder / "index.html", folder / "start.html");
  EXPECT_EQ(bodyOf(ask(Site(folder), "/start.html")), "<p>");
}

TEST_F(SiteTest, FollowsNoLinkThatLeadsElsewhere) {
  fs::create_symlink(root / "secret.txt", folder / "link.txt");
  fs::create_directory_symlink(root, folder / "up");
  fs::create_symlink("loop.txt", folder / "loop.txt");
  write("site/js/only.gz", "z");
  fs::create_symlink(folder / "js/only.gz", folder / "compressed.txt");
  const Site site(folder);
  for (const char* path : {"/link.txt", "/up/secret.txt", "/loop.txt", "/compressed.txt"}) {
    EXPECT_FALSE(site.answer(get(path)).has_value()) << path;
  }
}

TEST_F(SiteTest, AFileThatBecomesALinkElsewhereIsNotServed) {
  const Site site(folder);
  EXPECT_TRUE(site.answer(get("/js/game.wasm")).has_value());
  fs::remove(folder / "js/game.wasm");
  fs::create_symlink(root / "secret.txt", folder / "js/game.wasm");
  EXPECT_FALSE(site.answer(get("/js/game.wasm")).has_value());
}

TEST_F(SiteTest, AnAnswerUnderWayKeepsTheFileThatWasReplaced) {
  const HttpAnswer answer = ask(Site(folder), "/js/game.wasm");
  write("new.wasm", "new");
  fs::rename(root / "new.wasm", folder / "js/game.wasm");
  EXPECT_EQ(bodyOf(answer), std::string(40'000, 'w'));
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

}  // namespace
}  // namespace kelvora::server
