// The web server on real sockets of the loopback interface.

#include "server/net/webServer.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>

#include <asio/post.hpp>
#include <fstream>
#include <memory>
#include <system_error>
#include <thread>
#include <vector>

#include "server/net/gameServer.h"
#include "tests/server/net/runningServer.h"
#include "tests/server/net/tcpClient.h"

namespace kelvora::server {
namespace {

std::uint16_t portOf(const std::string& endpoint) {
  return static_cast<std::uint16_t>(std::stoi(endpoint.substr(endpoint.rfind(':') + 1)));
}

/// The two requests, byte by byte as the game writes them.
const std::string updateRequest = "GET http://kelvora.example/games/kelvora/ver.txt HTTP/1.0\r\n\r\n";
std::string listRequest(const std::string& query) {
  return "GET /games/kelvora/gethosts.php?" + query +
         " HTTP/1.1\r\n"
         "Host: kelvora.example\r\n"
         "User-Agent: Mozilla/5.0 (Windows; U; Windows NT 5.1; en-US; rv:1.9.0.3) Gecko/2008092417 Firefox/3.0.3\r\n"
         "Accept: text/html,application/xhtml+xml,application/xml;q=0.9,*/*;q=0.8\r\n"
         "Accept-Language: en-us,en;q=0.5\r\n"
         "Accept-Charset: ISO-8859-1,utf-8;q=0.7,*;q=0.7\r\n"
         "Keep-Alive: 300\r\n"
         "Connection: keep-alive\r\n"
         "\r\n";
}

struct Response {
  std::string status;
  std::string head;
  std::string body;
};

/// What comes for a request up to the end of the connection.
Response ask(std::uint16_t port, const std::string& request) {
  TcpClient client(port);
  client.tryWrite(request);
  const std::string all = client.readToEnd();
  const std::size_t end = all.find("\r\n\r\n");
  if (end == std::string::npos) return {};
  return {all.substr(0, all.find("\r\n")), all.substr(0, end), all.substr(end + 4)};
}

constexpr auto listOfThis = "[192.0.2.7|2010|0|friendly game|3|6]-END-\n";

class WebServerTest : public testing::Test {
 protected:
  WebServer web{"127.0.0.1", 0, "1.2.1"};
  const std::uint16_t port = portOf(web.endpointText());

  WebServerTest() { publish(false, 3); }
  void publish(bool password, std::size_t players) {
    web.publish({.address = "192.0.2.7",
                 .port = 2010,
                 .passwordRequired = password,
                 .notes = "friendly game",
                 .players = players,
                 .maxPlayers = 6});
  }
  std::string list(const std::string& query) { return ask(port, listRequest(query)).body; }
  void expectToBeThere() { EXPECT_EQ(list("version=1.2.1&password=0&full=0&empty=1"), listOfThis); }
};

TEST_F(WebServerTest, AnswersTheUpdateCheckAndCloses) {
  const Response response = ask(port, updateRequest);
  EXPECT_EQ(response.status.substr(8), " 200 OK");
  EXPECT_EQ(response.body, "tvqver:1.2.1\n");
}

TEST_F(WebServerTest, AnswersTheGameFinderAndClosesThoughItAsksForMore) {
  const Response response = ask(port, listRequest("version=1.2.1&password=0&full=0&empty=1"));
  EXPECT_EQ(response.status, "HTTP/1.1 200 OK");
  EXPECT_EQ(response.body, listOfThis);
  EXPECT_EQ(response.head.find('['), std::string::npos) << "the game looks for records in the headers, too";
  EXPECT_NE(response.head.find("Content-Type: text/plain"), std::string::npos);
  EXPECT_NE(response.head.find("Connection: close"), std::string::npos);
}

TEST_F(WebServerTest, ARequestInSingleBytesIsAnsweredToo) {
  TcpClient client(port);
  for (const char byte : updateRequest) client.write(std::string(1, byte));
  EXPECT_TRUE(client.readToEnd().ends_with("\r\n\r\ntvqver:1.2.1\n"));
}

TEST_F(WebServerTest, TheListIsThereInTheAbsoluteFormAndTheFileInTheOther) {
  EXPECT_EQ(ask(port, "GET http://h:81/games/kelvora/gethosts.php?version=1.2.1 HTTP/1.0\r\n\r\n").body, listOfThis);
  EXPECT_EQ(ask(port, "GET /games/kelvora/ver.txt HTTP/1.1\r\nHost: h\r\n\r\n").body, "tvqver:1.2.1\n");
}

TEST_F(WebServerTest, TheQuerySaysWhatIsListed) {
  struct Row {
    bool password;
    std::size_t players;
    const char* query;
    bool shown;
  };
  const Row rows[] = {
      {false, 3, "version=1.2.1&password=0&full=0&empty=0", true},
      {false, 3, "version=1.2.0&password=1&full=1&empty=1", false},
      {false, 3, "password=1&full=1&empty=1", false},
      {false, 3, "", false},
      {true, 3, "version=1.2.1&password=0&full=1&empty=1", false},
      {true, 3, "version=1.2.1&password=1&full=0&empty=0", true},
      {false, 6, "version=1.2.1&password=1&full=0&empty=1", false},
      {false, 6, "version=1.2.1&password=0&full=1&empty=0", true},
      {false, 0, "version=1.2.1&password=1&full=1&empty=0", false},
      {false, 0, "version=1.2.1&password=0&full=0&empty=1", true},
      {true, 6, "version=1.2.1", true},  // only a 0 hides
  };
  for (const Row& row : rows) {
    publish(row.password, row.players);
    EXPECT_EQ(list(row.query).starts_with('['), row.shown)
        << "password " << row.password << ", players " << row.players << ", " << row.query;
  }
}

TEST_F(WebServerTest, NothingElseIsServed) {
  for (const char* path : {"/", "/games/kelvora/", "/games/kelvora/ver.txt/", "/games/kelvora/../kelvora/ver.txt",
                           "/GAMES/KELVORA/VER.TXT", "/../../../../etc/passwd", "http://h"}) {
    const Response response = ask(port, std::string("GET ") + path + " HTTP/1.0\r\n\r\n");
    EXPECT_EQ(response.status.substr(8), " 404 Not Found") << path;
  }
  for (const char* method : {"POST", "PUT", "DELETE", "OPTIONS", "BREW"}) {
    const Response response = ask(port, std::string(method) + " /games/kelvora/ver.txt HTTP/1.0\r\n\r\n");
    EXPECT_EQ(response.status.substr(8, 4), " 405") << method;
    EXPECT_NE(response.head.find("Allow: GET, HEAD"), std::string::npos) << method;
  }
  EXPECT_EQ(ask(port, "HEAD /games/kelvora/ver.txt HTTP/1.0\r\n\r\n").body, "");
}

TEST_F(WebServerTest, BodiesAreNotWaitedFor) {
  for (const char* method : {"POST", "GET"}) {
    const Response response = ask(port, std::string(method) + " /games/kelvora/ver.txt HTTP/1.1\r\nHost: h\r\n" +
                                            "Content-Length: 1000000000\r\n\r\n");
    EXPECT_NE(response.status, "") << method;
  }
  ask(port, "POST / HTTP/1.1\r\nHost: h\r\nContent-Length: 2000\r\n\r\n" + std::string(2'000, 'x'));
  ask(port, "POST / HTTP/1.1\r\nHost: h\r\nTransfer-Encoding: chunked\r\n\r\nFFFFFFFFFFFFFFFF\r\nxxxx");
  expectToBeThere();
}

TEST_F(WebServerTest, GarbageIsTurnedAway) {
  for (const std::string& bytes : std::vector<std::string>{
           "\x80\x87"
           "Ann\x82\x82\x30\x82\x31.2.1\x81\r\n\r\n",
           "x\r\n\r\n",
           "GET\r\n\r\n",
           "GET /games/kelvora/ver.txt\r\n\r\n",
           "GET /games/kelvora/ver.txt HTTP/9.9\r\n\r\n",
           "GET /games/kelvora/ver.txt HTTP/1.1\r\n\r\n",
           "GET /games/kelvora/ver.txt HTTP/1.1\r\nContent-Length: -1\r\nHost: h\r\n\r\n",
           "GET /games/kelvora/gethosts.php?version=%&password=%0&=&&%zz HTTP/1.0\r\n\r\n",
           "GET /games/kelvora/gethosts.php?version=1.2.1%00 HTTP/1.0\r\n\r\n",
           "GET " + std::string(100'000, '/') + " HTTP/1.0\r\n\r\n",
           "GET / HTTP/1.0\r\nA: " + std::string(100'000, 'a') + "\r\n\r\n",
       }) {
    EXPECT_EQ(ask(port, bytes).body.find("192.0.2.7"), std::string::npos) << bytes.substr(0, 60);
    expectToBeThere();
  }
  TcpClient waits(port);  // for what it takes for the rest of the request
  waits.write(std::string(2, '\0') + "\r\n\r\n");
  expectToBeThere();
}

TEST_F(WebServerTest, AnEndlessRequestIsCutOffAndCostsNoMemory) {
  const auto residentPages = [] {
    std::size_t all = 0;
    std::size_t resident = 0;
    std::ifstream("/proc/self/statm") >> all >> resident;
    return resident;
  };
  const std::string block(1 << 20, 'x');
  const std::string headers = [] {
    std::string lines;
    for (int i = 0; i < 50'000; ++i) lines += "a: b\r\n";
    return lines;
  }();
  const std::size_t before = residentPages();
  for (const std::string& start :
       {std::string(), std::string("GET / HTTP/1.0\r\n"), std::string("POST / HTTP/1.0\r\n")}) {
    for (const std::string& more : {block, headers}) {
      TcpClient client(port);
      client.write(start);
      int taken = 0;
      while (taken < 64 && client.tryWrite(more)) ++taken;
      EXPECT_LT(taken, 64);
    }
  }
  EXPECT_LT(residentPages(), before + 8'192) << "pages of 4 KiB";
  expectToBeThere();
}

TEST_F(WebServerTest, AConnectionHasFiveSecondsInAll) {
  TcpClient slow(port);
  slow.write("GET /games/kelvora/ver.txt HT");
  expectToBeThere();  // so that the slow one, who came first, is in as well
  const auto now = WebServer::Clock::now();
  web.dropOverdue(now + std::chrono::milliseconds(1'000));
  slow.write("TP/1.");
  TcpClient patient(port);
  patient.write("GET /games/kelvora/ver.txt HTTP/1.0\r\n");
  expectToBeThere();
  web.dropOverdue(now + std::chrono::milliseconds(5'000));  // it began before `now`
  EXPECT_TRUE(slow.isCutOff());
  expectToBeThere();
  patient.tryWrite("\r\n");
}

TEST_F(WebServerTest, WhoIsInTimeIsNotCutOff) {
  TcpClient slow(port);
  slow.write("GET /games/kelvora/ver.txt HTTP/1.0\r\n");
  expectToBeThere();
  const auto earliest = WebServer::Clock::now();
  web.dropOverdue(earliest);
  slow.write("\r\n");
  EXPECT_TRUE(slow.readToEnd().ends_with("tvqver:1.2.1\n"));
}

TEST_F(WebServerTest, ACrowdOfSilentOnesHoldsTheRestUpForAsLongAsItsTime) {
  std::vector<std::unique_ptr<TcpClient>> crowd;
  crowd.push_back(std::make_unique<TcpClient>(port));
  expectToBeThere();  // so that the first of them is in
  for (unsigned int i = 1; i < WebServer::mostConnections; ++i) crowd.push_back(std::make_unique<TcpClient>(port));
  TcpClient waiting(port);
  waiting.write(updateRequest);
  web.dropOverdue(WebServer::Clock::now() + std::chrono::seconds(6));
  EXPECT_TRUE(waiting.readToEnd().ends_with("tvqver:1.2.1\n"));
}

TEST_F(WebServerTest, ManyAreServedOneBehindTheOther) {
  std::vector<std::unique_ptr<TcpClient>> crowd;
  for (int i = 0; i < 200; ++i) {
    crowd.push_back(std::make_unique<TcpClient>(port));
    crowd.back()->write(updateRequest);
  }
  for (const auto& client : crowd) EXPECT_TRUE(client->readToEnd().ends_with("tvqver:1.2.1\n"));
}

TEST_F(WebServerTest, ResetsAndHalfRequestsDisturbNobody) {
  for (int i = 0; i < 100; ++i) {
    TcpClient gone(port);
    gone.write(updateRequest.substr(0, static_cast<std::size_t>(i) % updateRequest.size()));
    if (i % 2 == 0) gone.reset();
  }
  expectToBeThere();
}

TEST_F(WebServerTest, ATakenPortIsAnErrorThatNamesIt) {
  try {
    const WebServer second("127.0.0.1", port, "1.2.1");
    FAIL();
  } catch (const std::system_error& error) {
    EXPECT_NE(std::string(error.what()).find("127.0.0.1:" + std::to_string(port)), std::string::npos) << error.what();
  }
  EXPECT_THROW(WebServer("no.such.address.invalid", 0, "1.2.1"), std::system_error);
}

/// The game and the web server together, as the program runs them.
class GameWithWeb : public testing::Test {
 protected:
  ~GameWithWeb() override {
    asio::post(context_, [this] { server_.stop(); });
    thread_.join();
  }
  std::uint16_t port() const { return port_; }
  std::uint16_t webPort() const { return webPort_; }
  /// The list with everything in it.
  std::string list() const { return ask(webPort_, listRequest("version=1.2.1&password=1&full=1&empty=1")).body; }
  std::string expected(int players) const {
    return "[play.example|" + std::to_string(port_) + "|0|for all|" + std::to_string(players) + "|6]-END-\n";
  }

 private:
  static Options options() {
    Options options;
    options.port = freeListedPort();
    options.rules.speedFactor = 0;
    options.webPort = 0;
    options.publicAddress = "play.example";
    options.notes = "for all";
    return options;
  }

  asio::io_context context_;
  GameServer server_{context_, options(), [](const std::string&) {}};
  const std::uint16_t port_ = server_.port();
  const std::uint16_t webPort_ = portOf(server_.webEndpointText());
  std::thread thread_{[this] { context_.run(); }};
};

/// Logs in, and waits until the server has done all that belongs to it.
void join(Client& client, const std::string& name) {
  client.login(name);
  client.say(wire::msgChat, {"-1", "in"});
  ASSERT_NE(client.readUntil(wire::msgChat), "nothing");
}

TEST_F(GameWithWeb, TheListCountsThePlayers) {
  EXPECT_EQ(list(), expected(0));
  Client ann(port());
  join(ann, "Ann");
  EXPECT_EQ(list(), expected(1));
  {
    Client bob(port());
    join(bob, "Bob");
    EXPECT_EQ(list(), expected(2));
  }
  ann.readUntil(wire::msgPlayerLeft);
  ann.say(wire::msgChat, {"-1", "alone"});
  ann.readUntil(wire::msgChat);
  EXPECT_EQ(list(), expected(1));
}

TEST_F(GameWithWeb, TheGameGoesOnWhileTheWebServerIsFlooded) {
  Client ann(port());
  join(ann, "Ann");
  std::vector<std::unique_ptr<TcpClient>> crowd;
  for (int i = 0; i < 50; ++i) {  // as many positions as may come at once
    crowd.push_back(std::make_unique<TcpClient>(webPort()));
    crowd.back()->tryWrite(i % 2 == 0 ? "GET /games/kelvora/" : std::string(10'000, 'x'));
    ann.say(wire::msgPositionReport, {std::to_string(i), "5"});
    EXPECT_EQ(ann.readUntil(wire::msgPosition), "1\x82" + std::to_string(i) + "\x82" + "5");
  }
  Client bob(port());
  join(bob, "Bob");
  EXPECT_NE(ann.readUntil(wire::msgPlayerJoined), "nothing");
}

TEST(ServerProgram, TellsBothItsPortsAndEndsWithRequestsUnderWay) {
  int ends[2];
  ASSERT_EQ(::pipe(ends), 0);
  const std::string chosen = std::to_string(freeListedPort());
  const pid_t process = ::fork();
  if (process == 0) {
    ::dup2(ends[1], STDOUT_FILENO);
    ::close(ends[0]);
    ::close(STDERR_FILENO);
    ::execl(KELVORA_SERVER_PROGRAM, "kelvora-server", "--port", chosen.c_str(), "--web-port", "0", "--notes", "x",
            nullptr);
    ::_exit(127);
  }
  ::close(ends[1]);
  const auto line = [&] {
    std::string text;
    for (char byte = 0; byte != '\n' && ::read(ends[0], &byte, 1) == 1;) text += byte;
    return text;
  };
  const std::string web = line();
  const std::string game = line();
  ASSERT_TRUE(web.starts_with("web on 127.0.0.1:")) << web;
  ASSERT_TRUE(game.starts_with("listening on 127.0.0.1:")) << game;
  EXPECT_EQ(ask(portOf(web), listRequest("version=1.2.1&password=0&full=0&empty=1")).body,
            "[127.0.0.1|" + std::to_string(portOf(game)) + "|0|x|0|6]-END-\n");
  TcpClient half(portOf(web));
  half.write("GET /games");
  EXPECT_EQ(ask(portOf(web), updateRequest).body, "tvqver:1.2.1\n");
  ::kill(process, SIGTERM);
  EXPECT_TRUE(half.isCutOff());
  int status = 0;
  ASSERT_EQ(::waitpid(process, &status, 0), process);
  EXPECT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 0);
  ::close(ends[0]);
}

}  // namespace
}  // namespace kelvora::server
