#include "platform/web/webBackend.h"

#include <emscripten.h>

#include <algorithm>
#include <chrono>
#include <limits>
#include <optional>

#include "base/codePage.h"
#include "platform/form.h"
#include "platform/pictures/pictureFile.h"
#include "platform/web/page.h"
#include "platform/web/webGrid.h"
#include "platform/web/webPeer.h"
#include "platform/web/webSocket.h"
#include "platform/web/webSound.h"
#include "platform/windowing/boxText.h"
#include "platform/windowing/faultReport.h"
#include "platform/windowing/handlerCall.h"
#include "platform/windowing/polledTimers.h"
#include "raster/surface.h"

namespace kelvora {

namespace {

/// A page always runs at the design pace.
constexpr std::chrono::milliseconds designFrame(10);

constexpr double forever = std::numeric_limits<double>::infinity();

/// A text of the page's. `read` copies as much of it as there is room for, and returns its length, or -1 for none.
template <typename Read>
std::optional<std::string> pageText(Read read) {
  const int size = read(nullptr, 0);
  if (size < 0) return std::nullopt;
  std::string text(static_cast<std::size_t>(size), '\0');
  read(text.data(), text.size());
  return text;
}

std::string placePart(const char* part) {
  return pageText([part](char* buffer, std::size_t size) { return page_place(part, buffer, size); }).value();
}

/// Never returns: what the game has drawn stays behind the text.
void showFault(const std::string& error, const std::string& advice) {
  const std::string words = error + "\n" + advice + "\nReload the page to play again.";
  page_showEnd("Kelvora has stopped", words.data(), words.size());
  for (;;) page_wait(forever);
}

class MessageBox : public PageObject {
 public:
  explicit MessageBox(const std::string& text) { page_showBox(id(), text.data(), text.size()); }
  void take(const PageEvent& event) override { isClosed = event.kind == PageEventKind::Closed; }
  bool isClosed = false;
};

}  // namespace

WebBackend::WebBackend() : pacer_(designFrame) {
  Surface::setGlyphSource(&glyphs_);
  setFaultBox(showFault);
}

Millis WebBackend::tickCount() { return firstTick + static_cast<Millis>(emscripten_get_now()); }

float WebBackend::secondsSinceMidnight() { return static_cast<float>(page_secondsSinceMidnight()); }

void WebBackend::servePending() {
  const double end = emscripten_get_now() + maxServiceTime;
  while (servePageEvent() && emscripten_get_now() < end) {
  }
  serveTimers(tickCount());
}

/// Sleeps until an event comes, a timer is due or the milliseconds have passed.
void WebBackend::waitUntil(double milliseconds) {
  showStaleGrids();
  const Millis next = nextTimer();
  const double untilTimer =
      next == std::numeric_limits<Millis>::max() ? forever : std::max(0.0, static_cast<double>(next - tickCount()));
  page_wait(std::min(milliseconds, untilTimer));
}

void WebBackend::doEvents(bool mayWait) {
  const bool isOutermost = handlerDepth() == 0;
  if (isOutermost) releaseUnloadedForms();
  const HandlerScope scope;
  if (mayWait) {
    waitUntil(forever);
    servePending();
  } else if (isOutermost) {
    const auto end = pacer_.passEnd(FramePacer::TimePoint::clock::now());
    for (;;) {
      servePending();
      const std::chrono::duration<double, std::milli> left = end - FramePacer::TimePoint::clock::now();
      waitUntil(std::max(0.0, left.count()));
      if (left <= left.zero()) return;
    }
  } else if (handlerDepth() <= maxServiceDepth) {
    page_wait(0);
    servePending();
  }
}

void WebBackend::messageBox(const std::string& text) {
  const HandlerScope scope;
  std::string shown;
  for (const char16_t letter : boxText(text)) {
    if (const auto byte = toCodePage(letter)) shown += *byte;
  }
  MessageBox box(shown);
  while (!box.isClosed) {
    waitUntil(forever);
    servePending();
  }
}

void WebBackend::endProcess() {
  constexpr const char text[] = "You can close this page, or reload it to play again.";
  page_showEnd("Kelvora has ended", text, sizeof text - 1);
  for (;;) page_wait(forever);
}

std::string WebBackend::commandLine() { return placePart("arguments"); }

PicturePointer WebBackend::loadPicture(const std::string& path) {
  noteForReport("the picture " + path);
  return loadPictureFile(path);
}

std::string WebBackend::readSetting(const std::string& section, const std::string& key, const std::string& fallback) {
  noteForReport("the setting \"" + key + "\" in section \"" + section + "\" of this page's store");
  const auto stored = pageText(
      [&](char* buffer, std::size_t size) { return page_readSetting(section.c_str(), key.c_str(), buffer, size); });
  if (stored) return *stored;
  // On the first visit the server that has the page is the one to play on.
  if (section == "last login" && key == "server address") return placePart("hostname");
  if (section == "last login" && key == "server port") return placePart("port");
  return fallback;
}

void WebBackend::writeSetting(const std::string& section, const std::string& key, const std::string& value) {
  page_writeSetting(section.c_str(), key.c_str(), value.data(), value.size());
}

std::unique_ptr<SocketPeer> WebBackend::createSocket(Winsock& socket) {
  return std::make_unique<WebSocketPeer>(socket);
}

std::unique_ptr<SoundPeer> WebBackend::createSound() { return std::make_unique<WebSound>(); }

std::unique_ptr<MusicPeer> WebBackend::createMusic() { return std::make_unique<WebMusic>(); }

void WebBackend::realize(Form& form) { makePeer(form); }

void WebBackend::runModal(Form& form) {
  const HandlerScope scope;
  while (form.Visible) {
    waitUntil(forever);
    servePending();
  }
}

std::string WebBackend::webHost() { return placePart("host"); }

void runInPage(void (*game)()) {
  static WebBackend page;
  installBackend(&page);
  runGame(game);
  backend().endProcess();
}

}  // namespace kelvora
