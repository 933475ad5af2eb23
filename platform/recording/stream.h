#pragma once

#include <array>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

namespace kelvora::recording {

/// A file that is no recording, or a damaged one.
class Damaged : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Compresses numbers and texts into a file. After an error it does nothing any more.
class Writer {
 public:
  /// Creates the file, or empties it.
  explicit Writer(const std::string& path);
  ~Writer();
  Writer(const Writer&) = delete;
  Writer& operator=(const Writer&) = delete;

  bool isBroken() const;

  void byte(std::uint8_t value) { pending_ += static_cast<char>(value); }
  void number(std::uint64_t value);
  void whole(std::int64_t value);
  void real(float value);
  void text(std::string_view value);
  void raw(std::string_view value) { pending_ += value; }
  /// A coordinate in twips. Whole pixels near the last one in the same place are short.
  void coordinate(float value, std::size_t place);

  /// Compresses what has been written so far.
  void compress();
  /// Passes everything to the system, so that it survives the end of the process.
  void flush();
  /// Ends the file.
  void finish();

  /// The bytes written to the file so far.
  std::uint64_t size() const { return size_; }

 private:
  struct Compressor;
  void deflate(int mode);
  void putOut(std::string_view bytes);

  std::FILE* file_ = nullptr;
  std::unique_ptr<Compressor> compressor_;
  std::string pending_;
  std::uint64_t size_ = 0;
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

/// The uncompressed contents of a recording's file. Throws Damaged if it is no recording or has a newer format.
Reader::Source openRecording(const std::string& path);

}  // namespace kelvora::recording
