#include "server/net/errorText.h"

#include <gtest/gtest.h>

#include <boost/asio/error.hpp>

namespace kelvora::server {
namespace {

TEST(ErrorText, SocketErrorsHaveTheSameWordsOnEverySystem) {
  EXPECT_EQ(errorText(asio::error::address_in_use), "Address already in use");
  EXPECT_EQ(errorText(asio::error::connection_reset), "Connection reset by peer");
  EXPECT_EQ(errorText(asio::error::timed_out), "Connection timed out");
  EXPECT_EQ(errorText(asio::error::access_denied), "Permission denied");
}

TEST(ErrorText, OtherErrorsKeepTheirOwnWords) { EXPECT_EQ(errorText(asio::error::eof), "End of file"); }

}  // namespace
}  // namespace kelvora::server
