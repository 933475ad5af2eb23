#include <algorithm>
#include <boost/asio/io_context.hpp>
#include <boost/asio/signal_set.hpp>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string>
#include <utility>

#include "base/millis.h"
#include "base/outcome.h"
#include "server/agones/sidecar.h"
#include "server/config/log.h"
#include "server/config/options.h"
#include "server/http/site.h"
#include "server/net/gameServer.h"
#include "server/system/passwords.h"
#include "server/system/process.h"

using namespace kelvora::server;

namespace {

/// Reads a password and prints its hash. Returns the exit status.
int printHash() {
  if (!canHashPasswords()) {
    std::cerr << "kelvora-server: this system has no password hashes\n";
    return 1;
  }
  const std::string password = readSecret("Password: ");
  // Other letters can't be typed into the game's chat line.
  const auto isTypeable = [](char c) { return c > ' ' && c <= '~'; };
  if (password.empty()) {
    std::cerr << "kelvora-server: the password is empty\n";
    return 2;
  }
  if (!std::all_of(password.begin(), password.end(), isTypeable)) {
    std::cerr << "kelvora-server: the password must have letters, digits and signs of ASCII only, and no blanks\n";
    return 2;
  }
  const std::string hash = hashOf(password);
  if (hash.empty()) {
    std::cerr << "kelvora-server: the password can't be hashed\n";
    return 1;
  }
  std::cout << hash << "\n";
  return 0;
}

/// Stops, drains or rereads a server when a signal asks for it.
class SignalWatch {
 public:
  using WriteLine = GameServer::WriteLine;

  /// Adds the signals that stop a server. `reread` is among `signals`, if there is one.
  SignalWatch(boost::asio::signal_set& signals, std::optional<int> reread, GameServer& server, int drainSeconds,
              WriteLine log)
      : server_(server), drainSeconds_(drainSeconds), reread_(reread), log_(std::move(log)), signals_(signals) {
    for (const int signal : stopSignals(!reread_)) signals_.add(signal);
    await();
  }

 private:
  void await() {
    signals_.async_wait([this](boost::system::error_code error, int signal) {
      // A second signal may be on its way here when the server stops. It can't be cancelled, and must not be the reason
      // for another wait, which would never end.
      if (error || hasStopped_) return;
      await();
      take(signal);
    });
  }

  void take(int signal) {
    if (signal == reread_) return server_.reread();
    const auto whenDone = [this] {
      hasStopped_ = true;
      signals_.cancel();
    };
    const bool isFirst = !std::exchange(isEnding_, true);
    if (signal == SIGTERM && drainSeconds_ > 0 && isFirst) {
      log_(signalName(signal) + ": shutting down after this round");
      return server_.drain(std::chrono::seconds(drainSeconds_), whenDone);
    }
    log_(signalName(signal) + ": shutting down");
    server_.stop(whenDone);
  }

  GameServer& server_;
  const int drainSeconds_;
  const std::optional<int> reread_;
  const WriteLine log_;
  boost::asio::signal_set& signals_;
  bool hasStopped_ = false;
  bool isEnding_ = false;
};

/// Runs the server until it is told to stop. Throws std::runtime_error or a derived class if it can't begin.
void serve(Options options) {
  // Other threads only post to it, so its sockets need no locks.
  boost::asio::io_context context(BOOST_ASIO_CONCURRENCY_HINT_UNSAFE_IO);
  Log logFile(std::cerr, !isLoggingToJournal());
  const auto log = [&](const std::string& line) { logFile.write(line, kelvora::steadyNow(), std::time(nullptr)); };
  const auto logAct = [&](const std::string& line) { logFile.writeAlways(line, std::time(nullptr)); };
  if (const std::size_t limit = provideDescriptors(GameServer::descriptors); limit < GameServer::descriptors) {
    log("only " + std::to_string(limit) + " files may be open, so the server may have to turn players away");
  }
  // Only a server with such a file has anything to read again. The signal waits until the server takes it, so no change
  // of the file during the start is missed.
  const auto reread = options.moderation.bansFile.empty() ? std::nullopt : rereadSignal();
  boost::asio::signal_set signals(context);
  if (reread) signals.add(*reread);
  if (!options.site) options.site = utf8FromPath(usualSite(programFolder()));
  GameServer server(context, options, log, logAct);
  if (!options.site->empty()) {
    const bool isThere = std::filesystem::exists(pathFromUtf8(*options.site) / "index.html");
    log("the page for browsers " + std::string(isThere ? "is in " : "can be put into ") + *options.site);
  }
  const SignalWatch watch(signals, reread, server, options.drainSeconds, log);
  if (options.webPort) std::cout << "web on " << server.webEndpointText() << std::endl;
  if (options.rules.spectators > 0) std::cout << "spectators on " << server.spectatorEndpointText() << std::endl;
  std::cout << "listening on " << server.endpointText() << std::endl;
  context.run();
  ignoreFurtherSignals();
  log("stopped");
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  if (const kelvora::Outcome outcome = parseOptions(commandLine(argc, argv), options); outcome.isRefused()) {
    std::cerr << "kelvora-server: " << outcome.reason() << "\nkelvora-server --help lists the options.\n";
    return 2;
  }
  if (options.help) {
    std::cout << helpText();
    return 0;
  }
  if (options.version) {
    std::cout << "kelvora-server " << versionText() << "\n";
    return 0;
  }
  if (options.hashPassword) return printHash();
  if (const char* port = std::getenv(Sidecar::portVariable)) {
    if (const kelvora::Outcome outcome = takeAgonesPort(port, options); outcome.isRefused()) {
      std::cerr << "kelvora-server: " << Sidecar::portVariable << " " << outcome.reason() << "\n";
      return 2;
    }
  }
  ignoreFatalSignals();
  ignoreConsoleClicks();
  try {
    serve(std::move(options));
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "kelvora-server: " << error.what() << "\n";
    return 1;
  }
}
