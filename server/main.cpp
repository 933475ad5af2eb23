#include <asio/io_context.hpp>
#include <asio/signal_set.hpp>
#include <chrono>
#include <csignal>
#include <ctime>
#include <exception>
#include <functional>
#include <iostream>
#include <span>

#include "server/gameServer.h"
#include "server/log.h"
#include "server/options.h"

using namespace kelvora::server;

namespace {

Millis steadyMillis() {
  return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now().time_since_epoch())
      .count();
}

}  // namespace

int main(int argc, char** argv) {
  const Options options = parseOptions(std::span<const char* const>(argv, static_cast<std::size_t>(argc)).subspan(1));
  if (!options.error.empty()) {
    std::cerr << "kelvora-server: " << options.error << "\nkelvora-server --help lists the options.\n";
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
  std::signal(SIGPIPE, SIG_IGN);  // so that the game goes on if nobody reads the log any more
  try {
    asio::io_context context(1);
    Log logFile(std::cerr, !isLoggingToJournal());
    const auto log = [&](const std::string& line) { logFile.write(line, steadyMillis(), std::time(nullptr)); };
    GameServer server(context, options, log);
    asio::signal_set signals(context, SIGINT, SIGTERM);
    std::function<void()> awaitSignal = [&] {
      signals.async_wait([&](asio::error_code error, int signal) {
        if (error) return;
        log(signal == SIGINT ? "SIGINT: shutting down" : "SIGTERM: shutting down");
        awaitSignal();
        server.stop([&] { signals.cancel(); });
      });
    };
    awaitSignal();
    if (options.webPort) std::cout << "web on " << server.webEndpointText() << std::endl;
    std::cout << "listening on " << server.endpointText() << std::endl;
    context.run();
    log("ended");
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "kelvora-server: " << error.what() << "\n";
    return 1;
  }
}
