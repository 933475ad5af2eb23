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

/// The game's keys are in lower case.
bool isSecret(const std::string& key) { return key.find("password") != std::string::npos; }

std::string_view told(bool isSecretText, const std::string& text) {
  return isSecretText && !text.empty() ? hidden : std::string_view(text);
}

/// The text of a box, as a recording may contain it. Some of it is hidden without changing its length.
std::string told(const TextBox& box) {
  const std::string& text = box.Text;
  const std::size_t kept = box.secretAt ? box.secretAt(text) : std::string::npos;
  if (kept == std::string::npos) return std::string(told(box.design.isSecret, text));
  return text.substr(0, kept) + std::string(text.size() - kept, '*');
}

/// True while a secret is being typed into the form.
bool isTypingSecret(Form& form) {
  const std::vector<Control*> controls = controlsOf(form);
  return std::any_of(controls.begin(), controls.end(), [](Control* control) {
    const auto* box = dynamic_cast<TextBox*>(control);
    return box != nullptr && box->secretAt && box->secretAt(box->Text) != std::string::npos;
  });
}

/// A key event's number without the letter that it tells. Keys that write nothing stay, such as Enter and the arrows.
int withoutLetter(EventId id, int code) {
  constexpr int firstLetter = 32;
  constexpr int firstWritingKey = 48;
  constexpr int keyF1 = 112;
  constexpr int keyF24 = 135;
  if (id == EventId::KeyPress) return code < firstLetter ? code : '*';
  const bool writes = code == firstLetter || (code >= firstWritingKey && (code < keyF1 || code > keyF24));
  return id == EventId::KeyDown && writes ? 0 : code;
}
float withoutLetter(EventId, float coordinate) { return coordinate; }

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
  tellLoss();
}

void Recorder::finish() {
  writer_.finish();
  isOver_ = true;
  tellLoss();
}

void Recorder::tellLoss() {
  if (!writer_.isGood() && onLoss) std::exchange(onLoss, nullptr)();
}

void Recorder::fault(const std::string& what) {
  if (isOver_) return;
  writer_.byte(static_cast<std::uint8_t>(Kind::Fault));
  writer_.text(what);
  finish();
}

/// Begins a frame's events with the sums of the state that the frame has left.
void Recorder::check() {
  if (++frames_ % checkInterval != 0 || !state_ || !isRecording()) return;
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
  return static_cast<float>(static_cast<double>((startOfDay_ + now_ - start_) % dayLength) / 1000);
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
  finish();
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
    visitHandlers(*control, [&](EventId id, auto& handler) { watch(form, number, index, id, handler); });
    if (auto* timer = dynamic_cast<IntervalTimer*>(control)) watchTimer(number, index, *timer);
    ++index;
  }
  command([&] { inner_.realize(form); });
}

template <class... Arguments>
void Recorder::watch(Form& form, std::uint64_t number, std::uint64_t control, EventId id,
                     std::function<void(Arguments...)>& handler) {
  if (!handler) return;
  handler = [this, &form, number, control, id, game = std::move(handler)](Arguments... arguments) {
    if (place_.isInGame) return game(arguments...);
    putSocketStates();
    begin(Kind::Event);
    putTime();
    putControl(number, control);
    writer_.byte(static_cast<std::uint8_t>(id));
    const bool isKey = id == EventId::KeyDown || id == EventId::KeyPress;
    [[maybe_unused]] const bool isSecretKey = isKey && isTypingSecret(form);
    (put(isSecretKey ? withoutLetter(id, arguments) : arguments), ...);
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
      return writer_.text(told(*textBox));
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
