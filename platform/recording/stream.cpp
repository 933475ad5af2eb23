#include "platform/recording/stream.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "base/bitCast.h"

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

std::size_t indexOf(Plane plane) { return static_cast<std::size_t>(plane); }

template <class Put>
void putNumber(std::uint64_t value, const Put& put) {
  constexpr std::uint64_t more = 128;
  for (; value >= more; value >>= 7) put(static_cast<std::uint8_t>(value | more));
  put(static_cast<std::uint8_t>(value));
}

template <class Next>
std::uint64_t readNumber(const Next& next) {
  constexpr std::uint8_t more = 128;
  std::uint64_t value = 0;
  for (unsigned shift = 0; shift < 64; shift += 7) {
    const std::uint8_t byte = next();
    value |= static_cast<std::uint64_t>(byte & (more - 1U)) << shift;
    if (byte < more) return value;
  }
  throw Damaged("a number is too long");
}

}  // namespace

void Writer::byte(std::uint8_t value, Plane plane) {
  if (size_ == maxBlock) putBlock();
  planes_[indexOf(plane)] += static_cast<char>(value);
  ++size_;
}

void Writer::number(std::uint64_t value, Plane plane) {
  putNumber(value, [&](std::uint8_t part) { byte(part, plane); });
}

void Writer::whole(std::int64_t value, Plane plane) { number(zigzag(value), plane); }

void Writer::real(float value, Plane plane) {
  const auto bits = bitCast<std::uint32_t>(value);
  for (const unsigned shift : {0U, 8U, 16U, 24U}) byte(static_cast<std::uint8_t>(bits >> shift & 255U), plane);
}

void Writer::text(std::string_view value) {
  number(value.size());
  raw(value);
}

void Writer::raw(std::string_view value) {
  for (const char letter : value) byte(static_cast<std::uint8_t>(letter));
}

// A block is its planes' sizes, then the planes. It may end anywhere, even within a number: reading needs the next one
// when all planes have been read.
void Writer::putBlock() {
  if (size_ == 0) return;
  std::string block;
  for (const std::string& plane : planes_) {
    putNumber(plane.size(), [&](std::uint8_t part) { block += static_cast<char>(part); });
  }
  for (std::string& plane : planes_) block += std::exchange(plane, {});
  size_ = 0;
  if (isGood()) sink_->put(block);
}

void Writer::flush() {
  putBlock();
  if (isGood()) sink_->flush();
}

void Writer::finish() {
  putBlock();
  if (isGood()) sink_->finish();
}

// Steps are even numbers of the code, and 1 announces any other value.
void Writer::coordinate(float value, Plane plane) {
  float& last = last_[indexOf(plane)];
  const float steps = (value - last) / step;
  const bool isShort =
      std::fabs(steps) <= static_cast<float>(maxSteps) && steps == std::floor(steps) && last + steps * step == value;
  if (isShort) {
    number(zigzag(static_cast<std::int64_t>(steps)) << 1, plane);
  } else {
    number(1, plane);
    real(value, plane);
  }
  last = value;
}

std::uint64_t Reader::headNumber() {
  return readNumber([this] {
    if (contents_.isEmpty()) contents_ = {source_(), 0};
    if (contents_.isEmpty()) throw Truncated{};
    return static_cast<std::uint8_t>(contents_.all[contents_.at++]);
  });
}

bool Reader::readBlock() {
  std::array<std::uint64_t, planeCount> sizes{};
  std::uint64_t size = 0;
  try {
    for (std::uint64_t& part : sizes) {
      part = headNumber();
      if (part > maxBlock || (size += part) > maxBlock) throw Damaged("a block is too large");
    }
  } catch (const Truncated&) {
    return false;
  }
  std::array<Bytes, planeCount> block;
  for (std::size_t i = 0; i < planeCount; ++i) {
    while (block[i].all.size() < sizes[i]) {
      if (contents_.isEmpty()) contents_ = {source_(), 0};
      if (contents_.isEmpty()) return false;
      const auto part = static_cast<std::size_t>(
          std::min<std::uint64_t>(sizes[i] - block[i].all.size(), contents_.all.size() - contents_.at));
      block[i].all.append(contents_.all, contents_.at, part);
      contents_.at += part;
    }
  }
  planes_ = std::move(block);
  return true;
}

bool Reader::fill(Plane plane) {
  while (planes_[indexOf(plane)].isEmpty()) {
    for (const Bytes& other : planes_) {
      if (!other.isEmpty()) throw Damaged("a block's planes don't fit together");
    }
    if (!readBlock()) return false;
  }
  return true;
}

bool Reader::isAtEnd() { return !fill(Plane::Records); }

std::uint8_t Reader::byte(Plane plane) {
  if (!fill(plane)) throw Truncated{};
  Bytes& bytes = planes_[indexOf(plane)];
  return static_cast<std::uint8_t>(bytes.all[bytes.at++]);
}

std::uint64_t Reader::number(Plane plane) {
  return readNumber([&] { return byte(plane); });
}

std::int64_t Reader::whole(Plane plane) { return unzigzag(number(plane)); }

int Reader::within(int minimum, int maximum) {
  const std::int64_t value = whole();
  if (value < minimum || value > maximum) throw Damaged("a number is out of range");
  return static_cast<int>(value);
}

float Reader::real(Plane plane) {
  std::uint32_t bits = 0;
  for (const unsigned shift : {0U, 8U, 16U, 24U}) bits |= std::uint32_t{byte(plane)} << shift;
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
  for (; size > 0; --size) bytes += static_cast<char>(byte());
}

float Reader::coordinate(Plane plane) {
  float& last = last_[indexOf(plane)];
  const std::uint64_t code = number(plane);
  if (code == 1) {
    last = real(plane);
  } else {
    const std::int64_t steps = unzigzag(code >> 1);
    if ((code & 1) != 0 || steps < -maxSteps || steps > maxSteps) throw Damaged("a coordinate is out of range");
    last += static_cast<float>(steps) * step;
  }
  if (std::fabs(last) > maxTwips) throw Damaged("a coordinate is out of range");
  return last;
}

}  // namespace kelvora::recording
