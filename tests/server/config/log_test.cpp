#include "server/config/log.h"

#include <gtest/gtest.h>

#include <sstream>

namespace kelvora::server {
namespace {

constexpr std::time_t moment = 1'000'000'000;  // 2001-09-09, 01:46:40 in Greenwich

TEST(ServerLog, LineFollowsTheTimeIfRequested) {
  std::ostringstream stamped;
  Log(stamped, true).write("Ann left", 0, moment);
  EXPECT_EQ(stamped.str(), "2001-09-09T01:46:40Z Ann left\n");
  std::ostringstream plain;
  Log(plain, false).write("Ann left", 0, moment);
  EXPECT_EQ(plain.str(), "Ann left\n");
}

TEST(ServerLog, ControlCharactersAreReplaced) {
  std::ostringstream out;
  Log(out, false).write(std::string("a\nb\r\x1B[2J\0c\x7F\x80\xFF ~", 15), 0, moment);
  EXPECT_EQ(out.str(), "a?b??[2J?c??? ~\n");
}

TEST(ServerLog, AFloodOfLinesIsCutAndCounted) {
  std::ostringstream out;
  Log log(out, false);
  for (int i = 0; i < 1'000; ++i) log.write("x", 10'000, moment);
  EXPECT_EQ(out.str().size(), 200U * 2);
  out.str("");
  log.write("x", 10'050, moment);  // 1/20 of a second later, one more line is allowed
  EXPECT_EQ(out.str(), "800 lines dropped\nx\n");
  out.str("");
  log.write("y", 10'100, moment);
  EXPECT_EQ(out.str(), "y\n");
}

TEST(ServerLog, ALineThatMustAppearDoesInAFlood) {
  std::ostringstream out;
  Log log(out, false);
  for (int i = 0; i < 1'000; ++i) log.write("x", 10'000, moment);
  out.str("");
  log.writeAlways("kicked", moment);
  EXPECT_EQ(out.str(), "kicked\n");
  out.str("");
  log.write("x", 10'050, moment);
  EXPECT_EQ(out.str(), "800 lines dropped\nx\n") << "and costs other lines nothing";
}

/// A full disk.
class FullDisk : public std::stringbuf {
 public:
  bool isFull = true;

 protected:
  int_type overflow(int_type byte) override { return isFull ? traits_type::eof() : std::stringbuf::overflow(byte); }
  std::streamsize xsputn(const char* text, std::streamsize size) override {
    return isFull ? 0 : std::stringbuf::xsputn(text, size);
  }
};

TEST(ServerLog, ContinuesAfterAFullDisk) {
  FullDisk disk;
  std::ostream out(&disk);
  Log log(out, true);
  log.write("lost", 0, moment);
  EXPECT_EQ(disk.str(), "");
  disk.isFull = false;
  log.write("kept", 0, moment);
  EXPECT_EQ(disk.str(), "2001-09-09T01:46:40Z kept\n");
}

}  // namespace
}  // namespace kelvora::server
