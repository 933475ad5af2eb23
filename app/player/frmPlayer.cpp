#include "app/player/frmPlayer.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "app/clockText.h"
#include "platform/backend.h"
#include "raster/twips.h"

namespace kelvora::player {

namespace {

constexpr std::array<double, 7> speeds = {0.25, 0.5, 1, 2, 4, 8, 16};
constexpr std::array<const char*, 7> speedTexts = {"1/4", "1/2", "1", "2", "4", "8", "16"};
constexpr int normalSpeed = 2;
constexpr Millis smallJump = 5000;  // ms, of the arrow keys

constexpr Colour background = RGB(16, 18, 24);
constexpr Colour barColour = RGB(52, 58, 72);
constexpr Colour readyColour = RGB(74, 84, 106);
constexpr Colour playedColour = RGB(64, 148, 220);
constexpr Colour lightColour = RGB(232, 236, 244);
constexpr Colour dimColour = RGB(150, 158, 174);
constexpr Colour ownColour = RGB(255, 216, 72);
constexpr Colour captureColour = RGB(236, 112, 99);

// Pixels of the strip.
constexpr float barLeft = 18;
constexpr float barRight = 430;
constexpr float barTop = 18;
constexpr float barWidth = 8;
constexpr float buttonTop = 50;
constexpr float buttonSize = 9;
constexpr float backX = 24;
constexpr float playX = 54;
constexpr float stepX = 84;
constexpr float slowerX = 122;
constexpr float fasterX = 192;
constexpr float captureX = 226;
constexpr float endingTop = 72;

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
    "Click the bar to jump. Its strokes are captures, yellow if you take part. Choose a line to jump to it, and "
    "double-click the marked one.";

float twips(float pixels) { return pixels * static_cast<float>(twipsPerPixel); }

}  // namespace

FrmPlayer::FrmPlayer(Playback& playback, const std::string& file)
    : Form("Replay of " + file, {.clientWidth = 6720, .clientHeight = 9600, .systemColours = true}),
      playback_(playback) {
  strip.BackColor = background;
  strip.TabIndex = 0;
  txtTime.TabIndex = 1;
  txtTime.ToolTipText = "minutes:seconds, then Enter";
  grdLines.FixedCols = 0;
  grdLines.Rows = 0;
  grdLines.ColWidth(0, 900);
  grdLines.ColWidth(1, 5250);
  grdLines.DblClick = [this] { jumpToLine(); };

  strip.KeyPress = [this](int key) { pressKey(key); };
  strip.KeyDown = [this](int code, int) { pressCode(code); };
  strip.MouseDown = [this](int, int, float x, float y) { click(x, y); };
  strip.MouseMove = [this](int button, int, float x, float) {
    if (isDragging_ && button != 0) jump(timeAt(x));
  };
  strip.MouseUp = [this](int, int, float, float) { isDragging_ = false; };
  txtTime.KeyPress = [this](int key) {
    if (key == keyEnter) goToTypedTime();
  };
  tmrFrame.Timer = [this] { tick(); };
  playback_.onSound = [this](const recording::Sounding& sounding) { hear(sounding); };
  playback_.goTo(0);
  lastTick_ = GetTickCount();
}

double FrmPlayer::speed() const { return speeds.at(static_cast<std::size_t>(speedStep_)); }

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
  constexpr Millis longest = 100;  // what a slow machine skips
  const Millis now = GetTickCount();
  const auto passed = std::min(now - std::exchange(lastTick_, now), longest);
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

// What the console has printed.

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

void FrmPlayer::click(float x, float y) {
  const float column = x / twips(1);
  const float row = y / twips(1);
  if (row < buttonTop - 2 * buttonSize) {
    isDragging_ = true;
    return jump(timeAt(x));
  }
  const auto hits = [column](float middle) { return std::abs(column - middle) < 15; };
  if (hits(backX)) jump(0);
  if (hits(playX)) playOrPause();
  if (hits(stepX)) step();
  if (hits(slowerX)) changeSpeed(-1);
  if (hits(fasterX)) changeSpeed(1);
  if (hits(captureX)) jumpToMark(Mark::Kind::Capture, 1);
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

// Painting.

float FrmPlayer::barX(Millis time) const {
  const Millis length = std::max<Millis>(playback_.length(), 1);
  const double share = std::clamp(static_cast<double>(time) / static_cast<double>(length), 0.0, 1.0);
  return twips(barLeft) + static_cast<float>(share) * twips(barRight - barLeft);
}

Millis FrmPlayer::timeAt(float x) const {
  const float share = std::clamp((x - twips(barLeft)) / twips(barRight - barLeft), 0.0F, 1.0F);
  return static_cast<Millis>(static_cast<double>(share) * static_cast<double>(playback_.length()));
}

std::string FrmPlayer::status() const {
  std::string text = clockText(playback_.time()) + " of " + clockText(playback_.length());
  if (!playback_.isScouted()) text += " so far";
  return text + ", frame " + std::to_string(playback_.frame());
}

void FrmPlayer::paint() {
  const std::string shown = status() + (isPlaying_ ? "p" : "-") + std::to_string(speedStep_) +
                            std::to_string(playback_.marks().size()) + playback_.ending();
  if (shown == painted_) return;
  painted_ = shown;
  strip.Cls();
  paintBar();
  paintButtons();
  strip.Refresh();
}

void FrmPlayer::paintBar() {
  const float y = twips(barTop);
  const auto stroke = [&](float from, float to, Colour colour) {
    strip.ForeColor = colour;
    strip.DrawWidth = static_cast<int>(barWidth);
    strip.Line(from, y, to, y);
  };
  stroke(barX(0), twips(barRight), playback_.isScouted() ? readyColour : barColour);
  stroke(barX(0), barX(playback_.time()), playedColour);
  strip.DrawWidth = 2;
  for (const bool isOwn : {false, true}) {
    for (const Mark& mark : playback_.marks()) {
      if (mark.kind != Mark::Kind::Capture || mark.isOwn != isOwn) continue;
      strip.ForeColor = isOwn ? ownColour : captureColour;
      strip.Line(barX(mark.time), y - twips(barWidth), barX(mark.time), y + twips(barWidth));
    }
  }
  strip.FillColor = lightColour;
  strip.Circle(barX(playback_.time()), y, twips(6), background);
}

void FrmPlayer::paintButtons() {
  const float y = twips(buttonTop);
  const float size = twips(buttonSize);
  strip.ForeColor = lightColour;
  strip.DrawWidth = 2;
  /// Points to the right for a positive width, and to the left for a negative one.
  const auto triangle = [&](float middle, float width) {
    const float left = twips(middle) - width / 2;
    for (float row = -size; row <= size; row += twips(1)) {
      strip.Line(left, y + row, left + width * (1 - std::abs(row) / size), y + row);
    }
  };
  const auto upright = [&](float x) { strip.Line(twips(x), y - size, twips(x), y + size); };
  strip.DrawWidth = 3;
  upright(backX - 8);
  strip.DrawWidth = 1;
  triangle(backX + 2, -size * 1.6F);
  if (isPlaying_) {
    strip.DrawWidth = 5;
    upright(playX - 5);
    upright(playX + 5);
  } else {
    strip.DrawWidth = 1;
    triangle(playX, size * 1.8F);
  }
  strip.DrawWidth = 1;
  triangle(stepX - 2, size * 1.6F);
  strip.DrawWidth = 3;
  upright(stepX + 8);

  const auto line = [&](float x1, float y1, float x2, float y2) {
    strip.Line(twips(x1), twips(y1), twips(x2), twips(y2));
  };
  strip.DrawWidth = 2;
  strip.ForeColor = dimColour;
  line(slowerX - 5, buttonTop, slowerX + 5, buttonTop);
  line(fasterX - 5, buttonTop, fasterX + 5, buttonTop);
  line(fasterX, buttonTop - 5, fasterX, buttonTop + 5);
  strip.ForeColor = captureColour;
  line(captureX + 8, buttonTop - 8, captureX + 8, buttonTop + 8);
  strip.DrawWidth = 1;
  triangle(captureX - 3, size * 1.4F);

  const auto print = [&](float x, float top, const std::string& text, Colour colour) {
    strip.ForeColor = colour;
    strip.CurrentX = x;
    strip.CurrentY = twips(top);
    strip.Print(text);
  };
  strip.FontSize = 10;
  FontSpec font = strip.Font;
  font.size = strip.FontSize;
  const std::string pace = std::string(speedTexts.at(static_cast<std::size_t>(speedStep_))) + " x";
  const float textTop = buttonTop - 8;
  print(twips((slowerX + fasterX) / 2) - Surface::textWidth(font, pace) / 2, textTop, pace, lightColour);
  const std::string text = status();
  print(twips(barRight) - Surface::textWidth(font, text), textTop, text, dimColour);
  print(twips(barLeft), endingTop, playback_.ending(), ownColour);
}

}  // namespace kelvora::player
