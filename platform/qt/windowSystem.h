#pragma once

namespace kelvora {

/// The game places the mouse pointer in pixels of the screen, which X11 lets a program do and Wayland does not. So X11
/// comes first wherever it can be reached, also within a Wayland desktop, unless QT_QPA_PLATFORM says otherwise. To be
/// called before the application comes into being.
void chooseWindowSystem();

/// Says on stderr what does not work under the window system that the application has come to run on, if anything.
void tellWhatIsMissing();

/// While it lives, a toolkit that finds no screen ends the process with a sentence on stderr and status 1, in place of
/// an abort. What the toolkit says meanwhile is held back until then, or until the end of this.
class ScreenSearch {
 public:
  ScreenSearch();
  ~ScreenSearch();
  ScreenSearch(const ScreenSearch&) = delete;
  ScreenSearch& operator=(const ScreenSearch&) = delete;
};

}  // namespace kelvora
