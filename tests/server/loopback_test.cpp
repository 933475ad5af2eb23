// The server on real sockets of the loopback interface.

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <asio/post.hpp>
#include <memory>
#include <thread>
#include <vector>

#include "network/wire/wireFormat.h"
#include "server/gameServer.h"
#include "tests/server/tcpClient.h"

namespace kelvora::server {
namespace {

class Loopback : public testing::Test {
 protected:
  ~Loopback() override {
    asio::post(context_, [this] { server_.stop(); });
    thread_.join();
  }
  std::uint16_t port() const { return port_; }

 private:
  static Options anyPort() {
    Options options;
    options.port = 0;
    return options;
  }

  asio::io_context context_;
  GameServer server_{context_, anyPort(), [](const std::string&) {}};
  const std::uint16_t port_ = server_.port();
  std::thread thread_{[this] { context_.run(); }};
};

TEST_F(Loopback, AFrameInSingleBytesIsReadLikeAWholeOne) {
  Client ann(port());
  for (const char byte : wire::buildFrame(wire::msgLogin, {"Ann", "", "0", "1.2.1"})) ann.write(std::string(1, byte));
  EXPECT_EQ(ann.readUntil(wire::msgLoginAccepted).substr(0, 4),
            "0\x82"
            "1\x82");
}

TEST_F(Loopback, SeveralFramesInOneWriteAreAllHandled) {
  Client ann(port());
  ann.write(wire::buildFrame(wire::msgLogin, {"Ann", "", "0", "1.2.1"}) + wire::buildFrame(wire::msgChat, {"-1", "a"}) +
            wire::buildFrame(wire::msgPositionReport, {"1.5", ".5"}) + "\x80\x90-1\x82");
  EXPECT_EQ(ann.readUntil(wire::msgChat),
            "1\x82"
            "a");
  EXPECT_EQ(ann.readUntil(wire::msgPosition),
            "1\x82"
            "1.5\x82.5");
  ann.write("b\x81");
  EXPECT_EQ(ann.readUntil(wire::msgChat),
            "1\x82"
            "b");
}

TEST_F(Loopback, PlayersSeeEachOtherComeMoveAndLeave) {
  Client ann(port());
  ann.login("Ann");
  ann.readUntil(wire::msgLoginAccepted);
  {
    Client bob(port());
    bob.login("Bob");
    EXPECT_EQ(bob.readUntil(wire::msgPlayerJoined).substr(0, 8),
              "1\x82"
              "0\x82"
              "Ann\x82");
    EXPECT_EQ(ann.readUntil(wire::msgPlayerJoined).substr(0, 8),
              "2\x82"
              "1\x82"
              "Bob\x82");
    bob.say(wire::msgPositionReport, {"10", "20"});
    EXPECT_EQ(ann.readUntil(wire::msgPosition),
              "2\x82"
              "10\x82"
              "20");
    EXPECT_EQ(bob.readUntil(wire::msgPosition),
              "2\x82"
              "10\x82"
              "20");
  }
  EXPECT_EQ(ann.readUntil(wire::msgPlayerLeft), "2");
}

TEST_F(Loopback, ARefusedClientGetsTheReasonAndThenTheEnd) {
  Client ann(port());
  ann.login("Ann", "0.9");
  ann.write(wire::buildFrame(wire::msgChat, {"-1", std::string(4000, 'x')}));
  EXPECT_NE(ann.readUntil(wire::msgLoginDenied).find("1.2.1"), std::string::npos);
  EXPECT_TRUE(ann.isCutOff());
}

TEST_F(Loopback, AFloodIsThinnedOutAndTheServerStaysThere) {
  Client ann(port());
  Client bob(port());
  ann.login("Ann");
  bob.login("Bob");
  bob.readUntil(wire::msgLoginAccepted);
  std::string flood;
  for (int i = 0; i < 20'000; ++i) flood += wire::buildFrame(wire::msgPositionReport, {"1", "2"});
  ann.write(flood);
  ann.say(wire::msgChat, {"-1", "end"});
  bob.readUntil(wire::msgChat);
  EXPECT_GE(bob.skipped, 50);
  EXPECT_LT(bob.skipped, 5'000) << "a burst, and a hundred for each second that this took";
}

TEST_F(Loopback, EarlyHangUpsDisturbNobody) {
  Client ann(port());
  ann.login("Ann");
  ann.readUntil(wire::msgLoginAccepted);
  { const Client silent(port()); }
  {
    Client half(port());
    half.write(
        "\x80\x87"
        "Ha");
  }
  {
    Client gone(port());
    gone.login("Gone");
  }
  Client reset(port());
  reset.login("Reset");
  reset.reset();
  ann.say(wire::msgChat, {"-1", "still here"});
  EXPECT_EQ(ann.readUntil(wire::msgChat), "1\x82still here");
}

TEST_F(Loopback, WhatIsNoFrameEndsTheConnection) {
  for (const std::string& bytes :
       {std::string("GET / HTTP/1.0\r\n\r\n"), std::string("\x80\x87\x80"), '\x80' + std::string(4097, 'x')}) {
    Client stranger(port());
    stranger.write(bytes);
    EXPECT_EQ(stranger.read(), "");
    EXPECT_TRUE(stranger.isCutOff());
  }
}

TEST_F(Loopback, TheSixtyFifthConnectionIsClosedAtOnce) {
  std::vector<std::unique_ptr<Client>> crowd;
  for (int i = 0; i < 64; ++i) crowd.push_back(std::make_unique<Client>(port()));
  Client oneTooMany(port());
  EXPECT_TRUE(oneTooMany.isCutOff());
  crowd[63]->login("Last");
  EXPECT_NE(crowd[63]->readUntil(wire::msgLoginAccepted), "nothing");
}

TEST(ServerConnection, AClientThatNeverReadsIsDropped) {
  asio::io_context context;
  asio::ip::tcp::acceptor acceptor(context, {asio::ip::address_v4::loopback(), 0});
  Client silent(acceptor.local_endpoint().port());
  std::string reason;
  const auto connection = std::make_shared<Connection>(
      acceptor.accept(), 1,
      Connection::Handlers{.onFrame = [](ClientId, std::string_view) {},
                           .onClosed = [&](ClientId, const std::string& why) { reason = why; }});
  connection->start();
  // The system's buffers take several mebibytes; 64 are more than they and the queue can hold.
  const std::string frame(1024, 'x');
  for (int i = 0; i < 65'536 && reason.empty(); ++i) {
    connection->send(frame);
    context.poll();
  }
  EXPECT_EQ(reason, "does not read");
  context.run();
}

TEST(ServerProgram, TellsItsPortAndEndsCleanly) {
  for (const int signal : {SIGTERM, SIGINT}) {
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    const pid_t process = ::fork();
    if (process == 0) {
      ::dup2(ends[1], STDOUT_FILENO);
      ::close(ends[0]);
      ::close(STDERR_FILENO);
      ::execl(KELVORA_SERVER_PROGRAM, "kelvora-server", "--port", "0", nullptr);
      ::_exit(127);
    }
    ::close(ends[1]);
    std::string line;
    for (char byte = 0; byte != '\n' && ::read(ends[0], &byte, 1) == 1;) line += byte;
    ASSERT_TRUE(line.starts_with("listening on 127.0.0.1:")) << line;
    {
      Client ann(static_cast<std::uint16_t>(std::stoi(line.substr(line.rfind(':') + 1))));
      ann.login("Ann");
      EXPECT_EQ(ann.readUntil(wire::msgFunds),
                "1\x82"
                "10");
      ::kill(process, signal);
      EXPECT_TRUE(ann.isCutOff());
    }
    int status = 0;
    ASSERT_EQ(::waitpid(process, &status, 0), process);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
    ::close(ends[0]);
  }
}

}  // namespace
}  // namespace kelvora::server
