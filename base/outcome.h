#pragma once

#include <string>
#include <utility>

namespace kelvora {

/// The result of a request that may be refused: done, or the reason why not.
class [[nodiscard]] Outcome {
 public:
  static Outcome done() { return Outcome(false, {}); }
  static Outcome refused(std::string reason) { return Outcome(true, std::move(reason)); }

  bool isRefused() const { return isRefused_; }
  /// In words for the one who asked; empty if it was done.
  const std::string& reason() const { return reason_; }

 private:
  Outcome(bool isRefused, std::string reason) : isRefused_(isRefused), reason_(std::move(reason)) {}

  bool isRefused_;
  std::string reason_;
};

}  // namespace kelvora
