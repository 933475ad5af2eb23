#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QMessageBox>
#include <QPixmapCache>
#include <QPushButton>
#include <QScreen>
#include <QTime>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <ctime>

#include "base/fault.h"
#include "generated/sourceFolder.h"
#include "platform/backend.h"
#include "platform/qt/qtDesktop.h"
#include "platform/qt/qtGlyphs.h"
#include "platform/windowing/handlerCall.h"
#include "tests/platform/qt/desktopTest.h"
#include "tests/platform/qt/formProbe.h"

namespace kelvora {
namespace {

/// Sets an environment variable while it exists.
class Environment {
 public:
  Environment(const char* name, const char* value) : name_(name) { qputenv(name, value); }
  ~Environment() { qunsetenv(name_); }
  Environment(const Environment&) = delete;
  Environment& operator=(const Environment&) = delete;

 private:
  const char* name_;
};

TEST(Desktop, ClockStartsAtAMillionAndNeverDecreases) {
  QtDesktop desktop("");
  Millis last = desktop.tickCount();
  EXPECT_GE(last, 1'000'000);
  EXPECT_LT(last, 1'001'000);
  for (int i = 0; i < 1000; ++i) {
    const Millis now = desktop.tickCount();
    EXPECT_GE(now, last);
    last = now;
  }
}

TEST(Desktop, CachesAtMostAMegabyteOfTheStylesDrawings) {
  QPixmapCache::setCacheLimit(10'240);  // the toolkit's default
  const QtDesktop desktop("");
  QPixmapCache::clear();
  QPixmap piece(256, 256);
  piece.fill(Qt::red);  // 256 KiB
  for (int i = 0; i < 20; ++i) QPixmapCache::insert(QString::number(i), piece.copy());
  int kept = 0;
  for (int i = 0; i < 20; ++i) kept += QPixmapCache::find(QString::number(i), nullptr) ? 1 : 0;
  EXPECT_GE(kept, 1);
  EXPECT_LE(kept, 4);
}

TEST(Desktop, SecondsSinceMidnightStayWithinADay) {
  EXPECT_GE(Timer(), 0.0F);
  EXPECT_LT(Timer(), 86400.0F);
}

TEST(Desktop, SecondsSinceMidnightAreTheSystemsLocalTime) {
  QtDesktop desktop("");
  const auto start = std::chrono::steady_clock::now();
  int compared = 0;
  while (compared < 100 || std::chrono::steady_clock::now() - start < std::chrono::milliseconds(1'100)) {
    const int before = QTime::currentTime().msecsSinceStartOfDay();
    const float seconds = desktop.secondsSinceMidnight();
    const int after = QTime::currentTime().msecsSinceStartOfDay();
    if (after < before) continue;  // midnight
    // A float holds seconds of a day with a precision of 1/128.
    ASSERT_GE(seconds, before / 1000.0 - 0.008);
    ASSERT_LE(seconds, after / 1000.0 + 0.008);
    ++compared;
  }
}

TEST(Desktop, CommandLineExcludesTheProgramsName) { EXPECT_EQ(commandLine(), "NoSound"); }

TEST(Desktop, DataFolderOfTheEnvironmentWins) {
  EXPECT_EQ(applicationPath(), KELVORA_SOURCE_DIR);
  const Environment chosen("KELVORA_DATA", "/somewhere/else");
  EXPECT_EQ(applicationPath(), "/somewhere/else");
}

TEST(Desktop, WebHostOfTheEnvironmentWins) {
  EXPECT_FALSE(webHost().empty());
  const Environment chosen("KELVORA_WEB_HOST", "127.0.0.1:8080");
  EXPECT_EQ(webHost(), "127.0.0.1:8080");
}

TEST(Desktop, PacedPassesLastTheirFrameAndServeEvents) {
  const Environment frame("KELVORA_FRAME_MS", "4");
  QtDesktop desktop("");
  int ticks = 0;
  QTimer ticker;
  QObject::connect(&ticker, &QTimer::timeout, &ticker, [&ticks] { ++ticks; });
  ticker.start(1);
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < 10; ++i) desktop.doEvents(false);
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(40));
  // A busy machine may leave a pass no time for a second event.
  int passes = 10;
  for (; ticks <= passes && passes < 10'000; ++passes) desktop.doEvents(false);
  EXPECT_GT(ticks, passes) << "more than one event per pass";
}

TEST(Desktop, NestedHandlersHaveABoundedDepth) {
  FormProbe form;
  form.Show();
  QObject context;  // pending calls die with it
  int depth = 0;
  int deepest = 0;
  int calls = 0;
  form.box.Click = [&] {
    deepest = std::max(deepest, ++depth);
    // The next click is already pending, as with a held key and a slow handler.
    if (++calls < 1'000) QTimer::singleShot(0, &context, [&] { raiseEvent(form.box, form.box.Click); });
    DoEvents();
    --depth;
  };
  raiseEvent(form.box, form.box.Click);
  // A handler and its events take two of the forty levels. The last handler's events wait.
  EXPECT_EQ(deepest, 21);
  EXPECT_EQ(depth, 0);
}

TEST(Desktop, MessageBoxShowsPlainTextAndKeepsProcessingEvents) {
  QString text;
  QString title;
  Qt::TextFormat format = Qt::RichText;
  QTimer::singleShot(0, [&] {
    auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    ASSERT_NE(box, nullptr);
    text = box->text();
    title = box->windowTitle();
    format = box->textFormat();
    box->accept();
  });
  MsgBox("Login denied: \r\n<b>full\x80</b>");
  EXPECT_EQ(text, QString::fromUtf16(u"Login denied: \n<b>full\u20AC</b>"));
  EXPECT_EQ(title, "Kelvora");
  EXPECT_EQ(format, Qt::PlainText);
}

TEST(Desktop, MessageBoxHasEqualMarginsAndACentredButton) {
  QRect text;
  QRect button;
  QRect whole;
  QTimer::singleShot(0, [&] {
    auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    ASSERT_NE(box, nullptr);
    const auto* label = box->findChild<QLabel*>("qt_msgbox_label");
    const auto* ok = box->button(QMessageBox::Ok);
    text = {label->mapTo(box, label->contentsRect().topLeft()), label->contentsRect().size()};
    button = {ok->mapTo(box, QPoint()), ok->size()};
    whole = box->rect();
    box->accept();
  });
  MsgBox("Please enter a name for yourself");
  EXPECT_GT(text.width(), 100);
  EXPECT_NEAR(text.left(), whole.right() - text.right(), 1);
  EXPECT_NEAR(button.center().x(), whole.center().x(), 1);
}

TEST(DesktopDeathTest, AFaultInAHandlerEndsTheProgramWithABox) {
  ::testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_EXIT(
      {
        FormProbe form;
        form.Show();
        form.box.Click = [] { raiseSubscriptOutOfRange(); };
        QTimer answer;
        QObject::connect(&answer, &QTimer::timeout, &answer, [] {
          auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
          if (box && box->windowTitle() == "Kelvora" && box->text() == "Run-time error: Subscript out of range") {
            box->accept();
          }
        });
        answer.start(1);
        sendMouse(form.box, QEvent::MouseButtonRelease, {1, 1}, Qt::LeftButton, Qt::NoButton);
      },
      ::testing::ExitedWithCode(1), "Run-time error: Subscript out of range");
}

TEST(DesktopDeathTest, EndProcessEndsAtOnce) {
  ::testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_EXIT(endProcess(), ::testing::ExitedWithCode(0), "");
}

TEST(QtGlyphs, LettersHaveInkWithinTheirLine) {
  QtGlyphSource source;
  const FontSpec font{"Comic Sans MS", 9, true};
  const int line = source.lineHeight(font);
  EXPECT_GE(line, 12);
  for (const unsigned char letter : std::initializer_list<unsigned char>{'A', 'g', 'W', 0x80, 0xE9}) {
    const Glyph glyph = source.glyph(font, letter);
    ASSERT_EQ(glyph.coverage.size(), static_cast<std::size_t>(glyph.width * glyph.height));
    EXPECT_GT(*std::max_element(glyph.coverage.begin(), glyph.coverage.end()), 200) << "fully covered somewhere";
    EXPECT_GT(glyph.advance, 2);
    EXPECT_GE(glyph.top, -2);
    EXPECT_LE(glyph.top + glyph.height, line + 2);
  }
}

TEST(QtGlyphs, BlankAndControlCharactersHaveWidthButNoInk) {
  QtGlyphSource source;
  for (const unsigned char letter : std::initializer_list<unsigned char>{' ', '\t', 0x81}) {
    const Glyph glyph = source.glyph({}, letter);
    EXPECT_TRUE(glyph.coverage.empty());
    EXPECT_GT(glyph.advance, 0);
  }
}

TEST(QtGlyphs, MorePointsAreLarger) {
  QtGlyphSource source;
  EXPECT_GT(source.lineHeight({"Comic Sans MS", 16, true}), source.lineHeight({"Comic Sans MS", 9, true}));
  EXPECT_GT(source.glyph({"Comic Sans MS", 16, true}, 'M').advance,
            source.glyph({"Comic Sans MS", 9, true}, 'M').advance);
}

TEST(Desktop, BoxAppearsAtOnceWhateverItsText) {
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
