#include <gtest/gtest.h>

#include <QApplication>
#include <QImage>
#include <QMenu>
#include <QMenuBar>
#include <QPainter>
#include <QProxyStyle>
#include <QStyle>

#include "platform/pictureBox.h"
#include "platform/qt/gameLooks.h"
#include "tests/platform/qt/formProbe.h"

namespace kelvora {
namespace {

const QColor lineColour(Qt::gray);

PicturePointer plainPicture(int width, int height, Pixel pixel) {
  return std::make_shared<Picture>(
      Picture{width, height, std::vector<Pixel>(static_cast<std::size_t>(width * height), pixel)});
}

class LooksForm : public Form {
 public:
  explicit LooksForm(bool systemColours)
      : Form("Looks",
             {.clientWidth = 6000, .clientHeight = 3000, .back = RGB(0, 0, 0), .systemColours = systemColours}) {
    picture.Picture = plainPicture(20, 20, 0x000000);
  }

  MenuItem menu{this, "File"};
  MenuItem item{&menu, "Item"};
  Label label{this, {0, 0, 1500, 600}, "", {.back = RGB(0, 0, 0), .border = true}};
  Frame frame{this, {1500, 0, 1500, 1500}, "Title", RGB(255, 255, 255), RGB(0, 0, 0), true};
  Image picture{&frame, {0, 600, 300, 300}};  // covers rows 40 to 59 of the frame's left edge
  PictureBox box{this, {3000, 0, 600, 600}};
  Button button{this, {0, 1500, 1500, 375}, "Button"};
};

/// The control as shown on a screen of this scale.
QImage shownAt(Control& control, double scale) {
  QWidget& widget = widgetOf(control);
  QImage image((QSizeF(widget.size()) * scale).toSize(), QImage::Format_RGB32);
  image.setDevicePixelRatio(scale);
  image.fill(Qt::magenta);
  widget.render(&image);
  return image;
}

void expectWholeBorder(const QImage& image, int top) {
  const int right = image.width() - 1;
  const int bottom = image.height() - 1;
  for (const int x : {0, right}) EXPECT_EQ(image.pixelColor(x, (top + bottom) / 2), lineColour) << "column " << x;
  for (const int y : {top, bottom}) EXPECT_EQ(image.pixelColor(right - 3, y), lineColour) << "row " << y;
  EXPECT_NE(image.pixelColor(right - 3, (top + bottom) / 2), lineColour);
}

class Looks : public ::testing::Test {
 protected:
  Looks() { form_.Show(); }
  LooksForm form_{false};
};

TEST_F(Looks, BordersAreWholeAtEveryScale) {
  for (const double scale : {1.0, 1.25, 1.5, 2.0}) {
    SCOPED_TRACE(scale);
    expectWholeBorder(shownAt(form_.label, scale), 0);
  }
}

TEST_F(Looks, PictureAtTheEdgeOfAFrameDoesNotCutItsLine) {
  const QImage image = shownAt(form_.frame, 1);
  for (int y = 20; y < 100; ++y) EXPECT_EQ(image.pixelColor(0, y), lineColour) << y;
  EXPECT_EQ(image.pixelColor(1, 50), QColor(Qt::black));
}

TEST_F(Looks, FrameTakesNoClicksFromItsControls) {
  EXPECT_EQ(widgetOf(form_.frame).childAt(0, 50), &widgetOf(form_.picture));
}

TEST_F(Looks, DarkFormHasDarkControls) {
  const QPalette button = widgetOf(form_.button).palette();
  EXPECT_LT(button.color(QPalette::Button).lightness(), 100);
  EXPECT_GT(button.color(QPalette::ButtonText).lightness(), 200);
  QMenuBar& bar = *windowOf(form_).menuBar();
  QMenu& menu = *bar.actions().at(0)->menu();
  for (const QWidget* widget : {static_cast<QWidget*>(&bar), static_cast<QWidget*>(&menu)}) {
    EXPECT_LT(widget->palette().color(QPalette::Window).lightness(), 60);
    EXPECT_GT(widget->palette().color(QPalette::WindowText).lightness(), 200);
  }
}

TEST_F(Looks, DialogWithoutItsOwnColoursUsesTheCommonOnes) {
  LooksForm dialog(true);
  dialog.Show();
  EXPECT_EQ(widgetOf(dialog.button).palette().color(QPalette::Button), QApplication::palette().color(QPalette::Button));
  EXPECT_EQ(windowOf(dialog).menuBar()->palette().color(QPalette::Window),
            QApplication::palette().color(QPalette::Window));
}

TEST(GameLooks, EveryDialogIsDarkAndLegible) {
  const QPalette before = QApplication::palette();
  const QFont font = QApplication::font();
  installGameLooks();
  const QPalette colours = QApplication::palette();
  for (const auto role : {QPalette::Window, QPalette::Base, QPalette::Button, QPalette::ToolTipBase})
    EXPECT_LT(colours.color(role).lightness(), 110) << role;
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
    EXPECT_GT(colours.color(role).lightness(), 220) << role;
    EXPECT_GT(colours.color(role).lightness(), colours.color(QPalette::Disabled, role).lightness() + 80) << role;
  }
  EXPECT_GT(colours.color(QPalette::ToolTipText).lightness(), 220);
  // Fields and buttons stand out from the dialog.
  const int ground = colours.color(QPalette::Window).lightness();
  EXPECT_LT(colours.color(QPalette::Base).lightness(), ground - 30);
  EXPECT_GT(colours.color(QPalette::Button).lightness(), ground + 30);
  EXPECT_EQ(QApplication::style()->styleHint(QStyle::SH_DialogButtonBox_ButtonsHaveIcons), 0);
  QApplication::setPalette(before);
  QApplication::setFont(font);
}

TEST_F(Looks, GamePixelsKeepTheirShareAtAFractionalScale) {
  // Alternating black and white columns. At 1.5 a column is one and a half pixels wide, and the half pixel is grey.
  for (int x = 0; x < 40; x += 2) {
    form_.box.ForeColor = RGB(255, 255, 255);
    form_.box.Line(static_cast<float>(x * 15), 0, static_cast<float>(x * 15), 600);
  }
  form_.box.Refresh();
  const auto greys = [](const QImage& image) {
    int count = 0;
    for (int x = 0; x < image.width(); ++x) {
      const int grey = image.pixelColor(x, image.height() / 2).lightness();
      count += 20 < grey && grey < 235 ? 1 : 0;
    }
    return count;
  };
  EXPECT_EQ(greys(shownAt(form_.box, 1)), 0);
  EXPECT_EQ(greys(shownAt(form_.box, 2)), 0);
  EXPECT_GT(greys(shownAt(form_.box, 1.5)), 15);
}

TEST(GameLooks, OverfullMenuHasTheStylesOwnMark) {
  installGameLooks();
  const QIcon mark = QApplication::style()->standardIcon(QStyle::SP_ToolBarHorizontalExtensionButton);
  const auto* style = qobject_cast<const QProxyStyle*>(QApplication::style());
  ASSERT_NE(style, nullptr);
  const QIcon own = style->baseStyle()->standardIcon(QStyle::SP_ToolBarHorizontalExtensionButton);
  ASSERT_FALSE(own.isNull());
  EXPECT_FALSE(mark.isNull());
  EXPECT_EQ(mark.pixmap(12, 12).toImage(), own.pixmap(12, 12).toImage());
  QImage drawn(12, 12, QImage::Format_ARGB32_Premultiplied);
  QImage expected = drawn;
  for (auto [icon, image] : {std::pair(&mark, &drawn), std::pair(&own, &expected)}) {
    image->fill(Qt::transparent);
    QPainter painter(image);
    icon->paint(&painter, image->rect());
  }
  EXPECT_EQ(drawn, expected);
}

}  // namespace
}  // namespace kelvora
