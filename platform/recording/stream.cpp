#include "platform/recording/stream.h"

#include <algorithm>
#include <cmath>

#include "base/bitCast.h"
#include "platform/recording/format.h"

namespace kelvora::recording {

namespace {

constexpr float step = 15;  // twips in a pixel
constexpr std::int64_t maxSteps = 1'000'000;

std::uint64_t zigzag(std::int64_t value) {
  return static_cast<std::uint64_t>(value) << 1 ^ static_cast<std::uint64_t>(value >> 63);
}

std::int64_t unzigzag(std::uint64_t value) {
  return static_cast<std::int64_t>(value >> 1) ^ -static_cast<std::int64_t>(value & 1);
}

}  // namespace

void Writer::number(std::uint64_t value) {
  constexpr std::uint64_t more = 128;
  for (; value >= more; value >>= 7) byte(static_cast<std::uint8_t>(value | more));
  byte(static_cast<std::uint8_t>(value));
}

void Writer::whole(std::int64_t value) { number(zigzag(value)); }

void Writer::real(float value) {
  const auto bits = bitCast<std::uint32_t>(value);
  for (const unsigned shift : {0U, 8U, 16U, 24U}) byte(static_cast<std::uint8_t>(bits >> shift & 255U));
}

void Writer::text(std::string_view value) {
  number(value.size());
  raw(value);
}

void Writer::raw(std::string_view value) {
  constexpr std::size_t maxPending = 64 * 1024;
  pending_ += value;
  if (pending_.size() > maxPending) putOut();
}

void Writer::putOut() {
  if (isGood()) sink_->put(pending_);
  pending_.clear();
}

void Writer::flush() {
  putOut();
  if (isGood()) sink_->flush();
}

void Writer::finish() {
  putOut();
  if (isGood()) sink_->finish();
}

// Steps are even numbers of the code, and 1 announces any other value.
void Writer::coordinate(float value, std::size_t place) {
  const float steps = (value - last_.at(place)) / step;
  const bool isShort = std::fabs(steps) <= static_cast<float>(maxSteps) && steps == std::floor(steps) &&
                       last_.at(place) + steps * step == value;
  if (isShort) {
    number(zigzag(static_cast<std::int64_t>(steps)) << 1);
  } else {
    number(1);
    real(value);
  }
  last_.at(place) = value;
}

bool Reader::fill() {
  if (at_ < bytes_.size()) return true;
  bytes_ = source_();
  at_ = 0;
  return !bytes_.empty();
}

bool Reader::isAtEnd() { return !fill(); }

std::uint8_t Reader::peek() {
  if (!fill()) throw Truncated{};
  return static_cast<std::uint8_t>(bytes_[at_]);
}

std::uint8_t Reader::byte() {
  const std::uint8_t value = peek();
  ++at_;
  return value;
}

std::uint64_t Reader::number() {
  constexpr std::uint8_t more = 128;
  std::uint64_t value = 0;
  for (unsigned shift = 0; shift < 64; shift += 7) {
    const std::uint8_t next = byte();
    value |= static_cast<std::uint64_t>(next & (more - 1U)) << shift;
    if (next < more) return value;
  }
  throw Damaged("a number is too long");
}

std::int64_t Reader::whole() { return unzigzag(number()); }

int Reader::within(int least, int most) {
  const std::int64_t value = whole();
  if (value < least || value > most) throw Damaged("a number is out of range");
  return static_cast<int>(value);
}

float Reader::real() {
  std::uint32_t bits = 0;
  for (const unsigned shift : {0U, 8U, 16U, 24U}) bits |= std::uint32_t{byte()} << shift;
  const auto value = bitCast<float>(bits);
  if (!std::isfinite(value)) throw Damaged("a number is infinite");
  return value;
}

std::string Reader::text(std::size_t limit) {
  const std::uint64_t size = number();
  if (size > limit) throw Damaged("a text is too long");
  std::string value;
  raw(size, value);
  return value;
}

void Reader::raw(std::uint64_t size, std::string& bytes) {
  while (size > 0) {
    if (!fill()) throw Truncated{};
    const auto part = static_cast<std::size_t>(std::min<std::uint64_t>(size, bytes_.size() - at_));
    bytes.append(bytes_, at_, part);
    at_ += part;
    size -= part;
  }
}

float Reader::coordinate(std::size_t place) {
  const std::uint64_t code = number();
  if (code == 1) {
    last_.at(place) = real();
  } else {
    const std::int64_t steps = unzigzag(code >> 1);
    if ((code & 1) != 0 || steps < -maxSteps || steps > maxSteps) throw Damaged("a coordinate is out of range");
    last_.at(place) += static_cast<float>(steps) * step;
  }
  if (std::fabs(last_.at(place)) > maxTwips) throw Damaged("a coordinate is out of range");
  return last_.at(place);
}

}  // namespace kelvora::recording
