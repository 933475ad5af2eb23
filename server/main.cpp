#include <boost/asio/io_context.hpp>
#include <boost/asio/signal_set.hpp>
#include <chrono>
#include <ctime>
#include <exception>
#include <functional>
#include <iostream>
#include <string>

#include "base/millis.h"
#include "base/outcome.h"
#include "server/config/log.h"
#include "server/config/options.h"
#include "server/net/gameServer.h"
#include "server/system/process.h"
#include "server/web/site.h"

using kelvora::Millis;
using namespace kelvora::server;

namespace {

Millis steadyMillis() {
  return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now().time_since_epoch())
      .count();
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
  ignoreFatalSignals();
  try {
    // Other threads only post to it, so its sockets need no locks.
    boost::asio::io_context context(BOOST_ASIO_CONCURRENCY_HINT_UNSAFE_IO);
    Log logFile(std::cerr, !isLoggingToJournal());
    const auto log = [&](const std::string& line) { logFile.write(line, steadyMillis(), std::time(nullptr)); };
    if (const std::size_t most = provideDescriptors(GameServer::descriptors); most < GameServer::descriptors) {
      log("only " + std::to_string(most) + " files may be open, so the server may have to turn players away");
    }
    if (!options.site) options.site = utf8FromPath(usualSite(programFolder()));
    GameServer server(context, options, log);
    if (!options.site->empty()) log("the page for browsers is in " + *options.site);
    boost::asio::signal_set signals(context);
    for (const int signal : stopSignals()) signals.add(signal);
    bool hasStopped = false;
    std::function<void()> awaitSignal = [&] {
      signals.async_wait([&](boost::system::error_code error, int signal) {
        // A second signal may be on its way here when the server stops. It can't be cancelled, and must not be the
        // reason for another wait, which would never end.
        if (error || hasStopped) return;
        log(signalName(signal) + ": shutting down");
        awaitSignal();
        server.stop([&] {
          hasStopped = true;
          signals.cancel();
        });
      });
    };
    awaitSignal();
    if (options.webPort) std::cout << "web on " << server.webEndpointText() << std::endl;
    std::cout << "listening on " << server.endpointText() << std::endl;
    context.run();
    ignoreFurtherSignals();
    log("stopped");
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "kelvora-server: " << error.what() << "\n";
    return 1;
  }
}
