#include <asio/io_context.hpp>
#include <asio/signal_set.hpp>
#include <csignal>
#include <exception>
#include <iostream>
#include <span>

#include "server/gameServer.h"
#include "server/options.h"

using namespace kelvora::server;

int main(int argc, char** argv) {
  const Options options = parseOptions(std::span<const char* const>(argv, static_cast<std::size_t>(argc)).subspan(1));
  if (!options.error.empty()) {
    std::cerr << "kelvora-server: " << options.error << "\n\n" << helpText();
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
  try {
    asio::io_context context(1);
    GameServer server(context, options, [](const std::string& line) { std::cerr << line << std::endl; });
    asio::signal_set signals(context, SIGINT, SIGTERM);
    signals.async_wait([&](asio::error_code error, int) {
      if (!error) server.stop();
    });
    if (options.webPort) std::cout << "web on " << server.webEndpointText() << std::endl;
    std::cout << "listening on " << server.endpointText() << std::endl;
    context.run();
    std::cerr << "ended" << std::endl;
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "kelvora-server: " << error.what() << "\n";
    return 1;
  }
}
