// The web files on real loopback sockets.

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>

#include <algorithm>
#include <boost/asio/post.hpp>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

#include "generated/version.h"
#include "server/net/gameServer.h"
#include "tests/server/net/runningServer.h"
#include "tests/server/net/tcpClient.h"
#include "tests/server/net/webAnswer.h"
#include "tests/support/allocatedBytes.h"

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

/// Logs in, and waits until the server has completed the login.
void join(Client& client, const std::string& name) {
  client.login(name);
  client.say(wire::msgChat, {"-1", "in"});
  ASSERT_NE(client.readUntil(wire::msgChat), "nothing");
}

class WebFilesTest : public testing::Test {
 protected:
  RunningServer server{options()};
  const std::uint16_t port = server.port();

  static Options options() {
    Options options;
    options.webPort = 0;
    options.publicAddress = "192.0.2.7";
    options.notes = "friendly <game>";
    return options;
  }
  std::string listOfThis() const { return "[192.0.2.7|" + std::to_string(port) + "|0|friendly <game>|0|6]-END-\n"; }
  void expectToBeThere() const {
    EXPECT_EQ(ask(port, listRequest("version=" KELVORA_VERSION "&password=0&full=0&empty=1"), 250).body, listOfThis());
  }
};

TEST_F(WebFilesTest, AnswersTheUpdateCheckAndClosesOnBothPorts) {
  for (const std::uint16_t each : {port, server.webPort()}) {
    const WebAnswer response = ask(each, updateRequest);
    EXPECT_EQ(response.status, "HTTP/1.1 200 OK");
    EXPECT_EQ(response.body, "tvqver:" KELVORA_VERSION "\n");
  }
}

TEST_F(WebFilesTest, AnswersTheGameFinderAndClosesDespiteKeepAlive) {
  const WebAnswer response = ask(port, listRequest("version=" KELVORA_VERSION "&password=0&full=0&empty=1"));
  EXPECT_EQ(response.status, "HTTP/1.1 200 OK");
  EXPECT_EQ(response.body, listOfThis());
  EXPECT_EQ(response.head.find('['), std::string::npos) << "the game looks for records in the headers, too";
  EXPECT_NE(response.head.find("Content-Type: text/plain"), std::string::npos);
  EXPECT_NE(response.head.find("Connection: close"), std::string::npos);
}

TEST_F(WebFilesTest, SecondPortAcceptsPlayersToo) {
  Client ann(server.webPort());
  join(ann, "Ann");
}

TEST_F(WebFilesTest, ThePageListsThePlayersAndHowToJoin) {
  Client ann(port);
  join(ann, "<b>Ann\xE9");
  const WebAnswer page = ask(port, "GET / HTTP/1.0\r\n\r\n", 2);
  EXPECT_NE(page.head.find("text/html; charset=utf-8"), std::string::npos);
  EXPECT_NE(page.body.find("&lt;b>Ann\xC3\xA9</li>"), std::string::npos) << page.body;
  EXPECT_NE(page.body.find("friendly &lt;game>"), std::string::npos);
  EXPECT_NE(page.body.find("Players: 1 of 6"), std::string::npos);
  EXPECT_NE(page.body.find("port " + std::to_string(port)), std::string::npos);
  EXPECT_EQ(page.body.find("password"), std::string::npos);
}

TEST(WebFilesOfAnArena, ThePageNamesThePublicAddress) {
  Options options;
  EXPECT_NE(ask(RunningServer(options).port(), "GET / HTTP/1.0\r\n\r\n").body.find("this machine's address and port "),
            std::string::npos);
  options.publicAddress = "play.example";
  EXPECT_NE(
      ask(RunningServer(options).port(), "GET / HTTP/1.0\r\n\r\n").body.find("the address play.example and port "),
      std::string::npos);
}

TEST(WebFilesOfBots, ThePageCountsPeopleAndNamesTheBotsApart) {
  Options options;
  options.bots.count = 2;
  const RunningServer server(options);
  Client ann(server.port());
  join(ann, "Ann");
  ann.readUntil(wire::msgPlayerJoined);
  ann.readUntil(wire::msgPlayerJoined);
  const std::string page = ask(server.port(), "GET / HTTP/1.0\r\n\r\n", 2).body;
  EXPECT_NE(page.find("<p>Players: 1 of 6</p>\n<ul>\n<li>Ann</li>\n</ul>\n<p>Bots play"), std::string::npos) << page;
  std::size_t names = 0;
  for (std::size_t at = 0; (at = page.find("<li>", at)) != std::string::npos; ++at) ++names;
  EXPECT_EQ(names, 3U) << page;
}

TEST_F(WebFilesTest, BrowsersGetATableOfGames) {
  const WebAnswer page = ask(port, "GET /games HTTP/1.0\r\n\r\n");
  EXPECT_NE(page.head.find("text/html; charset=utf-8"), std::string::npos);
  EXPECT_NE(page.body.find("friendly &lt;game>"), std::string::npos) << page.body;
  EXPECT_NE(page.body.find("<a href=\"http://192.0.2.7:" + std::to_string(port) + "/\""), std::string::npos);
  EXPECT_NE(ask(port, "GET / HTTP/1.0\r\n\r\n").body.find("<a href=\"/games\">"), std::string::npos);
}

TEST_F(WebFilesTest, KeptConnectionAnswersSeveralRequests) {
  TcpClient client(port);
  const std::string page = "GET / HTTP/1.1\r\nHost: h\r\n\r\n";
  // Two at once, then one in pieces, then the last one.
  client.write(page + page + page.substr(0, 7));
  client.write(page.substr(7));
  client.write(updateRequest);
  const std::string all = client.readToEnd();
  std::size_t pages = 0;
  for (std::size_t at = 0; (at = all.find("</html>", at)) != std::string::npos; ++at) ++pages;
  EXPECT_EQ(pages, 3U);
  EXPECT_TRUE(all.ends_with("tvqver:" KELVORA_VERSION "\n"));
}

TEST_F(WebFilesTest, RequestSentByteByByteIsAnswered) {
  TcpClient client(port);
  for (const char byte : updateRequest) client.write(std::string(1, byte));
  EXPECT_TRUE(client.readToEnd().ends_with("\r\n\r\ntvqver:" KELVORA_VERSION "\n"));
}

TEST_F(WebFilesTest, NothingElseIsServed) {
  std::uint32_t host = 2;
  for (const char* path : {"/games/kelvora/", "/games/kelvora/ver.txt/", "/games/kelvora/../kelvora/ver.txt",
                           "/GAMES/KELVORA/VER.TXT", "/../../../../etc/passwd", "/index.html"}) {
    const WebAnswer response = ask(port, std::string("GET ") + path + " HTTP/1.0\r\n\r\n", host++);
    EXPECT_EQ(response.status.substr(8), " 404 Not Found") << path;
  }
  for (const char* method : {"POST", "PUT", "DELETE", "OPTIONS", "BREW"}) {
    const WebAnswer response = ask(port, std::string(method) + " / HTTP/1.0\r\n\r\n", host++);
    EXPECT_EQ(response.status.substr(8, 4), " 405") << method;
    EXPECT_NE(response.head.find("Allow: GET, HEAD"), std::string::npos) << method;
  }
  EXPECT_EQ(ask(port, "HEAD /games/kelvora/ver.txt HTTP/1.0\r\n\r\n").body, "");
  EXPECT_EQ(ask(port, "HEAD / HTTP/1.0\r\n\r\n").body, "");
}

TEST_F(WebFilesTest, BodiesAreNotWaitedFor) {
  for (const char* method : {"POST", "GET"}) {
    const WebAnswer response = ask(port, std::string(method) + " /games/kelvora/ver.txt HTTP/1.1\r\nHost: h\r\n" +
                                             "Content-Length: 1000000000\r\n\r\n");
    EXPECT_NE(response.status, "") << method;
  }
  ask(port, "POST / HTTP/1.1\r\nHost: h\r\nContent-Length: 2000\r\n\r\n" + std::string(2'000, 'x'));
  ask(port, "POST / HTTP/1.1\r\nHost: h\r\nTransfer-Encoding: chunked\r\n\r\nFFFFFFFFFFFFFFFF\r\nxxxx");
  expectToBeThere();
}

TEST_F(WebFilesTest, GarbageIsRefused) {
  std::uint32_t host = 2;
  for (const std::string& bytes : std::vector<std::string>{
           "\x80\x87"
           "Ann\x82\x82\x30\x82" KELVORA_VERSION "\x81\r\n\r\n",
           "x\r\n\r\n",
           "GET\r\n\r\n",
           "GET /games/kelvora/ver.txt\r\n\r\n",
           "GET /games/kelvora/ver.txt HTTP/9.9\r\n\r\n",
           "GET /games/kelvora/ver.txt HTTP/1.1\r\nContent-Length: -1\r\nHost: h\r\n\r\n",
           "GET /games/kelvora/gethosts.php?version=%&password=%0&=&&%zz HTTP/1.0\r\n\r\n",
           "GET /games/kelvora/gethosts.php?version=" KELVORA_VERSION "%00 HTTP/1.0\r\n\r\n",
           "GET " + std::string(100'000, '/') + " HTTP/1.0\r\n\r\n",
           "GET / HTTP/1.0\r\nA: " + std::string(100'000, 'a') + "\r\n\r\n",
       }) {
    EXPECT_EQ(ask(port, bytes, host++).body.find("192.0.2.7"), std::string::npos) << bytes.substr(0, 60);
    expectToBeThere();
  }
}

TEST_F(WebFilesTest, AnEndlessRequestIsCutOffAndCostsNoMemory) {
  const std::string block(1 << 20, 'x');
  const std::string headers = [] {
    std::string lines;
    for (int i = 0; i < 50'000; ++i) lines += "a: b\r\n";
    return lines;
  }();
  const std::size_t before = allocatedBytes();
  std::size_t most = before;
  for (const std::string& start : {std::string("G"), std::string("GET / HTTP/1.0\r\n")}) {
    for (const std::string* more : {&block, &headers}) {
      TcpClient client(port);
      client.write(start);
      int taken = 0;
      while (taken < 64 && client.tryWrite(*more)) {
        ++taken;
        most = std::max(most, allocatedBytes());
      }
      EXPECT_LT(taken, 64);
    }
  }
  EXPECT_LT(most, before + (std::size_t{1} << 19)) << "half of a single block";
  expectToBeThere();
}

TEST_F(WebFilesTest, ASlowRequestIsCutOffAfterFiveSeconds) {
  const auto start = std::chrono::steady_clock::now();
  TcpClient silent(port, 3);
  TcpClient slow(port, 2);
  slow.write("GET /games/kelvora/ver.txt HT");
  while (slow.tryWrite("x") && std::chrono::steady_clock::now() - start < std::chrono::minutes(1)) {
    expectToBeThere();  // one of the others, meanwhile
    std::this_thread::sleep_for(std::chrono::milliseconds(600));
  }
  EXPECT_GT(std::chrono::steady_clock::now() - start, std::chrono::seconds(4));
  EXPECT_TRUE(slow.isCutOff());
}

TEST_F(WebFilesTest, ManyAreServedOneAfterTheOther) {
  std::vector<std::unique_ptr<TcpClient>> crowd;
  for (std::uint32_t i = 0; i < 90; ++i) {
    crowd.push_back(std::make_unique<TcpClient>(port, 1 + i % 30));
    crowd.back()->write(updateRequest);
  }
  for (const auto& client : crowd) EXPECT_TRUE(client->readToEnd().ends_with("tvqver:" KELVORA_VERSION "\n"));
}

TEST_F(WebFilesTest, ResetsAndHalfRequestsDisturbNobody) {
  for (std::uint32_t i = 0; i < 100; ++i) {
    TcpClient gone(port, 1 + i % 30);
    gone.write(updateRequest.substr(0, i % updateRequest.size()));
    if (i % 2 == 0) gone.reset();
  }
  expectToBeThere();
}

TEST_F(WebFilesTest, PortInUseIsAnErrorThatNamesIt) {
  asio::io_context context;
  Options options;
  options.port = port;
  try {
    const GameServer second(context, options, [](const std::string&) {});
    FAIL();
  } catch (const std::runtime_error& error) {
    EXPECT_NE(std::string(error.what()).find("127.0.0.1:" + std::to_string(port)), std::string::npos) << error.what();
  }
}

TEST(WebSite, FolderIsServedInPiecesAlongsideTheList) {
  std::string folder = "/tmp/kelvora-files-XXXXXX";
  ASSERT_NE(::mkdtemp(folder.data()), nullptr);
  const std::string large(1'000'000, 'm');
  std::ofstream(folder + "/index.html") << "<p>the game</p>";
  std::ofstream(folder + "/music.mp3") << large;
  Options options;
  options.site = folder;
  const RunningServer server(options);
  EXPECT_EQ(ask(server.port(), "GET / HTTP/1.0\r\n\r\n").body, "<p>the game</p>");
  const WebAnswer music = ask(server.port(), "GET /music.mp3 HTTP/1.0\r\n\r\n");
  EXPECT_NE(music.head.find("Content-Length: 1000000"), std::string::npos);
  EXPECT_EQ(music.body.size(), large.size());
  EXPECT_EQ(ask(server.port(), "HEAD /music.mp3 HTTP/1.0\r\n\r\n").body, "");
  EXPECT_EQ(ask(server.port(), updateRequest).body, "tvqver:" KELVORA_VERSION "\n");
  std::filesystem::remove_all(folder);
}

/// The game and the web server combined, as in the program.
class GameWithWeb : public testing::Test {
 protected:
  ~GameWithWeb() override {
    asio::post(context_, [this] { server_.stop(); });
    thread_.join();
  }
  std::uint16_t port() const { return port_; }
  std::uint16_t webPort() const { return webPort_; }
  /// The list with everything in it.
  std::string list() const {
    return ask(webPort_, listRequest("version=" KELVORA_VERSION "&password=1&full=1&empty=1")).body;
  }
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

TEST_F(GameWithWeb, GameContinuesWhileTheWebServerIsFlooded) {
  Client ann(port());
  join(ann, "Ann");
  std::vector<std::unique_ptr<TcpClient>> crowd;
  for (int i = 0; i < 50; ++i) {  // as many positions as may come at once
    crowd.push_back(std::make_unique<TcpClient>(webPort(), static_cast<std::uint32_t>(2 + i)));
    crowd.back()->tryWrite(i % 2 == 0 ? "GET /games/kelvora/" : std::string(10'000, 'x'));
    ann.say(wire::msgPositionReport, {std::to_string(i), "5"});
    EXPECT_EQ(ann.readUntil(wire::msgPosition), "1\x82" + std::to_string(i) + "\x82" + "5");
  }
  Client bob(port());
  join(bob, "Bob");
  EXPECT_NE(ann.readUntil(wire::msgPlayerJoined), "nothing");
}

TEST(ServerProgram, PrintsBothPortsAndStopsDuringRequests) {
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
  EXPECT_EQ(ask(portOf(web), listRequest("version=" KELVORA_VERSION "&password=0&full=0&empty=1")).body,
            "[127.0.0.1|" + std::to_string(portOf(game)) + "|0|x|0|6]-END-\n");
  TcpClient half(portOf(web));
  half.write("GET /games");
  EXPECT_EQ(ask(portOf(web), updateRequest).body, "tvqver:" KELVORA_VERSION "\n");
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
