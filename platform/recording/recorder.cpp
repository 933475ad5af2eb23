#include "platform/recording/recorder.h"

#include <algorithm>
#include <cmath>

#include "base/fault.h"
#include "platform/form.h"
#include "platform/grid.h"
#include "platform/recording/handlers.h"
#include "platform/recording/recordedPeers.h"
#include "platform/recording/secrets.h"
#include "platform/widgets.h"
#include "raster/surface.h"

namespace kelvora::recording {

namespace {

constexpr Millis saveInterval = 1000;        // ms
constexpr Millis waitingSaveInterval = 200;  // ms, where nothing may happen for long

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
      return writer_.text(toldText(*textBox));
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
