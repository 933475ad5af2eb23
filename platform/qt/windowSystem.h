#pragma once

namespace kelvora {

/// Chooses X11 wherever it can be reached, even inside a Wayland desktop, unless QT_QPA_PLATFORM says otherwise. The
/// game moves the mouse pointer, which Wayland doesn't allow. Must be called before the application is created.
void chooseWindowSystem();

/// Prints on stderr what doesn't work under the current window system, if anything.
void warnMissingFeatures();

/// While it exists, a toolkit that finds no screen ends the process with a message on stderr and status 1 instead of
/// aborting. The toolkit's own messages are held back until then, or until this is destroyed.
class ScreenSearch {
 public:
  ScreenSearch();
  ~ScreenSearch();
  ScreenSearch(const ScreenSearch&) = delete;
  ScreenSearch& operator=(const ScreenSearch&) = delete;
};

}  // namespace kelvora
