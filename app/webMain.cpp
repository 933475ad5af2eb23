#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "app/recordGame.h"
#include "core/input.h"
#include "core/startUp.h"
#include "platform/recording/format.h"
#include "platform/web/page.h"
#include "platform/web/webBackend.h"
#include "platform/web/webPeer.h"
#include "rendering/actionIcons.h"

namespace modMain = kelvora::modMain;

namespace {

// A finger on a powerup's icon fires it, as its key does.
int iconKey(float x, float y) {
  const std::int16_t icon = modMain::actionIconAt(x, y);
  return icon > 0 ? kelvora::keyF1 + icon - 1 : 0;
}

/// The recording that the page keeps and compresses.
class PageRecording : public kelvora::recording::Sink {
 public:
  PageRecording() {
    const std::string head =
        std::string(kelvora::recording::magic) + static_cast<char>(kelvora::recording::formatVersion);
    page_beginRecording(head.data(), head.size());
  }
  bool isGood() const override { return isGood_; }
  void put(std::string_view contents) override {
    isGood_ = isGood_ && page_record(contents.data(), contents.size()) != 0;
  }
  void flush() override {}
  void finish() override {}

 private:
  bool isGood_ = true;
};

void startGame() {
  if (page_wantsRecording() == 0) return modMain::startGame();
  kelvora::recordGame(std::make_unique<PageRecording>(), "below");
}

}  // namespace

int main() {
  kelvora::setTouchHandler(iconKey);
  kelvora::runInPage(startGame);
}
