#pragma once

#include "platform/property.h"

namespace kelvora {

class Control;

/// Follows what passes between controls and their peers. Without a watch, nothing is followed. At most one exists.
class SeamWatch {
 public:
  virtual ~SeamWatch() = default;
  /// Called before and after a peer's function is called.
  virtual void peerCallBegins() = 0;
  virtual void peerCallEnds() = 0;
  /// Called after the user or the window system has changed a property.
  virtual void adopted(Control& control, PropertyId id) = 0;
};

/// Installs a watch; null uninstalls it.
void installSeamWatch(SeamWatch* watch);

}  // namespace kelvora
