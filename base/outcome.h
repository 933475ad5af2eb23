#pragma once

#include <string>
#include <utility>

namespace kelvora {

/// The result of a request that may be refused: done, or a reason.
class [[nodiscard]] Outcome {
 public:
  static Outcome done() { return Outcome(false, {}); }
  static Outcome refused(std::string reason) { return Outcome(true, std::move(reason)); }

  bool isRefused() const { return isRefused_; }
  /// A text for the requester; empty if done.
  const std::string& reason() const { return reason_; }

 private:
  Outcome(bool isRefused, std::string reason) : isRefused_(isRefused), reason_(std::move(reason)) {}

  bool isRefused_;
  std::string reason_;
};

}  // namespace kelvora
