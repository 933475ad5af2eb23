#include <gtest/gtest.h>

#include <QMenu>
#include <QMenuBar>
#include <QTest>

#include "base/fault.h"
#include "platform/backend.h"
#include "platform/qt/qtFonts.h"
#include "tests/platform/qt/desktopTest.h"
#include "tests/platform/qt/formProbe.h"

namespace kelvora {
namespace {

using Notes = std::vector<std::string>;

class Window : public ::testing::Test {
 protected:
  Window() { FormProbe::unloadings().clear(); }

  FormSlot<FormProbe> slot_;
};

TEST_F(Window, ClientAreaHasTheDesignedSizeBesideTheMenuBar) {
  slot_->Show();
  FormWindow& window = windowOf(*slot_);
  EXPECT_EQ(window.client()->size(), QSize(400, 300));
  EXPECT_GT(window.menuBar()->height(), 0);
  EXPECT_EQ(window.height(), 300 + window.menuBar()->height());
  EXPECT_EQ(slot_->notes, Notes{}) << "the designed size isn't a new size";
}

TEST_F(Window, ControlsAreAtTheirPixels) {
  slot_->Show();
  EXPECT_EQ(widgetOf(slot_->box).geometry(), QRect(100, 40, 200, 100));
  slot_->box.Left = 22.4F;  // 1.49 pixels
  slot_->box.Top = 22.5F;   // 1.5 pixels: halves upward
  EXPECT_EQ(widgetOf(slot_->box).geometry().topLeft(), QPoint(1, 2));
}

TEST_F(Window, NewSizeIsReportedInTwips) {
  slot_->Show();
  FormWindow& window = windowOf(*slot_);
  window.resize(500, 310 + window.menuBar()->height());
  ASSERT_TRUE(serveUntil([this] { return !slot_->notes.empty(); }));
  EXPECT_EQ(slot_->notes.back(), "Resize");
  EXPECT_EQ(slot_->Width, 7500.0F + 200.0F);
  EXPECT_EQ(slot_->Height, 4650.0F + 825.0F);
}

TEST_F(Window, PictureFollowsItsControlsSize) {
  slot_->Show();
  slot_->box.Width = 1515;
  slot_->box.Height = 30;
  EXPECT_EQ(widgetOf(slot_->box).size(), QSize(101, 2));
  EXPECT_EQ(slot_->box.pixelWidth(), 101);
  EXPECT_EQ(slot_->box.pixelHeight(), 2);
}

TEST_F(Window, PictureShowsItsPixelsAtOnce) {
  slot_->Show();
  DoEvents();
  slot_->box.BackColor = RGB(1, 200, 3);
  slot_->box.Cls();
  slot_->box.Refresh();
  EXPECT_EQ(widgetOf(slot_->box).grab().toImage().pixelColor(5, 5), QColor(1, 200, 3));
}

TEST_F(Window, ActivateComesWithTheFocus) {
  slot_->Activate = [this] { slot_->note("Activate"); };
  slot_->Show();
  // The window system's events when a window gets and loses the focus.
  const auto tell = [this](QEvent::Type type) {
    slot_->notes.clear();
    QEvent event(type);
    QCoreApplication::sendEvent(&windowOf(*slot_), &event);
    return slot_->notes;
  };
  EXPECT_EQ(tell(QEvent::WindowActivate), Notes{"Activate"});
  EXPECT_EQ(tell(QEvent::WindowDeactivate), Notes{});
  EXPECT_EQ(tell(QEvent::WindowActivate), Notes{"Activate"}) << "every time";
}

TEST_F(Window, LabelBreaksLinesBeforeItsFontShrinks) {
  Form form("Lines", {.clientWidth = 6000, .clientHeight = 4500});
  const LabelDesign design{.fore = RGB(255, 255, 255), .back = RGB(0, 0, 0)};
  Label broken{&form, {0, 0, 1500, 600}, "narrow extraordinarily", design};
  Label alone{&form, {0, 900, 1500, 600}, "extraordinarily", design};
  form.Show();
  // The last column with ink. The second line is the longer one, with the length that it has alone.
  const auto inkEnd = [](Label& label) {
    const QImage image = widgetOf(label).grab().toImage();
    int end = 0;
    for (int y = 0; y < image.height(); ++y) {
      for (int x = end; x < image.width(); ++x) {
        if (image.pixelColor(x, y).lightness() > 64) end = x;
      }
    }
    return end;
  };
  EXPECT_GT(inkEnd(alone), 40);
  EXPECT_EQ(inkEnd(broken), inkEnd(alone));
}

TEST_F(Window, ToolTipFollowsItsProperty) {
  slot_->box.ToolTipText = "before";
  slot_->Show();
  EXPECT_EQ(widgetOf(slot_->box).toolTip(), QString("before"));
  slot_->box.ToolTipText = "after";
  EXPECT_EQ(widgetOf(slot_->box).toolTip(), QString("after"));
  EXPECT_EQ(widgetOf(slot_->okay).toolTip(), QString());
}

TEST_F(Window, PointerCanBeMadeInvisible) {
  slot_->Show();
  EXPECT_EQ(widgetOf(slot_->box).cursor().shape(), Qt::ArrowCursor);
  slot_->box.MousePointer = 99;
  EXPECT_EQ(widgetOf(slot_->box).cursor().shape(), Qt::BlankCursor);
  slot_->box.MousePointer = 0;
  EXPECT_EQ(widgetOf(slot_->box).cursor().shape(), Qt::ArrowCursor);
}

TEST_F(Window, PositionIsTheOuterCorner) {
  slot_->Left = 1500;
  slot_->Top = 750;
  slot_->Show();
  EXPECT_EQ(windowOf(*slot_).pos(), QPoint(100, 50));
  DoEvents();
  windowOf(*slot_).move(120, 60);
  ASSERT_TRUE(serveUntil([this] { return slot_->Left == 1800.0F; }));
  EXPECT_EQ(slot_->Top, 900.0F);
}

TEST_F(Window, UnplacedFormKnowsItsPositionAtOnce) {
  slot_->Show();
  EXPECT_EQ(QPoint(static_cast<int>(slot_->Left / 15), static_cast<int>(slot_->Top / 15)), windowOf(*slot_).pos());
  EXPECT_GT(slot_->Left, 0.0F);
}

TEST_F(Window, LowestTabIndexHasTheFocusFirst) {
  slot_->Show();
  EXPECT_EQ(windowOf(*slot_).focusWidget(), &widgetOf(slot_->second));
  EXPECT_EQ(widgetOf(slot_->second).nextInFocusChain(), &widgetOf(slot_->first));
  slot_->first.SetFocus();
  EXPECT_EQ(windowOf(*slot_).focusWidget(), &widgetOf(slot_->first));
}

TEST_F(Window, OnlyPicturesWithKeyHandlersTakeTheFocus) {
  slot_->Show();
  slot_->box.KeyDown = nullptr;
  slot_->box.KeyPress = nullptr;
  sendMouse(slot_->box, QEvent::MouseButtonPress, {1, 1}, Qt::LeftButton, Qt::LeftButton);
  EXPECT_EQ(windowOf(*slot_).focusWidget(), &widgetOf(slot_->second));
  slot_->box.KeyPress = [](int) {};
  sendMouse(slot_->box, QEvent::MouseButtonPress, {1, 1}, Qt::LeftButton, Qt::LeftButton);
  EXPECT_EQ(windowOf(*slot_).focusWidget(), &widgetOf(slot_->box));
}

// The press comes through the window system like a player's. Only then does the toolkit move the focus by itself.
TEST_F(Window, ClickOnAPictureWithoutKeyHandlersKeepsTheFocus) {
  Form form("Pictures", {.clientWidth = 3000, .clientHeight = 3000});
  PictureBox silent(&form, {0, 0, 1500, 1500});
  PictureBox listening(&form, {1500, 0, 1500, 1500});
  TextBox entry(&form, {0, 1500, 1500, 300}, "");
  entry.TabIndex = 0;
  int clicks = 0;
  silent.Click = [&clicks] { ++clicks; };
  listening.KeyPress = [](int) {};
  form.Show();
  FormWindow& window = windowOf(form);
  ASSERT_EQ(window.focusWidget(), &widgetOf(entry));
  const auto click = [&window](PictureBox& picture) {
    const QPoint place = widgetOf(picture).mapTo(&window, QPoint(10, 10));
    QTest::mouseClick(window.windowHandle(), Qt::LeftButton, Qt::NoModifier, place);
  };
  click(silent);
  EXPECT_EQ(clicks, 1) << "it still counts as a click";
  EXPECT_EQ(window.focusWidget(), &widgetOf(entry));
  click(listening);
  EXPECT_EQ(window.focusWidget(), &widgetOf(listening));
  click(silent);
  EXPECT_EQ(window.focusWidget(), &widgetOf(listening));
}

/// The first row of a widget's picture that isn't plain background; -1 if there is none.
int inkTop(QWidget& widget) {
  const QImage image = widget.grab().toImage();
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      if (image.pixel(x, y) != image.pixel(0, 0)) return y;
    }
  }
  return -1;
}

TEST_F(Window, LinesAreCentredInTheirLabelAndHeadingsAtTheTop) {
  const FontSpec font{"Comic Sans MS", 9, true};
  const int line = QFontMetrics(toQFont(font)).height();
  const auto twips = [](int pixels) { return static_cast<float>(pixels * 15); };
  Form form("Labels", {.clientWidth = 3000, .clientHeight = 3000});
  const LabelDesign design{.fore = RGB(255, 255, 255), .back = RGB(0, 0, 0), .font = font};
  Label single(&form, {0, 0, 1500, twips(line)}, "Heading", design);
  Label low(&form, {0, 600, 1500, twips(line + 9)}, "Heading", design);
  Label high(&form, {0, 1500, 1500, twips(3 * line)}, "Heading", design);
  form.Show();
  const int top = inkTop(widgetOf(high));
  ASSERT_GE(top, 0);
  EXPECT_EQ(inkTop(widgetOf(single)), top);
  EXPECT_EQ(inkTop(widgetOf(low)), top + 5) << "of 9 pixels 5 are above, as in a text box";
}

TEST_F(Window, MenuShowsStateAndLeavesItToTheHandler) {
  slot_->Show();
  const QList<QAction*> bar = windowOf(*slot_).menuBar()->actions();
  ASSERT_EQ(bar.size(), 1);
  const QList<QAction*> items = bar[0]->menu()->actions();
  ASSERT_EQ(items.size(), 3);
  EXPECT_EQ(items[0]->text(), "Ticked");
  EXPECT_TRUE(items[0]->isChecked());
  EXPECT_TRUE(items[1]->isSeparator());
  EXPECT_FALSE(items[2]->isEnabled());
  items[0]->trigger();
  EXPECT_EQ(slot_->notes, Notes{"item"});
  EXPECT_TRUE(items[0]->isChecked()) << "the handler hasn't toggled it";
  slot_->item.Checked = false;
  EXPECT_FALSE(items[0]->isChecked());
  slot_->off.Enabled = true;
  EXPECT_TRUE(items[2]->isEnabled());
}

TEST_F(Window, ClosingUnloadsTheForm) {
  slot_->Show();
  FormProbe* form = &*slot_;
  windowOf(*form).close();
  EXPECT_EQ(FormProbe::unloadings(), Notes{"unloading"});
  EXPECT_FALSE(slot_.isLoaded());
  EXPECT_FALSE(windowOf(*form).isVisible()) << "hidden, and still in memory";
  EXPECT_TRUE(form->isUnloaded());
  DoEvents();
}

TEST_F(Window, AnUnloadedFormTakesNoMoreEvents) {
  slot_->Show();
  FormProbe* form = &*slot_;
  bool ticked = false;
  form->timer.Timer = [&ticked] { ticked = true; };
  ASSERT_TRUE(serveUntil([&ticked] { return ticked; }));
  ticked = false;
  slot_.unload();
  const QDeadlineTimer while_(20);
  serveUntil([&while_] { return while_.hasExpired(); });
  EXPECT_FALSE(ticked);
  form->notes.clear();
  sendMouse(form->box, QEvent::MouseMove, {1, 1}, Qt::NoButton, Qt::NoButton);
  EXPECT_EQ(form->notes, Notes{});
  DoEvents();
}

TEST_F(Window, TimerFollowsItsProperties) {
  slot_->Show();
  int ticks = 0;
  slot_->timer.Timer = [&ticks] { ++ticks; };
  ASSERT_TRUE(serveUntil([&ticks] { return ticks > 2; }));
  slot_->timer.Enabled = false;
  const int before = ticks;
  const QDeadlineTimer while_(20);
  serveUntil([&while_] { return while_.hasExpired(); });
  EXPECT_EQ(ticks, before);
}

TEST_F(Window, RestingTimerPausesUntilWoken) {
  slot_->Show();
  int ticks = 0;
  bool mayRest = false;
  slot_->timer.Timer = [&ticks] { ++ticks; };
  slot_->timer.mayRest = [&mayRest] { return mayRest; };
  ASSERT_TRUE(serveUntil([&ticks] { return ticks > 2; }));
  mayRest = true;
  ASSERT_TRUE(serveUntil([this] { return slot_->timer.isResting; }));
  const int before = ticks;
  const QDeadlineTimer while_(20);
  serveUntil([&while_] { return while_.hasExpired(); });
  EXPECT_EQ(ticks, before);
  mayRest = false;
  slot_->timer.wake();
  EXPECT_TRUE(serveUntil([&ticks, before] { return ticks > before + 2; }));
  EXPECT_FALSE(slot_->timer.isResting);
}

/// Counts how often a widget is painted.
class PaintCounter : public QObject {
 public:
  int paintings = 0;
  bool eventFilter(QObject* watched, QEvent* event) override {
    paintings += event->type() == QEvent::Paint ? 1 : 0;
    return QObject::eventFilter(watched, event);
  }
};

TEST_F(Window, UnchangedLabelIsNotRepainted) {
  slot_->Show();
  PaintCounter counter;
  widgetOf(slot_->label).installEventFilter(&counter);
  ASSERT_TRUE(serveUntil([&counter] { return counter.paintings > 0; }));
  const auto paintingsOf = [&counter](const std::function<void()>& change) {
    counter.paintings = 0;
    change();
    const QDeadlineTimer while_(20);
    serveUntil([&while_] { return while_.hasExpired(); });
    return counter.paintings;
  };
  paintingsOf([] {});  // paints left over from showing it
  EXPECT_EQ(paintingsOf([this] { slot_->label.Caption = "label"; }), 0);
  EXPECT_EQ(paintingsOf([this] { slot_->label.Caption = "other"; }), 1);
  EXPECT_EQ(paintingsOf([this] { slot_->label.Caption = "other"; }), 0);
  EXPECT_EQ(paintingsOf([this] { slot_->label.BackColor = RGB(1, 2, 3); }), 1);
  EXPECT_EQ(paintingsOf([this] { slot_->label.BackColor = RGB(1, 2, 3); }), 0);
}

TEST_F(Window, ModalShowReturnsWhenTheFormIsHidden) {
  bool wasModal = false;
  QTimer::singleShot(0, [this, &wasModal] {
    wasModal = windowOf(*slot_).windowModality() == Qt::ApplicationModal;
    EXPECT_THROW(slot_->Show(Form::Modality::Modal), RuntimeFault);
    slot_->Hide();
  });
  slot_->Show(Form::Modality::Modal);
  EXPECT_TRUE(wasModal);
  EXPECT_FALSE(slot_->Visible);
}

TEST_F(Window, ModalShowReturnsWhenTheFormIsUnloaded) {
  QTimer::singleShot(0, [this] { slot_.unload(); });
  slot_->Show(Form::Modality::Modal);
  EXPECT_FALSE(slot_.isLoaded());
  DoEvents();
}

TEST_F(Window, ReshownModalFormUnblocksTheOthersWhenItCloses) {
  Form main("Main", {.clientWidth = 3000, .clientHeight = 3000});
  PictureBox picture(&main, {0, 0, 3000, 3000});
  int clicks = 0;
  picture.Click = [&clicks] { ++clicks; };
  main.Show();
  const auto click = [&main] {
    QTest::mouseClick(windowOf(main).windowHandle(), Qt::LeftButton, Qt::NoModifier, QPoint(50, 50));
  };
  QTimer::singleShot(0, [this, &click, &clicks] {
    slot_->Show();
    click();
    EXPECT_EQ(clicks, 0) << "it is still modal";
    slot_.unload();
  });
  slot_->Show(Form::Modality::Modal);
  click();
  EXPECT_EQ(clicks, 1);
  DoEvents();
}

TEST_F(Window, AutoSizeLabelIsAsWideAsItsText) {
  Form form("", {.clientWidth = 1500, .clientHeight = 1500});
  Label label(&form, {0, 0, 45, 195}, "", {.font = {"Comic Sans MS", 9, true}, .autoSize = true});
  form.Show();
  EXPECT_EQ(label.Width, 0.0F);
  label.Caption = "Round over";
  EXPECT_EQ(label.Width, Surface::textWidth({"Comic Sans MS", 9, true}, "Round over"));
  const float small = label.Width;
  label.FontSize = 16;
  EXPECT_GT(label.Width, small);
}

}  // namespace
}  // namespace kelvora
