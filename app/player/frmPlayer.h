#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <string>

#include "app/player/playback.h"
#include "platform/audio.h"
#include "platform/form.h"
#include "platform/grid.h"
#include "platform/pictureBox.h"
#include "platform/widgets.h"

namespace kelvora::player {

/// The player's controls: a bar with the captures, buttons, and the lines of the console. On a screen of 1366
/// pixels it fits beside the game. It is modal, so that the game's windows take no input.
class FrmPlayer : public Form {
 public:
  FrmPlayer(Playback& playback, const std::string& file);

  void unloading() override { Hide(); }

  bool isPlaying() const { return isPlaying_; }
  /// 1 is real time.
  double speed() const;
  /// Where the recording is played, in ms.
  Millis position() const { return static_cast<Millis>(position_); }
  void playOrPause();
  void changeSpeed(int steps);
  void step();
  void jump(Millis time);
  /// Jumps to the next mark of a kind (1) or the previous one (-1).
  void jumpToMark(Mark::Kind kind, int direction);

  // Positions are left, top, width and height in twips.
  static constexpr float clientWidth = 6600;
  PictureBox strip{this, {0, 0, clientWidth, 1440}};
  Label lblGoTo{this, {120, 1560, 1020, 255}, "Go to time", {.systemColours = true}};
  TextBox txtTime{this, {1140, 1530, 900, 315}, ""};
  Label lblHint{this, {2160, 1560, 4320, 255}, hint, {.systemColours = true}};
  Grid grdLines{this, {120, 1980, 6360, 7500}};
  IntervalTimer tmrFrame{this, 15};

 private:
  void tick();
  void prepareStrip();
  void paint();
  void paintBar();
  void paintButtons();
  void goToTypedTime();
  void listKeys();
  void addLines();
  void markLine();
  void takeChosenLine();
  void jumpToLine();
  void pressKey(int key);
  void pressCode(int code);
  void click(float x, float y);
  void hear(const recording::Sounding& sounding);
  void followMusic();
  std::string speedText() const;
  std::string status() const;
  float barX(Millis time) const;
  Millis timeAt(float x) const;

  static constexpr const char* hint = "Space plays and pauses, ? lists all keys.";

  Playback& playback_;
  bool isPlaying_ = true;
  int speedStep_ = 2;
  Millis lastTick_ = 0;
  double position_ = 0;  ///< ms; the frame that is shown may be a little later
  Millis markTime_ = 0;  ///< of the mark to which the last such jump led
  bool isDragging_ = false;
  bool isStepping_ = false;
  std::vector<Millis> lineTimes_;  ///< of the grid's rows below the heading
  int markedRow_ = 0;              ///< of the line that is shown or has just been; 0 before the first one
  bool hasNewLines_ = false;       ///< the grid forgets its mark with them
  std::size_t seenMarks_ = 0;
  std::map<std::string, std::unique_ptr<SoundPeer>> sounds_;
  std::unique_ptr<MusicPeer> music_;
  Music played_;
  std::string painted_;  ///< what the strip shows
};

}  // namespace kelvora::player
