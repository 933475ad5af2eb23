#include <gtest/gtest.h>

#include <QImage>
#include <QWindow>
#include <random>
#include <utility>
#include <vector>

#include "platform/qt/windowImage.h"
#include "tests/platform/qt/desktopTest.h"
#include "tests/platform/qt/formProbe.h"
#include "tests/platform/qt/screenPixels.h"

namespace kelvora {
namespace {

class PictureBoxTest : public testing::Test {
 protected:
  PictureBoxTest() {
    slot_->Show();
    box_.Refresh();
    EXPECT_TRUE(serveUntil([this] { return widgetOf(box_).window()->windowHandle()->isExposed(); }));
    EXPECT_TRUE(serveUntil([this] { return stalePixels(box_) == 0; }));
  }

  /// Draws as the game does: circles and lines that move, an icon and a text that stay.
  void draw() {
    box_.FillColor = randomColour();
    box_.Circle(randomX(), randomY(), static_cast<float>(number(1, 12) * 15), RGB(255, 255, 255));
    box_.ForeColor = randomColour();
    box_.DrawWidth = number(1, 9);
    box_.Line(randomX(), randomY(), randomX(), randomY());
    box_.PaintSprite({icon_, 0, 0, SRCAND}, {icon_, 0, 0, SRCPAINT}, 300, 150, 450, 450);
    box_.CurrentX = 900;
    box_.CurrentY = 450;
    box_.Print("Stays");
  }

  int number(int least, int most) { return std::uniform_int_distribution<int>(least, most)(random_); }

  FormSlot<FormProbe> slot_;
  PictureBox& box_ = slot_->box;

 private:
  Colour randomColour() { return RGB(number(0, 255), number(0, 255), number(0, 255)); }
  float randomX() { return static_cast<float>(number(-10, box_.pixelWidth() + 10) * 15); }
  float randomY() { return static_cast<float>(number(-10, box_.pixelHeight() + 10) * 15); }

  std::mt19937 random_{3};
  const Picture icon_{30, 30, std::vector<Pixel>(900, 0x40C080)};
};

TEST_F(PictureBoxTest, ShowsEveryFrameCompletely) {
  for (int frame = 0; frame < 3000; ++frame) {
    box_.Cls();
    for (int i = number(0, 6); i > 0; --i) draw();
    if (frame % 100 == 50) box_.BackColor = RGB(number(0, 255), 0, 0);
    box_.Refresh();
    if (frame % 7 == 0) QCoreApplication::processEvents();
    ASSERT_EQ(stalePixels(box_), 0) << "frame " << frame;
  }
}

TEST_F(PictureBoxTest, ShowsEverySinglePixelThatChanges) {
  const Colour colour = RGB(0, 0, 1);
  box_.FillColor = colour;
  for (int y = 0; y < 20; ++y) {
    for (int x = 0; x < 40; ++x) {
      box_.Circle(static_cast<float>(x * 15), static_cast<float>(y * 15), 0, colour);
      box_.Refresh();
      ASSERT_EQ(stalePixels(box_), 0) << x << ", " << y;
    }
  }
}

TEST_F(PictureBoxTest, ShowsOnlyTheTilesThatDiffer) {
  const auto pixelsShown = [this] { return copyToWindow(widgetOf(box_), box_, box_.takeChanges()); };
  box_.FillColor = RGB(0, 0, 1);
  const auto dot = [this](int x, int y) {
    box_.Circle(static_cast<float>(x * 15), static_cast<float>(y * 15), 0, box_.FillColor);
  };
  dot(40, 20);
  EXPECT_EQ(pixelsShown(), 16 * 8);
  box_.Cls();
  dot(40, 20);
  EXPECT_EQ(pixelsShown(), 0);
  box_.Cls();
  dot(40, 20);
  dot(100, 60);
  EXPECT_EQ(pixelsShown(), 16 * 8);
  box_.Cls();
  EXPECT_EQ(pixelsShown(), 2 * 16 * 8);
}

TEST_F(PictureBoxTest, LeavesAloneWhatIsBesideIt) {
  constexpr int reach = 90;  // as far as the window goes
  const auto besideIt = [this] {
    return std::pair(screenAt(box_, box_.pixelWidth()).copy(0, 0, reach, box_.pixelHeight()),
                     screenAt(box_, -reach).copy(0, 0, reach, box_.pixelHeight()));
  };
  const auto before = besideIt();
  box_.BackColor = RGB(0, 0, 255);
  box_.Cls();
  box_.Refresh();
  EXPECT_EQ(besideIt(), before);
}

TEST_F(PictureBoxTest, ShowsNothingBeforeItIsRefreshed) {
  const QImage before = screenAt(box_);
  draw();
  EXPECT_EQ(screenAt(box_), before);
}

TEST_F(PictureBoxTest, StaysBehindAControlThatCoversIt) {
  QWidget cover(widgetOf(box_).parentWidget());
  cover.setGeometry(widgetOf(box_).geometry());
  cover.setAutoFillBackground(true);
  cover.setPalette(QPalette(Qt::green));
  cover.show();
  ASSERT_TRUE(serveUntil([this] { return screenAt(box_).pixelColor(5, 5) == QColor(Qt::green); }));
  const QImage covered = screenAt(box_);
  draw();
  box_.Refresh();
  EXPECT_EQ(screenAt(box_), covered);
  cover.hide();
  EXPECT_TRUE(serveUntil([this] { return stalePixels(box_) == 0; }));
}

TEST_F(PictureBoxTest, IsCompleteAfterItWasHidden) {
  box_.Visible = false;
  QCoreApplication::processEvents();
  draw();
  box_.Refresh();
  box_.Visible = true;
  EXPECT_TRUE(serveUntil([this] { return stalePixels(box_) == 0; }));
  slot_->Hide();
  draw();
  box_.Refresh();
  slot_->Show();
  EXPECT_TRUE(serveUntil([this] { return stalePixels(box_) == 0; }));
}

TEST_F(PictureBoxTest, IsCompleteAfterItsSizeHasChanged) {
  for (const float width : {1500.0F, 4200.0F, 45.0F, 3000.0F}) {
    box_.Width = width;
    draw();
    box_.Refresh();
    QCoreApplication::processEvents();
    EXPECT_EQ(stalePixels(box_), 0) << width;
    draw();
    box_.Refresh();
    EXPECT_EQ(stalePixels(box_), 0) << width;
  }
}

}  // namespace
}  // namespace kelvora
