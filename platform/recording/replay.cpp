#include "platform/recording/replay.h"

#include <algorithm>
#include <array>
#include <exception>
#include <iterator>
#include <type_traits>
#include <utility>

#include "base/fault.h"
#include "platform/form.h"
#include "platform/recording/handlers.h"
#include "platform/recording/replayedPeers.h"
#include "raster/surface.h"

namespace kelvora::recording {

namespace {

constexpr Millis maxTick = 1'000'000'000'000'000;  // ms
constexpr std::size_t maxDifferences = 10;

const char* nameOf(Kind kind) {
  static constexpr const char* names[] = {"nothing",           "the end of events", "events",
                                          "the clock",         "an event",          "a change by the user",
                                          "a timer's pause",   "a socket's state",  "a socket's event",
                                          "received bytes",    "a setting",         "the command line",
                                          "the web host",      "a picture",         "a sound",
                                          "the music's state", "a letter",          "a line height",
                                          "a comparison",      "a fault",           "the end"};
  static_assert(std::size(names) == static_cast<std::size_t>(Kind::End) + 1);
  return names[static_cast<std::size_t>(kind)];
}

[[noreturn]] void diverge(const std::string& game, Kind recorded) {
  throw ReplayEnd{ReplayEnd::Reason::Diverged,
                  "the game comes to " + game + ", the recorded one to " + nameOf(recorded)};
}

}  // namespace

/// The recorded letters.
class Replay::Glyphs : public GlyphSource {
 public:
  explicit Glyphs(Replay& replay) : replay_(replay) {}

  Glyph glyph(const FontSpec& font, unsigned char character) override {
    auto& letters = replay_.glyphs_[keyOf(font)];
    if (!letters.contains(character)) replay_.next();
    if (!letters.contains(character)) diverge("a letter", replay_.next());
    return letters.at(character);
  }

  int lineHeight(const FontSpec& font) override {
    if (!replay_.lineHeights_.contains(keyOf(font))) replay_.next();
    const auto height = replay_.lineHeights_.find(keyOf(font));
    if (height == replay_.lineHeights_.end()) diverge("a line height", replay_.next());
    return height->second;
  }

 private:
  static FontKey keyOf(const FontSpec& font) { return {font.family, font.size, font.bold}; }

  Replay& replay_;
};

Replay::Replay(Reader::Source source, std::string dataFolder, GameState state)
    : reader_(std::move(source)),
      dataFolder_(std::move(dataFolder)),
      state_(std::move(state)),
      glyphSource_(std::make_unique<Glyphs>(*this)),
      glyphSourceBefore_(Surface::glyphSource()),
      live_(std::make_shared<Live>()) {
  live_->replay = this;
  try {
    version_ = reader_.text(maxText);
    now_ = start_ = reader_.whole();
    startOfDay_ = reader_.whole();
  } catch (const Reader::Truncated&) {
    throw Damaged("it ends too early");
  }
  if (start_ < 0 || start_ > maxTick || startOfDay_ < 0 || startOfDay_ > dayLength)
    throw Damaged("its time is out of range");
  Surface::setGlyphSource(glyphSource_.get());
  installSeamWatch(this);
}

Replay::~Replay() {
  live_->replay = nullptr;
  installSeamWatch(nullptr);
  Surface::setGlyphSource(glyphSourceBefore_);
}

void Replay::Live::tell(const Sounding& sounding) const {
  if (replay != nullptr && replay->onSound) replay->onSound(sounding);
}

// Reading.

Kind Replay::next() {
  while (!next_) {
    if (reader_.isAtEnd()) throw ReplayEnd{ReplayEnd::Reason::Ended, {}};
    const std::uint8_t byte = reader_.byte();
    if (byte < static_cast<std::uint8_t>(Kind::Return) || byte > static_cast<std::uint8_t>(Kind::End)) {
      throw Damaged("a record is of an unknown kind");
    }
    const auto kind = static_cast<Kind>(byte);
    if (kind == Kind::Glyph) {
      takeGlyph();
    } else if (kind == Kind::LineHeight) {
      takeLineHeight();
    } else {
      if (kind == Kind::Call || kind == Kind::Tick) nextCall_ = reader_.number();
      next_ = kind;
    }
  }
  return *next_;
}

void Replay::consume() {
  next_.reset();
  calls_ = 0;
}

void Replay::expect(Kind kind) {
  if (next() != kind) diverge(nameOf(kind), next());
  consume();
}

Millis Replay::readTime() {
  const std::uint64_t passed = reader_.number(Plane::Times);
  if (passed > static_cast<std::uint64_t>(maxTick - now_)) throw Damaged("its time is out of range");
  return now_ + static_cast<Millis>(passed);
}

void Replay::rest() {
  const Millis next = readTime();
  if (onPause) onPause(next - start_);
  now_ = next;
}

Control& Replay::readControl() {
  const std::uint64_t form = reader_.number();
  const std::uint64_t control = reader_.number();
  if (form >= live_->forms.size() || live_->forms[static_cast<std::size_t>(form)] == nullptr) {
    throw Damaged("a window doesn't exist");
  }
  const std::vector<Control*> controls = controlsOf(*live_->forms[static_cast<std::size_t>(form)]);
  if (control >= controls.size()) throw Damaged("a control doesn't exist");
  return *controls[static_cast<std::size_t>(control)];
}

// The world.

void Replay::command() {
  ++calls_;
  if (next() != Kind::Call || nextCall_ != calls_) return;
  consume();
  playUntilReturn();
}

void Replay::playUntilReturn() {
  if (++nesting_ > maxNesting) throw Damaged("its events nest too deeply");
  for (Kind kind = next(); kind != Kind::Return; kind = next()) playRecord(kind);
  consume();
  rest();
  --nesting_;
}

void Replay::playRecord(Kind kind) {
  consume();
  switch (kind) {
    case Kind::Event:
      return playEvent();
    case Kind::SocketEvent:
      return playSocketEvent();
    case Kind::Adopted:
      return adopt();
    case Kind::Check:
      return compare();
    case Kind::Resting:
      if (auto* timer = dynamic_cast<IntervalTimer*>(&readControl())) timer->isResting = true;
      return;
    case Kind::SocketState: {
      const std::uint64_t number = reader_.number();
      const int state = reader_.byte();
      if (number >= live_->sockets.size() || state > sckError) throw Damaged("a socket doesn't exist");
      if (ReplayedSocket* socket = live_->sockets[static_cast<std::size_t>(number)]) {
        socket->setState(static_cast<SocketState>(state));
      }
      return;
    }
    default:
      diverge("events", kind);
  }
}

template <class Handler>
void Replay::runHandler(const Handler& handler) {
  ++handlers_;
  try {
    handler();
  } catch (const Damaged&) {
    throw;
  } catch (const std::exception& fault) {
    readFault();
    throw ReplayEnd{ReplayEnd::Reason::Fault, fault.what()};
  }
  --handlers_;
}

void Replay::readFault() {
  try {
    if (next() == Kind::Fault) recordedFault_ = reader_.text(maxText);
  } catch (const ReplayEnd&) {  // a killed game may have lost it
  } catch (const Reader::Truncated&) {
  }
}

void Replay::playEvent() {
  rest();
  Control& control = readControl();
  const auto* form = dynamic_cast<Form*>(&control.root());
  const std::uint8_t id = reader_.byte();
  std::function<void()> call;
  Plane plane = Plane::Across;
  const auto read = [&]<class Argument>(Argument) -> Argument {
    if constexpr (std::is_same_v<Argument, int>) {
      constexpr int maximum = 1'000'000;
      return reader_.within(-maximum, maximum);
    } else {
      return reader_.coordinate(std::exchange(plane, Plane::Down));
    }
  };
  visitHandlers(control, [&]<class... Arguments>(EventId known, std::function<void(Arguments...)>& handler) {
    if (call || static_cast<std::uint8_t>(known) != id) return;
    if (!handler || form->isUnloaded()) throw Damaged("a control doesn't take an event");
    const std::tuple<Arguments...> arguments{read(Arguments{})...};
    call = [copy = handler, arguments] { std::apply(copy, arguments); };
  });
  if (!call) throw Damaged("an event is of an unknown kind");
  // The handler is a copy and runs last, because it may destroy what it belongs to.
  runHandler(call);
}

void Replay::playSocketEvent() {
  rest();
  const std::uint64_t number = reader_.number();
  const auto id = static_cast<SocketEventId>(reader_.byte());
  ReplayedSocket* const socket =
      number < live_->sockets.size() ? live_->sockets[static_cast<std::size_t>(number)] : nullptr;
  if (socket == nullptr) throw Damaged("a socket doesn't exist");
  const Winsock& owner = socket->owner();
  const std::function<void()> handler = id == SocketEventId::Connect       ? owner.onConnect
                                        : id == SocketEventId::Close       ? owner.onClose
                                        : id == SocketEventId::DataArrival ? owner.onDataArrival
                                                                           : nullptr;
  if (!handler) throw Damaged("a socket doesn't take an event");
  runHandler(handler);
}

void Replay::compare() {
  const std::uint64_t count = reader_.number();
  if (count > maxParts) throw Damaged("a comparison has too many parts");
  if (checks_++ == 0) {
    for (std::uint64_t i = 0; i < count; ++i) partNames_.push_back(reader_.text(maxName));
  }
  if (count != partNames_.size()) throw Damaged("a comparison lacks parts");
  const std::vector<StatePart> parts = state_ ? state_() : std::vector<StatePart>();
  Difference difference{frames_, elapsed(), {}};
  for (const std::string& name : partNames_) {
    const std::array<std::uint8_t, 2> recorded{reader_.byte(), reader_.byte()};
    const auto part = std::find_if(parts.begin(), parts.end(), [&](const StatePart& own) { return own.name == name; });
    if (part != parts.end() && part->recorded() != recorded) difference.parts.push_back(name);
  }
  if (!difference.parts.empty() && differences_.size() < maxDifferences) differences_.push_back(difference);
}

Replay::FontKey Replay::readFont() {
  FontKey key{reader_.text(maxName), reader_.real(), false};
  std::get<bool>(key) = reader_.byte() != 0;
  return key;
}

void Replay::takeGlyph() {
  const FontKey key = readFont();
  const std::uint8_t character = reader_.byte();
  Glyph glyph;
  glyph.left = reader_.within(-maxGlyphSide, maxGlyphSide);
  glyph.top = reader_.within(-maxGlyphSide, maxGlyphSide);
  glyph.width = reader_.within(0, maxGlyphSide);
  glyph.height = reader_.within(0, maxGlyphSide);
  glyph.advance = reader_.within(-maxGlyphSide, maxGlyphSide);
  const int size = glyph.width * glyph.height;
  for (int i = 0; i < size; ++i) glyph.coverage.push_back(reader_.byte());
  glyphBytes_ += sizeof glyph + glyph.coverage.size();
  if (glyphBytes_ > maxGlyphBytes) throw Damaged("it has too many letters");
  if (glyphs_.size() >= maxFonts && !glyphs_.contains(key)) throw Damaged("it has too many fonts");
  glyphs_[key][character] = std::move(glyph);
}

void Replay::takeLineHeight() {
  const FontKey key = readFont();
  if (lineHeights_.size() >= maxFonts && !lineHeights_.contains(key)) throw Damaged("it has too many fonts");
  lineHeights_[key] = reader_.within(0, maxGlyphSide);
}

}  // namespace kelvora::recording
