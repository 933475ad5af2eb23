#include "platform/headless/headlessScreen.h"

#include <utility>

#include "platform/pictureBox.h"

namespace kelvora {

HeadlessPeer::HeadlessPeer(std::shared_ptr<HeadlessScreen> screen, Control& control)
    : screen_(std::move(screen)), control_(control) {
  restartTimer();
}

HeadlessPeer::~HeadlessPeer() {
  if (screen_->focus == &control_) screen_->focus = nullptr;
  std::erase_if(screen_->timers, [this](const auto& running) { return running.timer == &control_; });
}

void HeadlessPeer::changed(PropertyId id) {
  if (id == PropertyId::Width || id == PropertyId::Height) {
    if (auto* picture = dynamic_cast<PictureBox*>(&control_)) picture->fitImage();
  }
  if (id == PropertyId::Interval || id == PropertyId::Enabled) restartTimer();
  if (id != PropertyId::Visible || screen_->machine == nullptr) return;
  const auto* form = dynamic_cast<const Form*>(&control_);
  if (form == nullptr) return;
  screen_->machine->journal.push_back((form->Visible ? "show " : "hide ") + form->Caption.get());
}

void HeadlessPeer::restartTimer() {
  auto* timer = dynamic_cast<IntervalTimer*>(&control_);
  if (timer == nullptr || screen_->machine == nullptr) return;
  std::erase_if(screen_->timers, [timer](const auto& running) { return running.timer == timer; });
  screen_->timers.push_back({timer, screen_->machine->ticks + timer->Interval});
}

}  // namespace kelvora
