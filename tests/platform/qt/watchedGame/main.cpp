// The game, which compares its canvas and radar with the screen after each frame. Prints each picture that the screen
// doesn't show completely, and how many it has compared. Waits while other windows are open.

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QWidget>
#include <algorithm>
#include <cstdio>
#include <vector>

#include "core/startUp.h"
#include "frontend/frmMain.h"
#include "platform/desktop/runDesktop.h"
#include "platform/pictureBox.h"
#include "tests/platform/qt/screenPixels.h"

namespace {

using namespace kelvora;

class Watch {
 public:
  Watch(const char* name, PictureBox& box) : name_(name), box_(box) {}

  /// Call this between two frames.
  void compare() {
    if (!takePicture()) return;
    const int stale = stalePixels(box_);
    if (stale > 0) std::printf("%s: %d pixels of picture %d are stale\n", name_, stale, count_);
    if (++count_ % 100 == 0) std::printf("%s: %d pictures compared\n", name_, count_);
    std::fflush(stdout);
  }

 private:
  /// False if the picture is the last one.
  bool takePicture() {
    const auto pixels = box_.pixels();
    if (std::ranges::equal(pixels, picture_)) return false;
    picture_.assign(pixels.begin(), pixels.end());
    return true;
  }

  const char* name_;
  PictureBox& box_;
  std::vector<Pixel> picture_;  ///< the last one
  int count_ = 0;
};

/// Other windows can lie over the main one.
bool isAlone() {
  return frmMain.isVisible() && std::ranges::count_if(QApplication::topLevelWidgets(), &QWidget::isVisible) == 1;
}

void compareFrames() {
  // The screen shows a closed window until the game has heard of its end.
  static bool isUncovered = false;
  isUncovered = isAlone() && (isUncovered || stalePixels(frmMain->canvas) + stalePixels(frmMain->picRadar) == 0);
  if (!isUncovered) return;
  static Watch canvas("canvas", frmMain->canvas), radar("radar", frmMain->picRadar);
  canvas.compare();
  radar.compare();
}

void startWatchedGame() {
  // Between two frames, the game lets the event loop run once.
  QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::awake, compareFrames);
  modMain::startGame();
}

}  // namespace

int main(int argc, char** argv) { return runDesktop(argc, argv, startWatchedGame); }
