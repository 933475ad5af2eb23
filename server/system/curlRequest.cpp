#include <curl/curl.h>

#include <algorithm>
#include <memory>

#include "server/system/webRequest.h"

namespace kelvora::server {

namespace {

struct Body {
  std::string& text;
  std::size_t maxSize;
};

std::size_t onBody(char* bytes, std::size_t /*one*/, std::size_t size, void* target) {
  const auto& body = *static_cast<Body*>(target);
  body.text.append(bytes, std::min(size, body.maxSize - body.text.size()));
  return size;
}

int onProgress(void* isEnding, curl_off_t /*toGet*/, curl_off_t /*got*/, curl_off_t /*toPut*/, curl_off_t /*put*/) {
  return *static_cast<const std::atomic<bool>*>(isEnding) ? 1 : 0;
}

bool isInitialised() {
  static const CURLcode result = curl_global_init(CURL_GLOBAL_DEFAULT);
  return result == CURLE_OK;
}

}  // namespace

Outcome sendRequest(const WebRequest& request, WebReply& reply) {
  const std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> curl(isInitialised() ? curl_easy_init() : nullptr,
                                                                 &curl_easy_cleanup);
  if (!curl) return Outcome::refused("the HTTP library failed to start");
  std::unique_ptr<curl_slist, decltype(&curl_slist_free_all)> headers(nullptr, &curl_slist_free_all);
  const auto addHeader = [&](const std::string& line) {
    headers.reset(curl_slist_append(headers.release(), line.c_str()));
  };
  if (!request.key.empty()) addHeader("Authorization: Bearer " + request.key);
  if (!request.json.empty()) addHeader("Content-Type: application/json");
  reply = {};
  Body body{reply.body, request.maxReply};
  const auto set = [&](CURLoption option, auto value) { curl_easy_setopt(curl.get(), option, value); };
  set(CURLOPT_URL, request.url.c_str());
  set(CURLOPT_PROTOCOLS_STR, "http,https");
  set(CURLOPT_POSTFIELDS, request.json.c_str());
  set(CURLOPT_CUSTOMREQUEST, request.method.c_str());
  set(CURLOPT_HTTPHEADER, headers.get());
  set(CURLOPT_USERAGENT, request.agent.c_str());
  set(CURLOPT_TIMEOUT_MS, request.timeLimit);
  set(CURLOPT_NOSIGNAL, 1L);
  if (!request.usesProxy) set(CURLOPT_NOPROXY, "*");
  set(CURLOPT_WRITEFUNCTION, &onBody);
  set(CURLOPT_WRITEDATA, &body);
  set(CURLOPT_NOPROGRESS, request.isEnding == nullptr ? 1L : 0L);
  set(CURLOPT_XFERINFOFUNCTION, &onProgress);
  set(CURLOPT_XFERINFODATA, request.isEnding);
  set(CURLOPT_QUICK_EXIT, 1L);  // doesn't wait for a name server that doesn't answer
  if (const CURLcode result = curl_easy_perform(curl.get()); result != CURLE_OK) {
    return Outcome::refused(curl_easy_strerror(result));
  }
  curl_easy_getinfo(curl.get(), CURLINFO_RESPONSE_CODE, &reply.status);
  return Outcome::done();
}

}  // namespace kelvora::server
