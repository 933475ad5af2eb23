#include "server/lists/publisher.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <string_view>
#include <thread>
#include <utility>

#include "server/lists/announcement.h"
#include "server/lists/publishSchedule.h"
#include "server/system/webRequest.h"

namespace kelvora::server {

namespace {

constexpr long timeLimit = 10'000;        // ms for an announcement
constexpr long goodbyeTimeLimit = 2'000;  // ms

}  // namespace

struct Publisher::State {
  const std::string url;
  const std::string key;
  const std::string version;
  const std::function<void(const std::string&)> log;

  std::mutex mutex;  // guards the following three
  std::condition_variable changed;
  std::optional<HostEntry> host;
  PublishSchedule schedule;
  std::atomic<bool> isEnding = false;
  std::thread thread;

  State(std::string itsUrl, std::string itsKey, std::string itsVersion, std::function<void(const std::string&)> itsLog)
      : url(std::move(itsUrl)), key(std::move(itsKey)), version(std::move(itsVersion)), log(std::move(itsLog)) {}

  void run() {
    std::string said;
    std::optional<HostEntry> sent;
    std::unique_lock lock(mutex);
    while (!isEnding) {
      const Millis due = host ? schedule.due() : steadyNow() + PublishSchedule::interval;
      if (const Millis wait = due - steadyNow(); wait > 0) {
        changed.wait_for(lock, std::chrono::milliseconds(wait));
        continue;
      }
      schedule.begins(steadyNow());
      sent = *host;
      lock.unlock();
      const Outcome outcome = request("POST", *sent, timeLimit);
      const std::string news =
          outcome.isRefused() ? "cannot announce to " + url + ": " + outcome.reason() : "announced to " + url;
      if (news != said && !isEnding) log(said = news);
      lock.lock();
      schedule.ends(!outcome.isRefused());
    }
    lock.unlock();
    // Nobody reads the log any more if that fails.
    if (sent) static_cast<void>(request("DELETE", *sent, goodbyeTimeLimit));
  }

  /// Refused if the list is, or can't be reached.
  Outcome request(const char* method, const HostEntry& about, long limit) {
    const bool isGoodbye = method == std::string_view("DELETE");
    const std::string target = url + std::string(publishPath) + "?" + announcementQuery({version, about});
    WebReply reply;
    Outcome outcome = sendRequest({.method = method,
                                   .url = target,
                                   .key = key,
                                   .agent = "kelvora-server/" + version,
                                   .timeLimit = limit,
                                   // The end aborts an announcement.
                                   .isEnding = isGoodbye ? nullptr : &isEnding},
                                  reply);
    if (outcome.isRefused() || reply.status == 200) return outcome;
    std::erase(reply.body, '\n');
    return Outcome::refused("status " + std::to_string(reply.status) + (reply.body.empty() ? "" : ", " + reply.body));
  }
};

Publisher::Publisher(const std::string& url, std::string key, std::string version,
                     std::function<void(const std::string&)> log) {
  const std::string base = url.substr(0, url.find_last_not_of('/') + 1);
  state_ = std::make_unique<State>(base, std::move(key), std::move(version), std::move(log));
  state_->thread = std::thread([state = state_.get()] { state->run(); });
}

Publisher::~Publisher() {
  signOff();
  state_->thread.join();
}

void Publisher::publish(HostEntry host) {
  const std::lock_guard lock(state_->mutex);
  const Millis due = state_->host ? state_->schedule.due() : -1;
  state_->schedule.setPlayers(host.players);
  state_->host = std::move(host);
  if (state_->schedule.due() != due) state_->changed.notify_one();
}

void Publisher::signOff() {
  const std::lock_guard lock(state_->mutex);
  state_->isEnding = true;
  state_->changed.notify_one();
}

}  // namespace kelvora::server
