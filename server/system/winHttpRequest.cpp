#include <windows.h>
// Needs <windows.h>.
#include <winhttp.h>

#include <array>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <memory>
#include <mutex>

#include "server/system/webRequest.h"

namespace kelvora::server {

namespace {

using Clock = std::chrono::steady_clock;

/// A system thread's report about a request.
class Progress {
 public:
  void report(DWORD step) {
    const std::lock_guard lock(mutex_);
    step_ = step;
    changed_.notify_all();
  }

  /// Waits for this step. Returns false if the request fails or `isHopeless` becomes true.
  template <class Predicate>
  bool wait(DWORD step, Predicate isHopeless) {
    constexpr auto pause = std::chrono::milliseconds(50);
    std::unique_lock lock(mutex_);
    while (step_ != step) {
      if (step_ == WINHTTP_CALLBACK_STATUS_REQUEST_ERROR || isHopeless()) return false;
      changed_.wait_for(lock, pause);
    }
    step_ = 0;
    return true;
  }

  /// Waits for the last report, whatever the earlier ones were.
  void waitForEnd() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return step_ == WINHTTP_CALLBACK_STATUS_HANDLE_CLOSING; });
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  DWORD step_ = 0;  ///< the last one that was reported
};

void CALLBACK onProgress(HINTERNET, DWORD_PTR progress, DWORD step, LPVOID, DWORD) {
  if (progress != 0) reinterpret_cast<Progress*>(progress)->report(step);
}

struct Close {
  void operator()(HINTERNET handle) const { WinHttpCloseHandle(handle); }
};
using Handle = std::unique_ptr<void, Close>;

std::wstring wide(const std::string& ascii) { return {ascii.begin(), ascii.end()}; }

/// One request, which ends with this object.
class Exchange {
 public:
  explicit Exchange(const WebRequest& request)
      : request_(request), deadline_(Clock::now() + std::chrono::milliseconds(request.timeLimit)) {}
  Exchange(const Exchange&) = delete;
  Exchange& operator=(const Exchange&) = delete;
  ~Exchange() {
    if (!isWatched_) return;
    handle_.reset();
    // The system reports to this object until then.
    progress_.waitForEnd();
  }

  Outcome run(WebReply& reply) {
    if (!open()) return Outcome::refused("the URL is invalid");
    if (!send() || !reached(WINHTTP_CALLBACK_STATUS_SENDREQUEST_COMPLETE)) return Outcome::refused("no connection");
    if (WinHttpReceiveResponse(handle_.get(), nullptr) == FALSE ||
        !reached(WINHTTP_CALLBACK_STATUS_HEADERS_AVAILABLE)) {
      return Outcome::refused("no answer");
    }
    reply = {.status = status(), .body = {}};
    // The reply's text only explains a failure, so an incomplete one will do.
    while (reply.body.size() < request_.maxReply && readMore(reply.body)) {
    }
    return Outcome::done();
  }

 private:
  bool open() {
    const std::wstring url = wide(request_.url);
    std::array<wchar_t, 512> host{};
    URL_COMPONENTS parts{};
    parts.dwStructSize = sizeof parts;
    parts.lpszHostName = host.data();
    parts.dwHostNameLength = static_cast<DWORD>(host.size());
    parts.dwUrlPathLength = static_cast<DWORD>(-1);  // with the query that follows it
    parts.dwExtraInfoLength = static_cast<DWORD>(-1);
    if (WinHttpCrackUrl(url.c_str(), 0, 0, &parts) == FALSE) return false;
    const DWORD access = request_.usesProxy ? WINHTTP_ACCESS_TYPE_DEFAULT_PROXY : WINHTTP_ACCESS_TYPE_NO_PROXY;
    session_.reset(WinHttpOpen(wide(request_.agent).c_str(), access, nullptr, nullptr, WINHTTP_FLAG_ASYNC));
    if (!session_) return false;
    connection_.reset(WinHttpConnect(session_.get(), host.data(), parts.nPort, 0));
    if (!connection_) return false;
    const std::wstring target = std::wstring(parts.lpszUrlPath, parts.dwUrlPathLength) +
                                std::wstring(parts.lpszExtraInfo, parts.dwExtraInfoLength);
    const DWORD security = parts.nScheme == INTERNET_SCHEME_HTTPS ? WINHTTP_FLAG_SECURE : 0;
    handle_.reset(WinHttpOpenRequest(connection_.get(), wide(request_.method).c_str(), target.c_str(), nullptr, nullptr,
                                     nullptr, security));
    return handle_ != nullptr;
  }

  bool send() {
    DWORD_PTR context = reinterpret_cast<DWORD_PTR>(&progress_);
    DWORD disabled = WINHTTP_DISABLE_REDIRECTS;
    if (WinHttpSetOption(handle_.get(), WINHTTP_OPTION_CONTEXT_VALUE, &context, sizeof context) == FALSE ||
        WinHttpSetOption(handle_.get(), WINHTTP_OPTION_DISABLE_FEATURE, &disabled, sizeof disabled) == FALSE ||
        WinHttpSetStatusCallback(handle_.get(), &onProgress,
                                 WINHTTP_CALLBACK_FLAG_ALL_COMPLETIONS | WINHTTP_CALLBACK_FLAG_HANDLES,
                                 0) == WINHTTP_INVALID_STATUS_CALLBACK) {
      return false;
    }
    isWatched_ = true;
    std::wstring headers = request_.key.empty() ? L"" : L"Authorization: Bearer " + wide(request_.key) + L"\r\n";
    if (!request_.json.empty()) headers += L"Content-Type: application/json\r\n";
    body_ = request_.json;
    const auto size = static_cast<DWORD>(body_.size());
    return WinHttpSendRequest(handle_.get(), headers.empty() ? nullptr : headers.c_str(),
                              static_cast<DWORD>(headers.size()), body_.data(), size, size, context) != FALSE;
  }

  bool reached(DWORD step) {
    return progress_.wait(
        step, [this] { return Clock::now() > deadline_ || (request_.isEnding != nullptr && *request_.isEnding); });
  }

  long status() const {
    DWORD status = 0;
    DWORD size = sizeof status;
    WinHttpQueryHeaders(handle_.get(), WINHTTP_QUERY_STATUS_CODE | WINHTTP_QUERY_FLAG_NUMBER, nullptr, &status, &size,
                        nullptr);
    return static_cast<long>(status);
  }

  bool readMore(std::string& body) {
    buffer_.assign(request_.maxReply, '\0');
    const auto room = static_cast<DWORD>(request_.maxReply - body.size());
    if (WinHttpReadData(handle_.get(), buffer_.data(), room, nullptr) == FALSE ||
        !reached(WINHTTP_CALLBACK_STATUS_READ_COMPLETE)) {
      return false;
    }
    const std::string text(buffer_.data(), strnlen(buffer_.data(), room));
    body += text;
    return !text.empty();
  }

  const WebRequest& request_;
  const Clock::time_point deadline_;
  Progress progress_;
  std::string body_;    // the system reads it while it sends
  std::string buffer_;  // the system fills it while it reads
  bool isWatched_ = false;
  Handle session_;
  Handle connection_;
  Handle handle_;
};

}  // namespace

Outcome sendRequest(const WebRequest& request, WebReply& reply) { return Exchange(request).run(reply); }

}  // namespace kelvora::server
