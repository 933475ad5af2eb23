#include "server/system/webRequest.h"

#include <gtest/gtest.h>

#include <thread>

namespace kelvora::server {
namespace {

TEST(WebRequests, ToARefusedPortEndWithTheirThread) {
  // Nothing listens at this port, which is reserved.
  const WebRequest request{.method = "POST",
                           .url = "http://127.0.0.1:1/",
                           .json = "{}",
                           .agent = "Kelvora",
                           .timeLimit = 30'000,
                           .usesProxy = false};
  for (int i = 0; i < 500; ++i) {
    // A system thread that reports to the request later would find no memory there.
    std::thread([&] {
      WebReply reply;
      EXPECT_TRUE(sendRequest(request, reply).isRefused());
      EXPECT_EQ(reply.status, 0);
    }).join();
  }
}

}  // namespace
}  // namespace kelvora::server
