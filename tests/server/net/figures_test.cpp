// The pages /metrics and /healthz of a running server: what they count, and who may read them.

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "tests/server/net/runningServer.h"
#include "tests/server/net/tcpClient.h"
#include "tests/server/net/webAnswer.h"
#include "tests/server/net/webSocketClient.h"

namespace kelvora::server {
namespace {

std::string request(const std::string& headers = {}, const std::string& path = "/metrics") {
  return "GET " + path + " HTTP/1.0\r\n" + headers + "\r\n";
}

class Metrics : public testing::Test {
 protected:
  static Options options(const std::string& metricsFor = {}, const std::string& proxy = {}) {
    Options options;
    options.metricsFor = metricsFor;
    options.trustedProxy = proxy;
    options.rules.speedFactor = 0;
    return options;
  }
  static std::string page(const RunningServer& server) { return ask(server.port(), request()).body; }
  /// The number behind "name " or "name{labels} "; -1 if there is none.
  static double valueIn(const std::string& page, const std::string& name) {
    const std::size_t at = page.find("\n" + name + " ");
    return at == std::string::npos ? -1 : std::stod(page.substr(at + name.size() + 2));
  }
  double value(const std::string& name) const { return valueIn(page(server), name); }
  static std::string message(const char* family, const char* direction, const char* name) {
    return std::string("kelvora_message") + family + "{direction=\"" + direction + "\",message=\"" + name + "\"}";
  }
  /// Waits up to a minute until the number is what it must be.
  void expectSoon(const std::string& name, double expected) const {
    const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    double last = value(name);
    while (last != expected && std::chrono::steady_clock::now() < end) last = value(name);
    EXPECT_EQ(last, expected) << name;
  }

  const RunningServer server{options()};
};

TEST_F(Metrics, CountPlayersAndTheirMessages) {
  Client ann(server.port(), 20);
  ann.login("Ann");
  ASSERT_NE(ann.readUntil(wire::msgLoginAccepted), "nothing");
  {
    Client bob(server.port(), 21);
    bob.login("Bob");
    ASSERT_NE(bob.readUntil(wire::msgLoginAccepted), "nothing");
    EXPECT_EQ(value("kelvora_players"), 2);
    EXPECT_EQ(value("kelvora_bots"), 0);
  }
  ASSERT_NE(ann.readUntil(wire::msgPlayerLeft), "nothing");
  for (const char* x : {"50000", "50001", "50002"}) {
    ann.say(wire::msgPositionReport, {x, "60000"});
    ASSERT_NE(ann.readUntil(wire::msgPosition), "nothing");
  }
  ann.say(wire::msgChat, {"-1", "hi"});
  ASSERT_NE(ann.readUntil(wire::msgChat), "nothing");
  ann.write("\x80\xF0?\x81");
  const std::string all = page(server);
  EXPECT_EQ(valueIn(all, "kelvora_players"), 1);
  EXPECT_EQ(valueIn(all, "kelvora_build_info{version=\"" KELVORA_VERSION "\"}"), 1);
  EXPECT_EQ(valueIn(all, message("s_total", "in", "msgLogin")), 2);
  EXPECT_EQ(valueIn(all, message("s_total", "in", "msgPositionReport")), 3);
  EXPECT_EQ(valueIn(all, message("s_total", "out", "msgPosition")), 3);
  EXPECT_EQ(valueIn(all, message("_bytes_total", "in", "msgPositionReport")), 3 * 14)
      << "id, two coordinates, and three delimiters";
  EXPECT_EQ(valueIn(all, message("_bytes_total", "out", "msgPosition")), 3 * 16) << "a node and a delimiter more";
  EXPECT_EQ(valueIn(all, message("s_total", "in", "msgChat")), 1);
  EXPECT_EQ(valueIn(all, message("s_total", "out", "msgChat")), 1);
  EXPECT_EQ(valueIn(all, message("s_total", "out", "msgPlayerLeft")), 1);
  EXPECT_EQ(valueIn(all, message("s_total", "in", "msgPosition")), -1) << "goes out only";
  EXPECT_EQ(valueIn(all, "kelvora_relay_seconds_count"), 3);
  EXPECT_GT(valueIn(all, "kelvora_relay_seconds_sum"), 0);
  EXPECT_GT(valueIn(all, "kelvora_uptime_seconds"), 0);
  expectSoon(message("s_total", "in", "unknown"), 1);
}

TEST_F(Metrics, CountTicksAndWaits) {
  const std::string before = page(server);
  const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
  std::string after = before;
  while (valueIn(after, "kelvora_tick_seconds_count") < valueIn(before, "kelvora_tick_seconds_count") + 2) {
    ASSERT_LT(std::chrono::steady_clock::now(), end);
    after = page(server);
  }
  EXPECT_EQ(valueIn(after, "kelvora_wait_seconds_count"), valueIn(after, "kelvora_tick_seconds_count"));
  EXPECT_GT(valueIn(after, "kelvora_tick_seconds_sum"), valueIn(before, "kelvora_tick_seconds_sum"));
  EXPECT_GT(valueIn(after, "kelvora_wait_seconds_sum"), valueIn(before, "kelvora_wait_seconds_sum"));
}

TEST_F(Metrics, CountWhatLimitsDrop) {
  Client ann(server.port(), 20);
  ann.login("Ann");
  ASSERT_NE(ann.readUntil(wire::msgLoginAccepted), "nothing");
  // More than any limit allows in the time that this takes.
  for (int i = 0; i < 400; ++i) ann.say(wire::msgPositionReport, {"50000", "60000"});
  for (int i = 0; i < 400; ++i) ann.say(wire::msgSpawnRequest, {});
  // 16 are in, 32 wait, and the last one is refused at once. Those who wait may enter or be refused after 10 s.
  std::vector<std::unique_ptr<TcpClient>> crowd;
  for (int i = 0; i < 16 + 32 + 1; ++i) crowd.push_back(std::make_unique<TcpClient>(server.port(), 30));
  EXPECT_TRUE(crowd.back()->isCutOff());
  EXPECT_EQ(value("kelvora_dropped_total{what=\"connection of a busy address\"}"), 1);
  crowd.clear();
  expectSoon(message("s_total", "in", "msgSpawnRequest"), 400);
  const std::string all = page(server);
  const double passed = valueIn(all, message("s_total", "out", "msgPosition"));
  EXPECT_EQ(valueIn(all, "kelvora_dropped_total{what=\"position\"}"), 400 - passed);
  EXPECT_LT(passed, 400);
  const double answered = valueIn(all, message("s_total", "out", "msgSpawnDenied"));
  EXPECT_EQ(valueIn(all, "kelvora_dropped_total{what=\"request\"}"), 400 - answered);
  EXPECT_LT(answered, 400);
  EXPECT_EQ(valueIn(all, "kelvora_dropped_total{what=\"connection to a full server\"}"), 0);
  EXPECT_EQ(valueIn(all, "kelvora_dropped_total{what=\"late login\"}"), 0);
}

TEST_F(Metrics, CountConnectionsAndTheirEnds) {
  TcpClient hostile(server.port(), 20);
  hostile.write("?");
  EXPECT_TRUE(hostile.isCutOff());
  TcpClient silent(server.port(), 21);
  expectSoon("kelvora_closed_connections_total{reason=\"sent invalid data\"}", 1);
  expectSoon("kelvora_connections", 2);
}

TEST_F(Metrics, CountHttpAnswers) {
  EXPECT_EQ(ask(server.port(), request({}, "/nowhere")).code(), 404);
  EXPECT_EQ(ask(server.port(), "HEAD /metrics HTTP/1.0\r\n\r\n").code(), 200);
  const double size = static_cast<double>(ask(server.port(), request({}, "/healthz")).body.size());
  const std::string all = page(server);
  EXPECT_EQ(valueIn(all, "kelvora_http_answers_total{status=\"404\"}"), 1);
  EXPECT_EQ(valueIn(all, "kelvora_http_answers_total{status=\"200\"}"), 2) << "this page isn't counted yet";
  EXPECT_EQ(valueIn(all, "kelvora_http_answer_bytes_total{status=\"200\"}"), size);
}

TEST_F(Metrics, FitIntoOnePieceOfAnAnswer) {
  const WebAnswer answer = ask(server.port(), request());
  EXPECT_NE(answer.head.find("Content-Type: text/plain; version=0.0.4; charset=utf-8\r\n"), std::string::npos);
  EXPECT_LT(answer.body.size(), 16U << 10);
  EXPECT_EQ(ask(server.port(), "POST /metrics HTTP/1.0\r\n\r\n").code(), 405);
}

TEST_F(Metrics, AreForThisMachineOnly) {
  EXPECT_EQ(ask(server.port(), request(), 77).code(), 200) << "every loopback address is this machine";
  for (const char* header : {"X-Forwarded-For: 127.0.0.1\r\n", "Forwarded: for=127.0.0.1\r\n", "Via: 1.1 proxy\r\n"}) {
    EXPECT_EQ(ask(server.port(), request(header)).code(), 403) << header;
  }
  WebSocketClient page(server.port());
  ASSERT_TRUE(page.open());
  page.send(request());
  EXPECT_NE(page.readUntil("not for your address").find("HTTP/1.1 403 "), std::string::npos)
      << "any page could ask this way";
}

TEST_F(Metrics, AClientOfATrustedProxyIsNotOnThisMachine) {
  const RunningServer proxied(options({}, "127.0.0.5"));
  const std::string line = "PROXY TCP4 127.0.0.1 127.0.0.1 50000 2010\r\n";
  EXPECT_EQ(ask(proxied.port(), request("X-Forwarded-For: 127.0.0.1\r\n"), 5).code(), 403);
  EXPECT_EQ(ask(proxied.port(), line + request(), 5).code(), 403);
  EXPECT_EQ(ask(proxied.port(), request(), 5).code(), 400) << "the proxy must name its client";
  EXPECT_EQ(ask(proxied.port(), request(), 6).code(), 200);
}

TEST_F(Metrics, AreForListedAddressesAsWell) {
  const RunningServer listed(options("192.0.2.1, 2001:db8::1", "127.0.0.5"));
  EXPECT_EQ(ask(listed.port(), request("X-Forwarded-For: 192.0.2.1\r\n"), 5).code(), 200);
  EXPECT_EQ(ask(listed.port(), request("X-Forwarded-For: 192.0.2.2\r\n"), 5).code(), 403);
  EXPECT_EQ(ask(listed.port(), request("X-Forwarded-For: 192.0.2.1\r\n"), 6).code(), 403) << "not the proxy";
  EXPECT_EQ(ask(listed.port(), request()).code(), 200) << "this machine";
  const RunningServer open(options("*"));
  EXPECT_EQ(ask(open.port(), request("Via: 1.1 proxy\r\n")).code(), 200);
}

TEST_F(Metrics, AHealthyServerSaysSoToEverybody) {
  for (const char* header : {"", "Via: 1.1 proxy\r\n"}) {
    const WebAnswer answer = ask(server.port(), request(header, "/healthz"));
    EXPECT_EQ(answer.code(), 200);
    EXPECT_EQ(answer.body, "ok\n");
  }
  const RunningServer proxied(options({}, "127.0.0.5"));
  EXPECT_EQ(ask(proxied.port(), request({}, "/healthz"), 5).code(), 200) << "the proxy's own question";
}

}  // namespace
}  // namespace kelvora::server
