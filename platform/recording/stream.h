#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "platform/recording/format.h"

namespace kelvora::recording {

/// A file that is no recording, or a damaged one.
class Damaged : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Takes the contents of a recording, in order. Compressing and storing them is left to the platform.
class Sink {
 public:
  virtual ~Sink() = default;
  /// False after an error. From then on nothing is taken.
  virtual bool isGood() const = 0;
  virtual void put(std::string_view contents) = 0;
  /// Secures everything, so that it survives the end of the process.
  virtual void flush() = 0;
  /// Ends the recording. Nothing follows.
  virtual void finish() = 0;
};

/// Writes numbers and texts into a sink.
class Writer {
 public:
  explicit Writer(std::unique_ptr<Sink> sink) : sink_(std::move(sink)) {}
  ~Writer() { finish(); }
  Writer(const Writer&) = delete;
  Writer& operator=(const Writer&) = delete;

  bool isGood() const { return sink_->isGood(); }

  void byte(std::uint8_t value, Plane plane = Plane::Records);
  void number(std::uint64_t value, Plane plane = Plane::Records);
  void whole(std::int64_t value, Plane plane = Plane::Records);
  void real(float value, Plane plane = Plane::Records);
  void text(std::string_view value);
  void raw(std::string_view value);
  /// A coordinate in twips, in its plane. Whole pixels near the last one there are short.
  void coordinate(float value, Plane plane);

  void flush();
  void finish();

 private:
  void putBlock();

  std::unique_ptr<Sink> sink_;
  std::array<std::string, planeCount> planes_;
  std::size_t size_ = 0;  ///< of all planes
  std::array<float, planeCount> last_{};
};

/// Reads what Writer has written. Throws Damaged.
class Reader {
 public:
  /// Supplies the next bytes of the uncompressed contents; empty at their end.
  using Source = std::function<std::string()>;
  explicit Reader(Source source) : source_(std::move(source)) {}

  /// True at the end of the last whole block. A killed game's file ends in the middle of one.
  bool isAtEnd();
  std::uint8_t byte(Plane plane = Plane::Records);
  std::uint64_t number(Plane plane = Plane::Records);
  std::int64_t whole(Plane plane = Plane::Records);
  /// A whole number from `minimum` to `maximum`.
  int within(int minimum, int maximum);
  float real(Plane plane = Plane::Records);
  std::string text(std::size_t limit);
  /// Appends the next bytes.
  void raw(std::uint64_t size, std::string& bytes);
  float coordinate(Plane plane);

  /// Thrown where the contents end within a number or a text.
  struct Truncated {};

 private:
  struct Bytes {
    std::string all;
    std::size_t at = 0;
    bool isEmpty() const { return at == all.size(); }
  };
  /// Makes sure that the plane has a byte. False at the end.
  bool fill(Plane plane);
  bool readBlock();
  std::uint64_t headNumber();

  Source source_;
  Bytes contents_;
  std::array<Bytes, planeCount> planes_;
  std::array<float, planeCount> last_{};
};

}  // namespace kelvora::recording
