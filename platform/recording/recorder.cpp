#include "platform/recording/recorder.h"

#include <algorithm>
#include <cmath>

#include "base/fault.h"
#include "platform/audio.h"
#include "platform/form.h"
#include "platform/grid.h"
#include "platform/recording/handlers.h"
#include "platform/recording/recordedPeers.h"
#include "platform/widgets.h"
#include "raster/surface.h"

namespace kelvora::recording {

namespace {

/// Takes the place of a password.
constexpr std::string_view hidden = "hidden";

constexpr Millis saveInterval = 1000;        // ms
constexpr Millis waitingSaveInterval = 200;  // ms, where nothing may happen for long

bool isSecret(const std::string& key) { return key.find("password") != std::string::npos; }

std::string_view told(bool isSecretText, const std::string& text) {
  return isSecretText && !text.empty() ? hidden : std::string_view(text);
}

}  // namespace

Recorder::Recorder(Backend& inner, std::unique_ptr<Sink> sink, GameState state)
    : inner_(inner),
      writer_(std::move(sink)),
      state_(std::move(state)),
      now_(inner.tickCount()),
      start_(now_),
      saved_(now_),
      startOfDay_(std::llround(static_cast<double>(inner.secondsSinceMidnight()) * 1000)),
      sockets_(std::make_shared<RecordedSockets>()) {
  writer_.text(appVersionText());
  writer_.whole(now_);
  writer_.whole(startOfDay_);
  glyphs_ = std::make_unique<RecordedGlyphs>(*this, Surface::glyphSource());
  Surface::setGlyphSource(glyphs_.get());
  installSeamWatch(this);
}

Recorder::~Recorder() {
  installSeamWatch(nullptr);
  Surface::setGlyphSource(glyphs_->inner());
}

Recorder::Place Recorder::leave(bool isAwaited, bool mayWait) {
  ++calls_;
  return std::exchange(place_, Place{false, isAwaited, mayWait, place_.handlers});
}

void Recorder::comeBack(const Place& before) {
  putSocketStates();
  if (place_.isOpen) {
    begin(Kind::Return);
    putTime();
    save();
  }
  place_ = before;
}

void Recorder::begin(Kind kind) {
  if (!place_.isInGame && !place_.isOpen) {
    writer_.byte(static_cast<std::uint8_t>(Kind::Call));
    writer_.number(calls_);
    place_.isOpen = true;
  }
  writer_.byte(static_cast<std::uint8_t>(kind));
  calls_ = 0;
  coordinatePlane_ = Plane::Across;
}

void Recorder::putTime() {
  const Millis now = std::max(inner_.tickCount(), now_);
  writer_.number(static_cast<std::uint64_t>(now - now_), Plane::Times);
  now_ = now;
}

void Recorder::putSocketStates() {
  std::uint64_t number = 0;
  for (RecordedSocket* const socket : *sockets_) {
    if (socket != nullptr && socket->hasNewState()) {
      begin(Kind::SocketState);
      writer_.number(number);
      writer_.byte(static_cast<std::uint8_t>(socket->takeState()));
    }
    ++number;
  }
}

void Recorder::putControl(std::uint64_t form, std::uint64_t control) {
  writer_.number(form);
  writer_.number(control);
}

void Recorder::save() {
  const Millis interval = place_.mayWait ? waitingSaveInterval : saveInterval;
  if (now_ - saved_ < interval) return;
  saved_ = now_;
  writer_.flush();
}

void Recorder::fault(const std::string& what) {
  if (!isRecording()) return;
  writer_.byte(static_cast<std::uint8_t>(Kind::Fault));
  writer_.text(what);
  writer_.finish();
}

/// Begins a frame's events with the sums of the state that the frame has left.
void Recorder::check() {
  if (++frames_ % checkInterval != 0 || !state_) return;
  const std::vector<StatePart> parts = state_();
  begin(Kind::Check);
  writer_.number(parts.size());
  for (const StatePart& part : parts) {
    if (!isNamed_) writer_.text(part.name);
  }
  isNamed_ = true;
  for (const StatePart& part : parts) {
    for (const std::uint8_t byte : part.recorded()) writer_.byte(byte);
  }
}

// The services.

Millis Recorder::tickCount() {
  if (!place_.isInGame) return inner_.tickCount();
  ++calls_;
  if (inner_.tickCount() > now_) {
    const std::uint64_t calls = calls_;
    begin(Kind::Tick);
    writer_.number(calls);
    putTime();
  }
  return now_;
}

float Recorder::secondsSinceMidnight() {
  if (!place_.isInGame) return inner_.secondsSinceMidnight();
  constexpr std::int64_t day = 24 * 3600 * 1000;
  return static_cast<float>(static_cast<double>((startOfDay_ + now_ - start_) % day) / 1000);
}

void Recorder::doEvents(bool mayWait) {
  callOut(true, mayWait, [&] {
    if (!mayWait && place_.handlers == 0) check();
    inner_.doEvents(mayWait);
  });
}

void Recorder::messageBox(const std::string& text) {
  callOut(true, true, [&] { inner_.messageBox(text); });
}

void Recorder::runModal(Form& form) {
  callOut(true, true, [&] { inner_.runModal(form); });
}

void Recorder::endProcess() {
  writer_.byte(static_cast<std::uint8_t>(Kind::End));
  writer_.finish();
  inner_.endProcess();
  std::abort();  // not reached
}

void Recorder::placePointer(int x, int y) {
  command([&] { inner_.placePointer(x, y); });
}

std::string Recorder::commandLine() {
  std::string line = inner_.commandLine();
  begin(Kind::CommandLine);
  writer_.text(line);
  return line;
}

std::string Recorder::webHost() {
  std::string host = inner_.webHost();
  begin(Kind::WebHost);
  writer_.text(host);
  return host;
}

PicturePointer Recorder::loadPicture(const std::string& path) {
  std::string fault;
  PicturePointer picture;
  try {
    picture = inner_.loadPicture(path);
  } catch (const RuntimeFault& reason) {
    fault = reason.what();
  }
  begin(Kind::Picture);
  writer_.text(fault);
  if (!fault.empty()) throw RuntimeFault(fault);
  return picture;
}

std::string Recorder::readSetting(const std::string& section, const std::string& key, const std::string& fallback) {
  std::string value = inner_.readSetting(section, key, fallback);
  if (!place_.isInGame) return value;
  begin(Kind::Setting);
  writer_.text(told(isSecret(key), value));
  return value;
}

void Recorder::writeSetting(const std::string& section, const std::string& key, const std::string& value) {
  command([&] { inner_.writeSetting(section, key, value); });
}

std::unique_ptr<SocketPeer> Recorder::createSocket(Winsock& socket) {
  return std::make_unique<RecordedSocket>(*this, socket, inner_.createSocket(socket));
}

std::unique_ptr<SoundPeer> Recorder::createSound() {
  return std::make_unique<RecordedSound>(*this, inner_.createSound());
}

std::unique_ptr<MusicPeer> Recorder::createMusic() {
  return std::make_unique<RecordedMusic>(*this, inner_.createMusic());
}

// Forms.

void Recorder::realize(Form& form) {
  if (!place_.isInGame) {  // the backend's own window
    formNumbers_.erase(&form);
    return inner_.realize(form);
  }
  const std::uint64_t number = forms_++;
  formNumbers_[&form] = number;
  std::uint64_t index = 0;
  for (Control* control : controlsOf(form)) {
    visitHandlers(*control, [&](EventId id, auto& handler) { watch(number, index, id, handler); });
    if (auto* timer = dynamic_cast<IntervalTimer*>(control)) watchTimer(number, index, *timer);
    ++index;
  }
  command([&] { inner_.realize(form); });
}

template <class... Arguments>
void Recorder::watch(std::uint64_t form, std::uint64_t control, EventId id,
                     std::function<void(Arguments...)>& handler) {
  if (!handler) return;
  handler = [this, form, control, id, game = std::move(handler)](Arguments... arguments) {
    if (place_.isInGame) return game(arguments...);
    putSocketStates();
    begin(Kind::Event);
    putTime();
    putControl(form, control);
    writer_.byte(static_cast<std::uint8_t>(id));
    (put(arguments), ...);
    enterGame([&] { game(arguments...); });
  };
}

void Recorder::watchTimer(std::uint64_t form, std::uint64_t control, IntervalTimer& timer) {
  if (!timer.mayRest) return;
  timer.mayRest = [this, form, control, game = std::move(timer.mayRest)] {
    const bool rests = game();
    if (rests && !place_.isInGame) {
      begin(Kind::Resting);
      putControl(form, control);
    }
    return rests;
  };
}

void Recorder::watchSocket(std::size_t socket, SocketEventId id, std::function<void()>& handler) {
  if (!handler) return;
  handler = [this, socket, id, game = std::move(handler)] {
    if (place_.isInGame) return game();
    putSocketStates();
    begin(Kind::SocketEvent);
    putTime();
    writer_.number(socket);
    writer_.byte(static_cast<std::uint8_t>(id));
    enterGame(game);
  };
}

void Recorder::peerCallBegins() { peerCalls_.push_back(place_.isInGame ? leave(false, false) : place_); }

void Recorder::peerCallEnds() {
  const Place before = peerCalls_.back();
  peerCalls_.pop_back();
  if (before.isInGame) comeBack(before);
}

void Recorder::adopted(Control& control, PropertyId id) {
  if (place_.isInGame) return;
  auto* form = dynamic_cast<Form*>(&control.root());
  const auto number = formNumbers_.find(form);
  if (number == formNumbers_.end()) return;
  auto* textBox = dynamic_cast<TextBox*>(&control);
  const bool isSecretBox = textBox != nullptr && textBox->design.isSecret;
  if (isSecretBox && id == PropertyId::SelStart) return;
  const std::vector<Control*> controls = controlsOf(*form);
  begin(Kind::Adopted);
  putControl(number->second,
             static_cast<std::uint64_t>(std::find(controls.begin(), controls.end(), &control) - controls.begin()));
  writer_.byte(static_cast<std::uint8_t>(id));
  switch (id) {
    case PropertyId::Left:
      return writer_.real(control.Left);
    case PropertyId::Top:
      return writer_.real(control.Top);
    case PropertyId::Width:
      return writer_.real(control.Width);
    case PropertyId::Height:
      return writer_.real(control.Height);
    case PropertyId::Text:
      return writer_.text(told(isSecretBox, textBox->Text));
    case PropertyId::SelStart:
      return writer_.whole(textBox->SelStart);
    case PropertyId::Value:
      if (const auto* box = dynamic_cast<CheckBox*>(&control)) return writer_.whole(box->Value);
      return writer_.whole(dynamic_cast<Slider&>(control).Value);
    case PropertyId::CurrentCell:
      writer_.whole(dynamic_cast<Grid&>(control).Row);
      return writer_.whole(dynamic_cast<Grid&>(control).Col);
    default:
      return;
  }
}

}  // namespace kelvora::recording
