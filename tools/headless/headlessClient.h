#pragma once

#include "frontend/frmMain.h"
#include "platform/headless/headlessBackend.h"

namespace kelvora {

/// A whole client without a screen, with the source folder's pictures. It begins as the process does: no form is loaded
/// and the world is empty. Names and tips are filled in, and fonts have their defaults. One can exist at a time.
class HeadlessClient {
 public:
  HeadlessClient();
  ~HeadlessClient();
  HeadlessClient(const HeadlessClient&) = delete;
  HeadlessClient& operator=(const HeadlessClient&) = delete;

  /// The far end of the game's socket. Loads frmMain.
  HeadlessSocket& server() { return machine.socketOf(frmMain->sock); }

  HeadlessBackend machine;
};

}  // namespace kelvora
