#include "server/agones/sidecar.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>

#include "base/millis.h"
#include "server/agones/sidecarPlan.h"
#include "server/system/webRequest.h"

namespace kelvora::server {

namespace {

using Call = SidecarPlan::Call;
using Result = SidecarPlan::Result;

constexpr long timeLimit = 2'000;      // ms for a call
constexpr Millis goodbyeTime = 3'000;  // for the last one, with its repetitions

struct Route {
  Call call;
  const char* method;
  const char* path;
  const char* news;  // for the log; empty for none
};

constexpr Route routes[] = {
    {Call::ready, "POST", "/ready", "Agones knows that this server is ready"},
    {Call::health, "POST", "/health", ""},
    {Call::allocate, "POST", "/allocate", "Agones keeps this server for its players"},
    {Call::place, "GET", "/gameserver", ""},
    {Call::players, "PATCH", "/v1beta1/counters/players", ""},
    {Call::shutdown, "POST", "/shutdown", "Agones knows that this server ends"},
};

const Route& routeOf(Call call) { return *std::ranges::find(routes, call, &Route::call); }

std::string bodyOf(Call call, std::size_t players) {
  if (call == Call::place) return {};
  return call == Call::players ? "{\"count\": \"" + std::to_string(players) + "\"}" : "{}";
}

}  // namespace

struct Sidecar::State {
  const std::string url;
  const std::string agent;
  const Handlers handlers;

  std::mutex mutex;  // guards the following two
  std::condition_variable changed;
  SidecarPlan plan;
  std::atomic<bool> isFinishing = false;
  std::atomic<bool> isEnding = false;
  std::array<std::string, SidecarPlan::callCount> failures;  // that the log has, by call
  std::thread thread;

  State(std::uint16_t port, const std::string& version, Handlers itsHandlers)
      : url("http://localhost:" + std::to_string(port)),
        agent("kelvora-server/" + version),
        handlers(std::move(itsHandlers)) {}

  void run() {
    Millis endsAt = 0;
    std::unique_lock lock(mutex);
    for (;;) {
      const Millis now = steadyNow();
      if (isEnding) {
        if (endsAt == 0) endsAt = now + goodbyeTime;
        if (!isFinishing || plan.isOver() || now >= endsAt) return;
      }
      const auto call = plan.next(now);
      if (!call) {
        changed.wait_for(lock, std::chrono::milliseconds(plan.wait(now)));
        continue;
      }
      const std::size_t players = plan.players();
      lock.unlock();
      const Result result = tell(*call, players);
      lock.lock();
      plan.ended(*call, players, result, steadyNow());
    }
  }

  Result tell(Call call, std::size_t players) {
    const Route& route = routeOf(call);
    WebReply reply;
    Outcome outcome = sendRequest({.method = route.method,
                                   .url = url + route.path,
                                   .json = bodyOf(call, players),
                                   .agent = agent,
                                   .timeLimit = timeLimit,
                                   .usesProxy = false,
                                   .maxReply = std::size_t{64} << 10,
                                   // The end aborts everything else.
                                   .isEnding = call == Call::shutdown ? nullptr : &isFinishing},
                                  reply);
    const bool isUnknown = !outcome.isRefused() && (reply.status == 404 || reply.status == 501);
    if (!outcome.isRefused() && reply.status != 200) {
      outcome = Outcome::refused("status " + std::to_string(reply.status));
    }
    if (call == Call::place && !outcome.isRefused()) {
      const auto place = readPlace(reply.body);
      if (place) handlers.onPlace(*place);
      if (!place) outcome = Outcome::refused("no address yet");
    }
    std::string& failure = failures[static_cast<std::size_t>(call)];
    if (!outcome.isRefused()) {
      failure.clear();
      if (*route.news != '\0') handlers.log(route.news);
      return Result::done;
    }
    const bool isAborted = isFinishing && call != Call::shutdown;
    if (failure != outcome.reason() && !isAborted) {
      failure = outcome.reason();
      handlers.log("cannot tell Agones " + std::string(route.path) + ": " + failure);
    }
    return isUnknown ? Result::unknown : Result::failed;
  }
};

Sidecar::Sidecar(std::uint16_t port, const std::string& version, Handlers handlers)
    : state_(std::make_unique<State>(port, version, std::move(handlers))) {
  state_->thread = std::thread([state = state_.get()] { state->run(); });
}

Sidecar::~Sidecar() {
  {
    const std::lock_guard lock(state_->mutex);
    state_->isEnding = true;
    state_->changed.notify_one();
  }
  state_->thread.join();
}

void Sidecar::update(std::size_t players) {
  const std::lock_guard lock(state_->mutex);
  const Millis now = steadyNow();
  const auto before = state_->plan.next(now);
  state_->plan.update(players, now);
  if (state_->plan.next(now) != before) state_->changed.notify_one();
}

void Sidecar::finish() {
  const std::lock_guard lock(state_->mutex);
  state_->plan.finish();
  state_->isFinishing = true;
  state_->changed.notify_one();
}

}  // namespace kelvora::server
