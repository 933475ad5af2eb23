// The server on real loopback sockets.

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <boost/asio/post.hpp>
#include <chrono>
#include <memory>
#include <thread>
#include <vector>

#include "generated/version.h"
#include "server/net/gameServer.h"
#include "tests/server/net/tcpClient.h"

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
    options.rules.speedFactor = 0;
    return options;
  }

  asio::io_context context_;
  GameServer server_{context_, anyPort(), [](const std::string&) {}};
  const std::uint16_t port_ = server_.port();
  std::thread thread_{[this] { context_.run(); }};
};

TEST_F(Loopback, FrameSentByteByByteIsReadLikeAWholeOne) {
  Client ann(port());
  for (const char byte : frameOf(wire::msgLogin, {"Ann", "", "0", KELVORA_VERSION})) ann.write(std::string(1, byte));
  EXPECT_EQ(ann.readUntil(wire::msgLoginAccepted).substr(0, 4),
            "0\x82"
            "1\x82");
}

TEST_F(Loopback, SeveralFramesInOneWriteAreAllHandled) {
  Client ann(port());
  ann.write(frameOf(wire::msgLogin, {"Ann", "", "0", KELVORA_VERSION}) + frameOf(wire::msgChat, {"-1", "a"}) +
            frameOf(wire::msgPositionReport, {"1.5", ".5"}) + "\x80\x90-1\x82");
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

TEST_F(Loopback, PlayersSeeEachOtherJoinMoveAndLeave) {
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

TEST_F(Loopback, RefusedClientGetsTheReasonAndIsDisconnected) {
  Client ann(port());
  ann.login("Ann", "0.9");
  ann.write(frameOf(wire::msgChat, {"-1", std::string(4000, 'x')}));
  EXPECT_NE(ann.readUntil(wire::msgLoginDenied).find(KELVORA_VERSION), std::string::npos);
  EXPECT_TRUE(ann.isCutOff());
}

// The bytes 128 to 130, which players can type as a euro sign, paste, and type as a low quotation mark.
TEST_F(Loopback, ADelimiterInANameIsRefusedWithAReason) {
  for (const char* name : {"A\x80nn", "A\x81nn", "A\x82nn", "\x80\x80", "\x82\x82\x82", "\x80\x87"}) {
    Client ann(port());
    ann.login(name);
    EXPECT_NE(ann.readUntil(wire::msgLoginDenied).find("euro sign"), std::string::npos) << name;
    EXPECT_TRUE(ann.isCutOff());
  }
}

TEST_F(Loopback, FloodIsThrottledAndTheServerKeepsRunning) {
  Client ann(port());
  Client bob(port());
  ann.login("Ann");
  bob.login("Bob");
  bob.readUntil(wire::msgLoginAccepted);
  std::string flood;
  for (int i = 0; i < 8'000; ++i) flood += frameOf(wire::msgPositionReport, {"1", "2"});
  ann.write(flood);
  ann.say(wire::msgChat, {"-1", "end"});
  bob.readUntil(wire::msgChat);
  EXPECT_GE(bob.skipped, 50);
  EXPECT_LT(bob.skipped, 2'000) << "a burst, and a hundred for each second that this took";
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

TEST_F(Loopback, AnInvalidFrameEndsTheConnection) {
  for (const std::string& bytes :
       {std::string("GET / HTTP/1.0\r\n\r\n"), std::string("\x80\x90\x80"), '\x80' + std::string(4097, 'x')}) {
    Client stranger(port());
    stranger.write(bytes);
    EXPECT_EQ(stranger.read(), "");
    EXPECT_TRUE(stranger.isCutOff());
  }
}

TEST(ServerConnection, AClientThatNeverReadsIsDropped) {
  asio::io_context context;
  Acceptor acceptor(context, {asio::ip::address_v4::loopback(), 0});
  Client silent(acceptor.local_endpoint().port());
  std::string reason;
  const auto connection = std::make_shared<Connection>(
      acceptor.accept(), 1,
      Connection::Handlers{.onGame = [](ClientId) {},
                           .onFrame = [](ClientId, std::string_view) {},
                           .onRequest = [](ClientId, const HttpRequest&) { return HttpAnswer{}; },
                           .onClosed = [&](ClientId, const std::string& why) { reason = why; }});
  connection->start();
  // The system's buffers take several mebibytes; 64 are more than they and the queue can hold.
  const std::string frame(1024, 'x');
  for (int i = 0; i < 65'536 && reason.empty(); ++i) {
    connection->send(frame);
    context.poll();
  }
  EXPECT_EQ(reason, "stopped reading");
  context.run();
}

/// The program itself, on free ports.
class Program {
 public:
  explicit Program(std::vector<std::string> arguments) {
    EXPECT_EQ(::pipe(ends_), 0);
    process_ = ::fork();
    if (process_ == 0) {
      ::dup2(ends_[1], STDOUT_FILENO);
      ::close(ends_[0]);
      ::close(STDERR_FILENO);
      std::vector<char*> words = {const_cast<char*>("kelvora-server")};
      for (std::string& argument : arguments) words.push_back(argument.data());
      words.push_back(nullptr);
      ::execv(KELVORA_SERVER_PROGRAM, words.data());
      ::_exit(127);
    }
    ::close(ends_[1]);
  }
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;
  ~Program() { ::close(ends_[0]); }

  std::string line() {
    std::string text;
    for (char byte = 0; byte != '\n' && ::read(ends_[0], &byte, 1) == 1;) text += byte;
    return text;
  }
  /// The port in the next line, which must announce it.
  std::uint16_t port() {
    const std::string text = line();
    EXPECT_TRUE(text.starts_with("listening on 127.0.0.1:")) << text;
    return static_cast<std::uint16_t>(std::stoi(text.substr(text.rfind(':') + 1)));
  }
  void signal(int number) const { ::kill(process_, number); }
  /// Its exit status once it has ended; -1 if it didn't end by itself.
  int status() const {
    int status = 0;
    EXPECT_EQ(::waitpid(process_, &status, 0), process_);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

 private:
  int ends_[2] = {};
  pid_t process_ = 0;
};

TEST(ServerProgram, PrintsItsPortAndSaysGoodbyeWhenItStops) {
  for (const int signal : {SIGTERM, SIGINT}) {
    Program program({"--port", "0"});
    {
      Client ann(program.port());
      ann.login("Ann");
      EXPECT_EQ(ann.readUntil(wire::msgFunds),
                "1\x82"
                "10");
      program.signal(signal);
      EXPECT_EQ(ann.readUntil(wire::msgServerText), "The server is shutting down.");
      EXPECT_TRUE(ann.isCutOff());
    }
    EXPECT_EQ(program.status(), 0);
  }
}

TEST(ServerProgram, ConnectionsWithoutALoginGetNoGoodbye) {
  Program program({"--port", "0"});
  {
    Client stranger(program.port());
    stranger.login("Ann", "0.1");  // so that the server has accepted it and it stays connected
    EXPECT_NE(stranger.readUntil(wire::msgLoginDenied), "nothing");
    program.signal(SIGTERM);
    EXPECT_TRUE(stranger.isCutOff());
  }
  EXPECT_EQ(program.status(), 0);
}

TEST(ServerProgram, LingeringClientDelaysTheShutdownByTwoSeconds) {
  Program program({"--port", "0"});
  Client ann(program.port());
  ann.login("Ann");
  ann.readUntil(wire::msgFunds);
  const auto start = std::chrono::steady_clock::now();
  program.signal(SIGTERM);
  EXPECT_EQ(program.status(), 0);
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(1'900));
}

TEST(ServerProgram, TheSecondSignalIsHarmless) {
  Program program({"--port", "0"});
  Client ann(program.port());
  ann.login("Ann");
  ann.readUntil(wire::msgFunds);
  program.signal(SIGTERM);
  EXPECT_EQ(ann.readUntil(wire::msgServerText), "The server is shutting down.");
  program.signal(SIGINT);
  EXPECT_EQ(program.status(), 0);
}

TEST(ServerProgram, ReportsErrorsInItsExitStatus) {
  EXPECT_EQ(Program({"--prot", "1"}).status(), 2);
  EXPECT_EQ(Program({"--config", "/no/such/file"}).status(), 2);
  EXPECT_EQ(Program({"--metrics-for", "games.example"}).status(), 2);
  EXPECT_EQ(Program({"--address", "no.such.address.invalid"}).status(), 1);
  Program help({"--help"});
  EXPECT_EQ(help.line(), "Usage: kelvora-server [options]\n");
  EXPECT_EQ(help.status(), 0);
  Program version({"--version"});
  EXPECT_EQ(version.line(), "kelvora-server " KELVORA_VERSION "\n");
  EXPECT_EQ(version.status(), 0);
}

}  // namespace
}  // namespace kelvora::server
