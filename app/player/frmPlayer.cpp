#include "app/player/frmPlayer.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

#include "app/clockText.h"
#include "platform/backend.h"

namespace kelvora::player {

namespace {

constexpr std::array<double, 7> speeds = {0.25, 0.5, 1, 2, 4, 8, 16};
constexpr std::array<const char*, 7> speedTexts = {"1/4", "1/2", "1", "2", "4", "8", "16"};
constexpr int normalSpeed = 2;
constexpr Millis smallJump = 5000;  // ms, of the arrow keys

constexpr const char* help =
    "Space: play or pause\r\n"
    "Left, right: 5 seconds back or forward\r\n"
    "Up, down: faster or slower, from 1/4 to 16\r\n"
    "Point: the next frame\r\n"
    "C, Shift+C: the next or previous capture\r\n"
    "L, Shift+L: the next or previous line of the console\r\n"
    "Home, End: the start or the end\r\n"
    "G: type a time, such as 12:30\r\n"
    "\r\n"
    // Lines of a length that keeps the box within the screen.
    "Click the bar to jump. Its strokes are captures,\r\n"
    "yellow if you take part. Choose a line to jump to it,\r\n"
    "and double-click the marked one.";

}  // namespace

FrmPlayer::FrmPlayer(Playback& playback, const std::string& file)
    : Form("Replay of " + file, {.clientWidth = clientWidth, .clientHeight = 9600, .systemColours = true}),
      playback_(playback) {
  prepareStrip();
  txtTime.TabIndex = 1;
  txtTime.ToolTipText = "minutes:seconds, then Enter";
  grdLines.FixedCols = 0;
  grdLines.Rows = 0;
  grdLines.ColWidth(0, 900);
  grdLines.ColWidth(1, 5130);
  grdLines.DblClick = [this] { jumpToLine(); };

  strip.KeyPress = [this](int key) { pressKey(key); };
  strip.KeyDown = [this](int code, int) { pressCode(code); };
  txtTime.KeyPress = [this](int key) {
    if (key == keyEnter) goToTypedTime();
  };
  tmrFrame.Timer = [this] { tick(); };
  playback_.onSound = [this](const recording::Sounding& sounding) { hear(sounding); };
  playback_.goTo(0);
  lastTick_ = GetTickCount();
}

double FrmPlayer::speed() const { return speeds.at(static_cast<std::size_t>(speedStep_)); }

std::string FrmPlayer::speedText() const { return speedTexts.at(static_cast<std::size_t>(speedStep_)); }

void FrmPlayer::playOrPause() {
  if (!isPlaying_ && playback_.isAtEnd()) jump(0);
  isPlaying_ = !isPlaying_;
}

void FrmPlayer::changeSpeed(int steps) {
  speedStep_ = std::clamp(speedStep_ + steps, 0, static_cast<int>(speeds.size()) - 1);
}

void FrmPlayer::step() {
  if (isPlaying_) playOrPause();
  playback_.step();
  isStepping_ = true;
}

void FrmPlayer::jump(Millis time) {
  time = std::clamp<Millis>(time, 0, playback_.length());
  position_ = static_cast<double>(time);
  playback_.goTo(time);
}

void FrmPlayer::jumpToMark(Mark::Kind kind, int direction) {
  // Just before it, so that it can be seen. Going back skips the mark of the last jump until it has been seen.
  constexpr Millis lead = 1500;
  const std::vector<Mark>& marks = playback_.marks();
  const bool isAwaited = position() >= markTime_ - lead && position() <= markTime_;
  const Millis before = isAwaited ? markTime_ : position();
  const auto jumpTo = [&](const Mark& mark) {
    markTime_ = mark.time;
    jump(mark.time - lead);
  };
  if (direction > 0) {
    const auto next = std::find_if(marks.begin(), marks.end(), [&](const Mark& mark) {
      return mark.kind == kind && mark.time > position() + lead;
    });
    if (next != marks.end()) jumpTo(*next);
  } else {
    const auto previous = std::find_if(marks.rbegin(), marks.rend(),
                                       [&](const Mark& mark) { return mark.kind == kind && mark.time < before; });
    if (previous != marks.rend()) jumpTo(*previous);
  }
}

void FrmPlayer::tick() {
  constexpr Millis maxStep = 100;  // what a slow machine skips
  const Millis now = GetTickCount();
  const auto passed = std::min(now - std::exchange(lastTick_, now), maxStep);
  playback_.serve();
  if (isStepping_ && !playback_.isBusy()) {
    isStepping_ = false;
    position_ = static_cast<double>(playback_.time());
  }
  if (isPlaying_ && playback_.isAtEnd() && !playback_.isBusy()) playOrPause();
  if (isPlaying_ && !playback_.isBusy()) {
    position_ += static_cast<double>(passed) * speed();
    if (position() > playback_.time()) playback_.goTo(position());
  }
  takeChosenLine();
  markLine();
  addLines();
  followMusic();
  paint();
}

// The console's text.

void FrmPlayer::addLines() {
  const std::vector<Mark>& marks = playback_.marks();
  for (; seenMarks_ < marks.size(); ++seenMarks_) {
    const Mark& mark = marks[seenMarks_];
    if (mark.kind != Mark::Kind::Line) continue;
    if (lineTimes_.empty()) grdLines.AddItem("Time\tConsole");
    grdLines.AddItem(clockText(mark.time) + "\t" + mark.text);
    grdLines.FixedRows = 1;
    grdLines.Row = markedRow_;
    lineTimes_.push_back(mark.time);
    hasNewLines_ = true;
  }
}

/// Marks the last line so far, which the grid then shows.
void FrmPlayer::markLine() {
  if (lineTimes_.empty()) return;
  const auto next = std::upper_bound(lineTimes_.begin(), lineTimes_.end(), position());
  const auto row = static_cast<int>(next - lineTimes_.begin());
  if (row == markedRow_ && !std::exchange(hasNewLines_, false)) return;
  markedRow_ = row;
  grdLines.Row = row;
}

/// Jumps to a line other than the marked one that the user has chosen.
void FrmPlayer::takeChosenLine() {
  if (grdLines.Row >= 1 && grdLines.Row != markedRow_) jumpToLine();
}

void FrmPlayer::jumpToLine() {
  const int row = grdLines.Row;
  if (row < 1) return;
  markedRow_ = row;
  jump(lineTimes_.at(static_cast<std::size_t>(row - 1)));
  strip.SetFocus();
}

// Input.

void FrmPlayer::pressKey(int key) {
  switch (key) {
    case ' ':
      return playOrPause();
    case '.':
      return step();
    case 'c':
      return jumpToMark(Mark::Kind::Capture, 1);
    case 'C':
      return jumpToMark(Mark::Kind::Capture, -1);
    case 'l':
      return jumpToMark(Mark::Kind::Line, 1);
    case 'L':
      return jumpToMark(Mark::Kind::Line, -1);
    case 'g':
    case 'G':
      return txtTime.SetFocus();
    case '?':
      return listKeys();
    default:
      return;
  }
}

void FrmPlayer::listKeys() {
  const bool wasPlaying = std::exchange(isPlaying_, false);
  MsgBox(help);
  isPlaying_ = wasPlaying;
}

void FrmPlayer::goToTypedTime() {
  const auto time = timeFromText(txtTime.Text.get());
  lblHint.Caption = time ? hint : "Type minutes and seconds, such as 12:30.";
  if (!time) return;
  jump(*time);
  txtTime.Text = "";
  strip.SetFocus();
}

void FrmPlayer::pressCode(int code) {
  constexpr int keyEnd = 35;
  constexpr int keyHome = 36;
  constexpr int keyLeft = 37;
  constexpr int keyRight = 39;
  if (code == keyUp) changeSpeed(1);
  if (code == keyDown) changeSpeed(-1);
  if (code == keyLeft) jump(position() - smallJump);
  if (code == keyRight) jump(position() + smallJump);
  if (code == keyHome) jump(0);
  if (code == keyEnd) jump(playback_.length());
}

// Sound, which only makes sense at the recording's own pace.

void FrmPlayer::hear(const recording::Sounding& sounding) {
  std::unique_ptr<SoundPeer>& sound = sounds_[sounding.file];
  if (!sound) {
    sound = backend().createSound();
    sound->open(sounding.file);
  }
  if (sounding.starts && speedStep_ == normalSpeed) {
    sound->play();
  } else {
    sound->stop();
  }
}

/// Plays the recording's track, from its beginning.
void FrmPlayer::followMusic() {
  const Music wanted = isPlaying_ && speedStep_ == normalSpeed ? playback_.music() : Music{};
  if (wanted == played_) return;
  played_ = wanted;
  if (!music_) music_ = backend().createMusic();
  if (wanted.file.empty()) {
    music_->stop();
  } else {
    music_->play(wanted.file);
  }
}

}  // namespace kelvora::player
