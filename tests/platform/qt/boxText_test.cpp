#include "platform/qt/boxText.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QMessageBox>
#include <QScreen>
#include <QTimer>
#include <ctime>
#include <string>

#include "platform/backend.h"
#include "tests/platform/qt/desktopTest.h"

namespace kelvora {
namespace {

const QString points = "...";

TEST(BoxText, ShowsAUsualTextAsItIs) {
  const std::string verbs =
      "?,playsound,reloadsounds,showmusic,hidemusic,unloadmusic,loadmusic,playmusic,quarktype,showstore";
  EXPECT_EQ(boxText(verbs), QString::fromLatin1(verbs));
  EXPECT_EQ(boxText(""), "");
  EXPECT_EQ(boxText("Login denied: \r\nfull\x80"), QString::fromUtf16(u"Login denied: \nfull\u20AC"));
}

TEST(BoxText, ShowsTwentyFourRows) {
  std::string lines(23, '\n');
  EXPECT_EQ(boxText(lines), QString(23, '\n'));
  EXPECT_EQ(boxText(lines + "x\ny"), QString(23, '\n') + "x" + points);
  EXPECT_EQ(boxText(std::string(60'000, '\n')), QString(23, '\n') + points);
  std::string windows;
  for (int i = 0; i < 23; ++i) windows += "\r\n";
  EXPECT_EQ(boxText(windows + "x"), QString(23, '\n') + "x");
}

TEST(BoxText, TakesSixtyCharactersForARow) {
  std::string text;
  while (text.size() < 24 * 60) text += "four ";  // 1440 is a multiple of 5
  EXPECT_EQ(boxText(text), QString::fromLatin1(text));
  EXPECT_EQ(boxText(text + "x"), QString::fromLatin1(text) + points);
}

TEST(BoxText, LetsAWordBreakThatNoLineHolds) {
  EXPECT_EQ(boxText(std::string(96, 'x')), QString(96, 'x'));
  // Beyond 96 there is a place to break ahead of every 32 characters.
  EXPECT_EQ(boxText(std::string(130, 'x')),
            QString(96, 'x') + QChar(0x200B) + QString(32, 'x') + QChar(0x200B) + QString(2, 'x'));
}

TEST(BoxText, CostsTheSameForAnyLength) {
  const std::string mebibyte(1 << 20, '1');
  const QString shown = boxText(mebibyte);
  EXPECT_TRUE(shown.endsWith(points));
  EXPECT_EQ(shown.count('1'), 24 * 60);
}

TEST(BoxText, TheBoxStandsOnTheScreenAtOnce) {
  for (const std::string& text :
       {std::string(1 << 20, '1'), std::string(1 << 20, '\n'), std::string(1 << 20, 'W'), std::string(1 << 20, ' ')}) {
    QSize size;
    double cpu = 0;
    QTimer::singleShot(0, [&] {
      QWidget* box = QApplication::activeModalWidget();
      ASSERT_NE(box, nullptr);
      size = box->size();
      box->close();
    });
    const std::clock_t start = std::clock();
    MsgBox(text);
    cpu = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
    const QSize screen = QApplication::primaryScreen()->availableSize();
    EXPECT_LE(size.width(), screen.width());
    EXPECT_LE(size.height(), screen.height());
    EXPECT_GT(size.height(), 0);
    EXPECT_LT(cpu, 1.0);
  }
}

}  // namespace
}  // namespace kelvora
