#include "server/system/passwords.h"

#include <gtest/gtest.h>

namespace kelvora::server {
namespace {

TEST(Passwords, MatchTheirHashOnly) {
  const std::string hash = hashOf("open-sesame");
  EXPECT_EQ(hash.empty(), !canHashPasswords());
  EXPECT_EQ(matches("open-sesame", hash), canHashPasswords());
  EXPECT_EQ(isPasswordHash(hash), canHashPasswords());
  EXPECT_FALSE(matches("open-sesamE", hash));
  EXPECT_FALSE(matches("", hash));
  EXPECT_FALSE(matches(std::string(100'000, 'x'), hash));
  EXPECT_EQ(hash.find("sesame"), std::string::npos);
}

TEST(Passwords, HaveASaltOfTheirOwn) { EXPECT_EQ(hashOf("x") == hashOf("x"), !canHashPasswords()); }

TEST(Passwords, AreNotComparedWithWhatIsNoStrongHash) {
  for (const char* text : {"", "*", "*0", "open-sesame", "$y$", "$1$abc$", "ab0123456789."}) {
    EXPECT_FALSE(isPasswordHash(text)) << text;
    EXPECT_FALSE(matches("", text)) << text;
    EXPECT_FALSE(matches(text, text)) << text;
  }
}

}  // namespace
}  // namespace kelvora::server
