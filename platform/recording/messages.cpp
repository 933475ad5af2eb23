#include "platform/recording/messages.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

#include "platform/recording/format.h"

namespace kelvora::recording {

namespace {

// A frame's start and end, and what separates its fields. They are the protocol's, but belong to the format of files.
constexpr char start = '\x80';
constexpr char end = '\x81';
constexpr char separator = '\x82';

constexpr std::int64_t maxValue = 999'999'999;

bool isDigit(char letter) { return '0' <= letter && letter <= '9'; }

/// A whole number as the game writes it: one to `maxDigits` digits without a leading zero.
std::optional<std::int64_t> wholeOf(std::string_view text, std::size_t maxDigits) {
  if (text.empty() || text.size() > maxDigits || (text[0] == '0' && text.size() > 1)) return std::nullopt;
  if (!std::all_of(text.begin(), text.end(), isDigit)) return std::nullopt;
  std::int64_t value = 0;
  for (const char digit : text) value = value * 10 + (digit - '0');
  return value;
}

constexpr std::array<Plane, 2> pointPlanes = {Plane::PointAcross, Plane::PointDown};

std::int64_t bounded(std::int64_t value) { return std::clamp<std::int64_t>(value, 0, maxValue); }

}  // namespace

Messages::Thousandths Messages::Track::expectedAcross() const { return bounded(2 * last[0] - before[0]); }

Messages::Thousandths Messages::Track::expectedDown(Thousandths across) const {
  const Thousandths down = last[1] - before[1];
  const Thousandths speed = std::abs(last[0] - before[0]) + std::abs(down);
  const Thousandths rest = speed - std::abs(across - last[0]);
  return bounded(last[1] + (down < 0 ? -rest : rest));
}

std::optional<Messages::Thousandths> Messages::coordinateOf(std::string_view text) {
  const std::size_t point = text.find('.');
  const auto whole = wholeOf(text.substr(0, point), 6);
  if (!whole) return std::nullopt;
  Thousandths value = *whole * 1000;
  if (point == std::string_view::npos) return value;
  const std::string_view fraction = text.substr(point + 1);
  if (fraction.empty() || fraction.size() > 3 || fraction.back() == '0') return std::nullopt;
  Thousandths weight = 100;
  for (const char digit : fraction) {
    if (!isDigit(digit)) return std::nullopt;
    value += (digit - '0') * weight;
    weight /= 10;
  }
  return value;
}

std::string Messages::textOf(Thousandths value) {
  std::string text = std::to_string(value / 1000);
  if (value % 1000 == 0) return text;
  std::string fraction = std::to_string(1000 + value % 1000).substr(1);
  fraction.resize(fraction.find_last_not_of('0') + 1);
  return text + "." + fraction;
}

/// The message at the start of the bytes, if it is one with a number and a point.
std::optional<Messages::Message> Messages::parse(std::string_view bytes) {
  const std::size_t close = bytes.find(end);
  if (close == std::string_view::npos || close < 3) return std::nullopt;
  const std::string_view fields = bytes.substr(2, close - 2);
  const std::size_t first = fields.find(separator);
  const std::size_t second = first == std::string_view::npos ? first : fields.find(separator, first + 1);
  if (second == std::string_view::npos) return std::nullopt;
  const auto node = wholeOf(fields.substr(0, first), 5);
  const auto x = coordinateOf(fields.substr(first + 1, second - first - 1));
  const auto y = coordinateOf(fields.substr(second + 1));
  if (!node || !x || !y) return std::nullopt;
  return Message{static_cast<std::uint8_t>(bytes[1]), static_cast<std::uint32_t>(*node), {*x, *y}, close + 1};
}

std::string Messages::textOf(const Message& message) {
  return std::string{start, static_cast<char>(message.id)} + std::to_string(message.node) + separator +
         textOf(message.point[0]) + separator + textOf(message.point[1]) + end;
}

// Each piece is the size of other bytes, doubled, and 1 more if a message follows them. Nothing of both is the end.
void Messages::write(Writer& writer, std::string_view bytes) {
  std::size_t other = 0;
  const auto piece = [&](std::size_t size, bool hasMessage) {
    writer.number(size << 1 | (hasMessage ? 1U : 0U));
    writer.raw(bytes.substr(0, size));
    bytes.remove_prefix(size);
  };
  while (other < bytes.size()) {
    other = std::min(bytes.find(start, other), bytes.size());
    const auto message = parse(bytes.substr(other));
    if (!message) {
      other = std::min(other + 1, bytes.size());
      continue;
    }
    piece(other, true);
    other = 0;
    bytes.remove_prefix(message->size);
    writer.byte(message->id);
    writer.number(message->node, Plane::Nodes);
    Track& track = trackOf(*message);
    for (std::size_t axis = 0; axis < 2; ++axis) {
      // Most have two decimals. Others are marked by the lowest bit.
      const Thousandths expected = axis == 0 ? track.expectedAcross() : track.expectedDown(message->point[0]);
      const bool isFine = message->point[axis] % 10 != 0;
      const Thousandths distance = isFine ? message->point[axis] - expected : message->point[axis] / 10 - expected / 10;
      writer.whole(distance * 2 + (isFine ? 1 : 0), pointPlanes[axis]);
    }
    track = {message->point, track.last};
  }
  if (other > 0) piece(other, false);
  writer.number(0);
}

std::string Messages::read(Reader& reader) {
  std::string bytes;
  while (const std::uint64_t piece = reader.number()) {
    if (bytes.size() + (piece >> 1) > maxPortion) throw Damaged("received bytes are too many");
    reader.raw(piece >> 1, bytes);
    if ((piece & 1) == 0) continue;
    Message message;
    message.id = reader.byte();
    message.node = static_cast<std::uint32_t>(reader.number(Plane::Nodes));
    Track& track = trackOf(message);
    for (std::size_t axis = 0; axis < 2; ++axis) {
      const Thousandths expected = axis == 0 ? track.expectedAcross() : track.expectedDown(message.point[0]);
      const std::int64_t code = reader.whole(pointPlanes[axis]);
      if (code < -4 * maxValue || code > 4 * maxValue) throw Damaged("a point is out of range");
      const bool isFine = code % 2 != 0;
      const Thousandths distance = (code - (isFine ? 1 : 0)) / 2;
      message.point[axis] = isFine ? expected + distance : (expected / 10 + distance) * 10;
      if (message.point[axis] < 0 || message.point[axis] > maxValue) throw Damaged("a point is out of range");
    }
    track = {message.point, track.last};
    bytes += textOf(message);
  }
  return bytes;
}

}  // namespace kelvora::recording
