#include <sys/resource.h>

#include <algorithm>
#include <boost/asio/io_context.hpp>
#include <boost/asio/signal_set.hpp>
#include <chrono>
#include <csignal>
#include <ctime>
#include <exception>
#include <filesystem>
#include <functional>
#include <iostream>
#include <span>
#include <string>
#include <system_error>

#include "base/millis.h"
#include "base/outcome.h"
#include "server/config/log.h"
#include "server/config/options.h"
#include "server/net/gameServer.h"
#include "server/web/site.h"

using kelvora::Millis;
using namespace kelvora::server;

namespace {

Millis steadyMillis() {
  return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now().time_since_epoch())
      .count();
}

std::string signalName(int signal) {
  if (signal == SIGHUP) return "SIGHUP";
  return signal == SIGINT ? "SIGINT" : "SIGTERM";
}

/// Raises the limit of open files to what the server may need, if allowed, and returns the limit.
std::size_t provideDescriptors() {
  rlimit limit{};
  if (::getrlimit(RLIMIT_NOFILE, &limit) != 0) return GameServer::descriptors;
  if (limit.rlim_cur < GameServer::descriptors) {
    limit.rlim_cur = std::min<rlim_t>(GameServer::descriptors, limit.rlim_max);
    ::setrlimit(RLIMIT_NOFILE, &limit);
    ::getrlimit(RLIMIT_NOFILE, &limit);
  }
  return limit.rlim_cur;
}

/// The folder of this program.
std::filesystem::path programFolder() {
  std::error_code ignored;
  return std::filesystem::read_symlink("/proc/self/exe", ignored).parent_path();
}

/// The server is ending: a further signal would only turn that into a failure.
void ignoreFurtherSignals() {
  sigset_t all;
  sigfillset(&all);
  ::sigprocmask(SIG_BLOCK, &all, nullptr);
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  const auto arguments = std::span<const char* const>(argv, static_cast<std::size_t>(argc)).subspan(1);
  if (const kelvora::Outcome outcome = parseOptions(arguments, options); outcome.isRefused()) {
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
  std::signal(SIGPIPE, SIG_IGN);  // the game continues if nobody reads the log any more
  std::signal(SIGXFSZ, SIG_IGN);  // likewise if the log may not grow
  try {
    // Other threads only post to it, so its sockets need no locks.
    boost::asio::io_context context(BOOST_ASIO_CONCURRENCY_HINT_UNSAFE_IO);
    Log logFile(std::cerr, !isLoggingToJournal());
    const auto log = [&](const std::string& line) { logFile.write(line, steadyMillis(), std::time(nullptr)); };
    if (const std::size_t most = provideDescriptors(); most < GameServer::descriptors) {
      log("only " + std::to_string(most) + " files may be open, so the server may have to turn players away");
    }
    if (!options.site) options.site = usualSite(programFolder()).string();
    GameServer server(context, options, log);
    if (!options.site->empty()) log("the page for browsers is in " + *options.site);
    boost::asio::signal_set signals(context, SIGINT, SIGTERM);
    // The terminal is closed. Ignored if nohup says so.
    if (std::signal(SIGHUP, SIG_IGN) != SIG_IGN) signals.add(SIGHUP);
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
    log("ended");
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "kelvora-server: " << error.what() << "\n";
    return 1;
  }
}
