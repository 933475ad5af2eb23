#include "platform/headless/headlessBackend.h"

#include <algorithm>
#include <cassert>

#include "platform/headless/blockGlyphs.h"
#include "platform/headless/headlessAudio.h"
#include "platform/headless/headlessScreen.h"
#include "platform/pictures/pictureFile.h"
#include "raster/surface.h"

namespace kelvora {

namespace {

// Static, because surfaces may print as long as the process lives.
BlockGlyphs blockGlyphs;

void givePeers(const std::shared_ptr<HeadlessScreen>& screen, Control& control) {
  if (!control.peer) control.peer = std::make_unique<HeadlessPeer>(screen, control);
  for (Control* child : control.children()) givePeers(screen, *child);
}

}  // namespace

HeadlessBackend::HeadlessBackend() : screen_(std::make_shared<HeadlessScreen>()) {
  screen_->machine = this;
  Surface::setGlyphSource(&blockGlyphs);
}

HeadlessBackend::~HeadlessBackend() { screen_->machine = nullptr; }

void HeadlessBackend::advance(Millis ms) {
  ticks += ms;
  seconds += static_cast<double>(ms) / 1000;
}

Millis HeadlessBackend::tickCount() {
  if (queriesPerTick > 0 && ++tickQueries_ % queriesPerTick == 0) advance(1);
  return ticks;
}

Control* HeadlessBackend::focus() const { return screen_->focus; }

HeadlessSocket& HeadlessBackend::socketOf(const Winsock& socket) {
  const auto& plugs = screen_->sockets;
  const auto plug =
      std::find_if(plugs.begin(), plugs.end(), [&socket](const auto& entry) { return entry.socket == &socket; });
  assert(plug != plugs.end() && "the socket was made on this machine");
  return *plug->peer;
}

float HeadlessBackend::random() {
  if (scriptedDraws.empty()) return generator.next();
  const float draw = scriptedDraws.front();
  scriptedDraws.pop_front();
  return draw;
}

void HeadlessBackend::randomize(float seed) {
  journal.emplace_back("randomize");
  seeds.push_back(seed);
  generator.randomize(seed);
}

void HeadlessBackend::doEvents(bool mayWait) {
  journal.emplace_back("DoEvents");
  ++doEventsCount;
  lastMayWait = mayWait;
  if (onDoEvents) onDoEvents();
  runEvents();
  runTimers();
}

void HeadlessBackend::runEvents() {
  while (!events_.empty()) {
    const std::function<void()> event = std::move(events_.front());
    events_.pop_front();
    event();
  }
}

void HeadlessBackend::runTimers() {
  // By index, because a handler may load or unload a form along with its timers.
  for (std::size_t i = 0; i < screen_->timers.size(); ++i) {
    HeadlessScreen::RunningTimer& running = screen_->timers[i];
    IntervalTimer& timer = *running.timer;
    if (!timer.Enabled || timer.Interval <= 0 || ticks < running.due) continue;
    running.due = ticks + timer.Interval;  // a timer fires once, however many intervals have passed
    if (timer.Timer) timer.Timer();
  }
}

void HeadlessBackend::messageBox(const std::string& text) {
  journal.push_back("box " + text);
  messageBoxes.push_back(text);
  if (onMessageBox) onMessageBox(text);
}

void HeadlessBackend::endProcess() {
  journal.emplace_back("end");
  throw ProcessEnded{};
}

PicturePointer HeadlessBackend::loadPicture(const std::string& file) {
  journal.push_back("picture " + file);
  return pictureSource ? pictureSource(file) : loadPictureFile(file);
}

std::string HeadlessBackend::readSetting(const std::string& section, const std::string& key,
                                         const std::string& fallback) {
  journal.push_back("read " + section + "/" + key);
  const auto stored = settings.find({section, key});
  return stored == settings.end() ? fallback : stored->second;
}

void HeadlessBackend::writeSetting(const std::string& section, const std::string& key, const std::string& value) {
  journal.push_back("write " + section + "/" + key + "=" + value);
  settings[{section, key}] = value;
}

std::unique_ptr<SocketPeer> HeadlessBackend::createSocket(Winsock& socket) {
  return std::make_unique<HeadlessSocket>(screen_, socket);
}

std::unique_ptr<SoundPeer> HeadlessBackend::createSound() { return std::make_unique<HeadlessSound>(screen_); }

std::unique_ptr<MusicPeer> HeadlessBackend::createMusic() { return std::make_unique<HeadlessMusic>(screen_); }

void HeadlessBackend::realize(Form& form) { givePeers(screen_, form); }

void HeadlessBackend::runModal(Form& form) {
  journal.push_back("modal " + form.Caption.get());
  modalForms.push_back(form.Caption);
  if (onModal) onModal(form);
  if (form.Visible) form.Hide();
}

}  // namespace kelvora
