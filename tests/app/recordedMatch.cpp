#include "tests/app/recordedMatch.h"

#include <cmath>
#include <memory>
#include <stdexcept>
#include <utility>

#include "app/gameState.h"
#include "base/fault.h"
#include "core/modMain.h"
#include "core/startUp.h"
#include "core/view.h"
#include "frontend/frmConnect.h"
#include "platform/recording/file.h"
#include "protocol/frames.h"
#include "protocol/wireFormat.h"

namespace kelvora {

namespace {

constexpr int keyReturn = 13;
constexpr std::size_t latency = 3;  // frames

}  // namespace

RecordedMatch::RecordedMatch(const std::string& file, const Rules& rules, Script script)
    : rules_(rules),
      script_(std::move(script)),
      recorder_(machine, std::make_unique<recording::RecordingFile>(file), gameState),
      arena_(*this, appVersionText(), password, rules.seed, {.incomePerMinute = 600}),
      keeper_(arena_, {.count = rules.bots, .skill = rules.skill}, password, appVersionText(), rules.seed + 1) {
  machine.onDoEvents = [this] { onPass(); };
  machine.onMessageBox = [this](const std::string&) { ++boxes; };
  machine.queriesPerTick = 7;
  machine.settings = rules.settings;
}

void RecordedMatch::play() {
  installBackend(&recorder_);
  try {
    modMain::startGame();
  } catch (const ProcessEnded&) {
  } catch (const RuntimeFault& raised) {
    fault = raised.what();
    recorder_.fault(fault);
  }
  installBackend(&machine);
}

bool RecordedMatch::every(double seconds, double at) const {
  const auto frames = [this](double time) { return static_cast<int>(time * 1000 / rules_.frameMs); };
  return frame_ % frames(seconds) == frames(at);
}

void RecordedMatch::onPass() {
  if (isInPass_) return;  // a dialog processes events
  isInPass_ = true;
  ++frame_;
  machine.advance(rules_.frameMs);
  script_(*this);
  relay();
  if (frame_ * rules_.frameMs > rules_.seconds * 1000) frmMain->closedByUser();
  machine.journal.clear();
  isInPass_ = false;
}

void RecordedMatch::relay() {
  const std::string bytes = std::exchange(server().sent, {});
  server().sends.clear();
  if (ourClient_ != 0 && server().state() == sckClosed) {
    arena_.disconnected(std::exchange(ourClient_, 0));
    toUs_.clear();
    underWay_.clear();
  }
  if (ourClient_ == 0 && server().state() == sckConnecting) {
    server().acceptConnection();
    ourClient_ = ++lastClient_;
    reader_.emplace();
    arena_.connected(ourClient_, machine.ticks);
  }
  if (ourClient_ != 0) {
    reader_->read(bytes, [this](std::string_view text) { arena_.received(ourClient_, text, machine.ticks); });
  }
  if (machine.ticks % 40 < rules_.frameMs) {
    arena_.tick(machine.ticks);
    keeper_.tick(machine.ticks);
  }
  underWay_.push_back(std::exchange(toUs_, {}));
  if (underWay_.size() <= latency) return;
  if (const std::string arrived = std::exchange(underWay_.front(), {}); !arrived.empty()) server().deliver(arrived);
  underWay_.pop_front();
}

void RecordedMatch::send(server::ClientId client, const std::string& frame) {
  if (server::isBot(client)) return keeper_.hear(client, frame, machine.ticks);
  if (client == ourClient_) toUs_ += frame;
}

void RecordedMatch::hangUp(server::ClientId client) {
  if (server::isBot(client)) keeper_.hangUp(client);
}

// The user.

void RecordedMatch::logIn(const std::string& itsPassword) {
  if (!frmConnect.isVisible()) throw std::logic_error("the connect dialog isn't open");
  frmConnect->txtPlayerName.Text.adopt("Ann");
  frmConnect->txtServerPassword.Text.adopt(itsPassword);
  frmConnect->txtServerPassword.SelStart.adopt(static_cast<int>(itsPassword.size()));
  frmConnect->cmdConnect.Click();
}

void RecordedMatch::reconnect(const std::string& itsPassword) {
  machine.onModal = [this, itsPassword](Form&) { logIn(itsPassword); };
  frmMain->mnuFileConnect.Click();
}

void RecordedMatch::type(const std::string& line) {
  frmMain->txtChat.Text.adopt(line);
  frmMain->txtChat.KeyDown(keyReturn, 0);
  frmMain->txtChat.KeyPress(keyReturn);
}

void RecordedMatch::steer() {
  const auto time = static_cast<float>(frame_);
  const float angle = time * 0.012F + std::sin(time * 0.0007F);
  const Vector centre = modMain::getCanvasCentre();
  const auto place = [](float twips) { return std::floor(twips / 15) * 15; };
  frmMain->canvas.MouseMove(0, 0, place(centre.x * (1 + 0.9F * std::cos(angle))),
                            place(centre.y * (1 + 0.9F * std::sin(angle))));
}

void RecordedMatch::respawn() {
  if (!modMain::world.localPlayer.alive) frmMain->btnSpawn.Click();
}

void RecordedMatch::losePower() { server().closeByServer(); }

}  // namespace kelvora
