#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

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

  void byte(std::uint8_t value) { pending_ += static_cast<char>(value); }
  void number(std::uint64_t value);
  void whole(std::int64_t value);
  void real(float value);
  void text(std::string_view value);
  void raw(std::string_view value);
  /// A coordinate in twips. Whole pixels near the last one in the same place are short.
  void coordinate(float value, std::size_t place);

  void flush();
  void finish();

 private:
  void putOut();

  std::unique_ptr<Sink> sink_;
  std::string pending_;
  std::array<float, 2> last_{};
};

/// Reads what Writer has written. Throws Damaged.
class Reader {
 public:
  /// Supplies the next bytes of the uncompressed contents; empty at their end.
  using Source = std::function<std::string()>;
  explicit Reader(Source source) : source_(std::move(source)) {}

  /// True at the end. What a killed game has left ends in the middle of a record.
  bool isAtEnd();
  /// The next byte, which isn't consumed.
  std::uint8_t peek();
  std::uint8_t byte();
  std::uint64_t number();
  std::int64_t whole();
  /// A whole number from `least` to `most`.
  int within(int least, int most);
  float real();
  std::string text(std::size_t limit);
  /// Appends the next bytes.
  void raw(std::uint64_t size, std::string& bytes);
  float coordinate(std::size_t place);

  /// Thrown where the contents end within a number or a text.
  struct Truncated {};

 private:
  bool fill();

  Source source_;
  std::string bytes_;
  std::size_t at_ = 0;
  std::array<float, 2> last_{};
};

}  // namespace kelvora::recording
