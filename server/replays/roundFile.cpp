#include "server/replays/roundFile.h"

#include <stdexcept>
#include <utility>

#include "base/recordingMagic.h"
#include "protocol/frameReader.h"
#include "protocol/frames.h"
#include "protocol/powerupTable.h"
#include "protocol/rules.h"
#include "server/replays/compression.h"

namespace kelvora::server {

namespace {

// A file begins with roundMagic and the format's version in one byte. The rest is a zlib stream.
constexpr char formatVersion = 1;

constexpr int bitsPerByte = 7;  // of a number
constexpr std::size_t maxNumber = std::size_t{1} << 31;

void appendNumber(std::string& bytes, std::size_t number) {
  for (; number >= 128; number >>= bitsPerByte) bytes += static_cast<char>(128 | (number & 127));
  bytes += static_cast<char>(number);
}

std::size_t bytesOf(std::size_t number) { return number < 128 ? 1 : 1 + bytesOf(number >> bitsPerByte); }

bool isPlayer(std::int16_t node) { return node > 0; }

/// True for a message with these fields, the first of which is a player's node.
template <wire::MessageId id>
bool isAboutPlayer(std::string_view fields) {
  const auto values = wire::fromServer<id>(fields);
  return values && isPlayer(std::get<0>(*values));
}

/// True for the messages that all players get. Others could change the spectator's own ghost.
bool belongsInRound(std::string_view frame) {
  if (frame.size() < 3 || frame.size() > wire::FrameReader::maxFrameLength + 2) return false;
  if (frame.front() != wire::frameStart || frame.back() != wire::frameEnd) return false;
  const std::string_view text = wire::textOf(frame);
  constexpr char ends[] = {wire::frameStart, wire::frameEnd};
  if (text.find_first_of(ends, 1, sizeof ends) != text.npos) return false;
  const auto message = wire::splitId(text);
  if (!message) return false;
  const std::string_view fields = message->fields;
  switch (message->id) {
    case wire::msgPlayerJoined: {
      const auto values = wire::fromServer<wire::msgPlayerJoined>(fields);
      if (!values || !isPlayer(std::get<0>(*values))) return false;
      const std::int16_t colour = std::get<1>(*values);
      return colour >= 0 && colour < rules::colourCount;
    }
    case wire::msgTailCapture: {
      const auto values = wire::fromServer<wire::msgTailCapture>(fields);
      return values && isPlayer(std::get<0>(*values)) && isPlayer(std::get<1>(*values));
    }
    case wire::msgPowerupOn: {
      const auto values = wire::fromServer<wire::msgPowerupOn>(fields);
      return values && isPlayer(std::get<0>(*values)) && isSlot(PowerupSlot{std::get<1>(*values)});
    }
    case wire::msgPlayerLeft:
      return isAboutPlayer<wire::msgPlayerLeft>(fields);
    case wire::msgPosition:
      return isAboutPlayer<wire::msgPosition>(fields);
    case wire::msgFunds:
      return isAboutPlayer<wire::msgFunds>(fields);
    case wire::msgRespawn:
      return isAboutPlayer<wire::msgRespawn>(fields);
    case wire::msgPowerupOff:
      return isAboutPlayer<wire::msgPowerupOff>(fields);
    case wire::msgChat:
      return isAboutPlayer<wire::msgChat>(fields);
    case wire::msgRoundOver:
      return wire::fromServer<wire::msgRoundOver>(fields).has_value();
    case wire::msgServerText:
      return wire::fromServer<wire::msgServerText>(fields).has_value();
    default:
      return false;
  }
}

}  // namespace

void Moments::add(Millis at, std::string_view frame) {
  const auto pause = static_cast<std::size_t>(at - length_);
  if (bytes_.size() + bytesOf(pause) + bytesOf(frame.size()) + frame.size() > maxSize || at > maxLength) return;
  length_ = at;
  appendNumber(bytes_, pause);
  appendNumber(bytes_, frame.size());
  bytes_ += frame;
}

std::optional<std::size_t> Moments::Reader::number() {
  std::size_t value = 0;
  for (int shift = 0; !rest_.empty() && shift < 5 * bitsPerByte; shift += bitsPerByte) {
    const auto byte = static_cast<unsigned char>(rest_.front());
    rest_.remove_prefix(1);
    value |= std::size_t{byte & 127U} << shift;
    if (byte < 128) return value < maxNumber ? std::optional(value) : std::nullopt;
  }
  return std::nullopt;
}

std::optional<Moment> Moments::Reader::next() {
  const auto pause = number();
  const auto size = pause ? number() : std::nullopt;
  if (!size || *size > rest_.size()) return std::nullopt;
  at_ += static_cast<Millis>(*pause);
  const Moment moment{at_, rest_.substr(0, *size)};
  rest_.remove_prefix(*size);
  return moment;
}

std::string roundFile(const Moments& round) {
  return std::string(roundMagic) + formatVersion + compressed(round.bytes());
}

Moments readRound(std::string_view file) {
  if (file.starts_with(gameMagic)) throw std::runtime_error("it is a game's recording, which kelvora-replay shows");
  if (!file.starts_with(roundMagic) || file.size() == roundMagic.size()) {
    throw std::runtime_error("it holds no recorded round");
  }
  const char version = file[roundMagic.size()];
  if (version != formatVersion) {
    throw std::runtime_error("its format " + std::to_string(static_cast<unsigned char>(version)) +
                             " needs another version of the server");
  }
  auto bytes = decompressed(file.substr(roundMagic.size() + 1), Moments::maxSize);
  if (!bytes) throw std::runtime_error("it is damaged or too large");
  Moments::Reader reader(*bytes);
  while (!reader.isAtEnd()) {
    const auto moment = reader.next();
    if (!moment || !belongsInRound(moment->frame)) throw std::runtime_error("it has a message that no round contains");
    if (moment->at > Moments::maxLength) throw std::runtime_error("it is too long");
  }
  return Moments(*std::move(bytes));
}

}  // namespace kelvora::server
