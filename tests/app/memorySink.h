#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "platform/recording/stream.h"

namespace kelvora {

/// Keeps the contents of a recording in a text.
class MemorySink : public recording::Sink {
 public:
  explicit MemorySink(std::string& contents) : contents_(contents) {}
  bool isGood() const override { return true; }
  void put(std::string_view contents) override { contents_ += contents; }
  void flush() override {}
  void finish() override {}

 private:
  std::string& contents_;
};

/// A recording's contents, all at once.
inline recording::Reader::Source sourceOf(std::string contents) {
  return [contents = std::move(contents)]() mutable { return std::exchange(contents, {}); };
}

}  // namespace kelvora
