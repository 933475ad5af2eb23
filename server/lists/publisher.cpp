#include "server/lists/publisher.h"

#include <curl/curl.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <thread>
#include <utility>

#include "server/lists/announcement.h"
#include "server/lists/publishSchedule.h"

namespace kelvora::server {

namespace {

using Clock = std::chrono::steady_clock;

constexpr long timeLimit = 10'000;        // ms for an announcement
constexpr long goodbyeTimeLimit = 2'000;  // ms
constexpr std::size_t maxReasonLength = 200;

Millis millisNow() {
  return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now().time_since_epoch()).count();
}

std::size_t onBody(char* bytes, std::size_t /*one*/, std::size_t size, void* body) {
  auto& text = *static_cast<std::string*>(body);
  text.append(bytes, std::min(size, maxReasonLength - text.size()));
  return size;
}

int onProgress(void* isEnding, curl_off_t /*toGet*/, curl_off_t /*got*/, curl_off_t /*toPut*/, curl_off_t /*put*/) {
  return *static_cast<std::atomic<bool>*>(isEnding) ? 1 : 0;
}

void initialiseOnce() {
  static const CURLcode result = curl_global_init(CURL_GLOBAL_DEFAULT);
  if (result != CURLE_OK) throw std::runtime_error("the HTTP client does not start");
}

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
      const Millis due = host ? schedule.due() : millisNow() + PublishSchedule::interval;
      if (const Millis wait = due - millisNow(); wait > 0) {
        changed.wait_for(lock, std::chrono::milliseconds(wait));
        continue;
      }
      schedule.begins(millisNow());
      sent = *host;
      lock.unlock();
      const std::string fault = request("POST", *sent, timeLimit);
      const std::string news = fault.empty() ? "published at " + url : "cannot publish at " + url + ": " + fault;
      if (news != said && !isEnding) log(said = news);
      lock.lock();
      schedule.ends(fault.empty());
    }
    lock.unlock();
    if (sent) request("DELETE", *sent, goodbyeTimeLimit);
  }

  /// Sends a request and returns the error; empty if there was none.
  std::string request(const char* method, const HostEntry& about, long limit) {
    const bool isGoodbye = method == std::string_view("DELETE");
    const std::string target = url + std::string(publishPath) + "?" + announcementQuery({version, about});
    const std::string bearer = "Authorization: Bearer " + key;
    const std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> curl(curl_easy_init(), &curl_easy_cleanup);
    if (!curl) return "the HTTP client does not start";
    std::unique_ptr<curl_slist, decltype(&curl_slist_free_all)> headers(nullptr, &curl_slist_free_all);
    if (!key.empty()) headers.reset(curl_slist_append(nullptr, bearer.c_str()));
    std::string body;
    const auto set = [&](CURLoption option, auto value) { curl_easy_setopt(curl.get(), option, value); };
    set(CURLOPT_URL, target.c_str());
    set(CURLOPT_PROTOCOLS_STR, "http,https");
    set(CURLOPT_POSTFIELDS, "");
    set(CURLOPT_CUSTOMREQUEST, method);
    set(CURLOPT_HTTPHEADER, headers.get());
    set(CURLOPT_USERAGENT, ("kelvora-server/" + version).c_str());
    set(CURLOPT_TIMEOUT_MS, limit);
    set(CURLOPT_NOSIGNAL, 1L);
    set(CURLOPT_WRITEFUNCTION, &onBody);
    set(CURLOPT_WRITEDATA, &body);
    set(CURLOPT_NOPROGRESS, isGoodbye ? 1L : 0L);  // aborts a running announcement at the end
    set(CURLOPT_XFERINFOFUNCTION, &onProgress);
    set(CURLOPT_XFERINFODATA, &isEnding);
    if (const CURLcode result = curl_easy_perform(curl.get()); result != CURLE_OK) return curl_easy_strerror(result);
    long status = 0;
    curl_easy_getinfo(curl.get(), CURLINFO_RESPONSE_CODE, &status);
    if (status == 200) return {};
    std::erase(body, '\n');
    return "status " + std::to_string(status) + (body.empty() ? "" : ", " + body);
  }
};

Publisher::Publisher(const std::string& url, std::string key, std::string version,
                     std::function<void(const std::string&)> log) {
  initialiseOnce();
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
  state_->host = std::move(host);
  state_->schedule.news();
  state_->changed.notify_one();
}

void Publisher::signOff() {
  const std::lock_guard lock(state_->mutex);
  state_->isEnding = true;
  state_->changed.notify_one();
}

}  // namespace kelvora::server
