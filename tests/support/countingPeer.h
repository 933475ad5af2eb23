#pragma once

#include "platform/control.h"

namespace kelvora {

/// Counts how often a surface is presented.
class CountingPeer : public Peer {
 public:
  explicit CountingPeer(int& count) : count_(count) {}
  void changed(PropertyId) override {}
  void present() override { ++count_; }

 private:
  int& count_;
};

}  // namespace kelvora
