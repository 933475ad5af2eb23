#include <gtest/gtest.h>

#include <QSlider>
#include <QStyleOptionSlider>
#include <QWheelEvent>

#include "tests/platform/qt/formProbe.h"

namespace kelvora {
namespace {

using Notes = std::vector<std::string>;

class SliderForm : public Form {
 public:
  SliderForm() : Form("Sliders", {.clientWidth = 3000, .clientHeight = 900}) {
    slider.TabIndex = 0;
    slider.Change = [this] { notes.push_back("change " + std::to_string(slider.Value)); };
    slider.Scroll = [this] { notes.push_back("scroll " + std::to_string(slider.Value)); };
  }

  Slider slider{this, {150, 150, 2400, 360}, 9, 16};
  Notes notes;
};

class Sliders : public ::testing::Test {
 protected:
  Sliders() {
    form_.slider.Value = 12;
    form_.Show();
  }
  QSlider& widget() { return dynamic_cast<QSlider&>(widgetOf(form_.slider)); }
  /// The middle of the handle.
  QPoint handle() {
    QStyleOptionSlider option;
    option.initFrom(&widget());
    option.minimum = widget().minimum();
    option.maximum = widget().maximum();
    option.sliderPosition = widget().sliderPosition();
    option.sliderValue = widget().value();
    option.tickPosition = widget().tickPosition();
    option.tickInterval = widget().tickInterval();
    return widget().style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, &widget()).center();
  }
  void wheel(int delta) {
    const QPointF place(5, 5);
    QWheelEvent event(place, widget().mapToGlobal(place), {}, {0, delta}, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&widget(), &event);
  }

  SliderForm form_;
};

TEST_F(Sliders, AreNativeWithTheControlsEndsAndPosition) {
  EXPECT_EQ(widget().minimum(), 9);
  EXPECT_EQ(widget().maximum(), 16);
  EXPECT_EQ(widget().value(), 12);
  EXPECT_EQ(widget().geometry(), QRect(10, 10, 160, 24));
  EXPECT_EQ(form_.notes, Notes{});
}

TEST_F(Sliders, ADragScrollsAndItsEndIsAChange) {
  // To the right end in two moves, then released.
  const QPoint start = handle();
  sendMouse(form_.slider, QEvent::MouseButtonPress, start, Qt::LeftButton, Qt::LeftButton);
  EXPECT_EQ(form_.notes, Notes{});
  // 7 steps are spread over the handle's range of less than 160 pixels, so 20 pixels are about one step.
  sendMouse(form_.slider, QEvent::MouseMove, start + QPoint(20, 0), Qt::NoButton, Qt::LeftButton);
  sendMouse(form_.slider, QEvent::MouseMove, start + QPoint(300, 0), Qt::NoButton, Qt::LeftButton);
  EXPECT_EQ(form_.notes, (Notes{"scroll 13", "scroll 16"}));
  sendMouse(form_.slider, QEvent::MouseButtonRelease, start + QPoint(300, 0), Qt::LeftButton, Qt::NoButton);
  EXPECT_EQ(form_.notes, (Notes{"scroll 13", "scroll 16", "change 16"}));
}

TEST_F(Sliders, KeysStepByOneOrToTheEnds) {
  for (const int key : {Qt::Key_Right, Qt::Key_Left, Qt::Key_PageUp, Qt::Key_PageDown, Qt::Key_End, Qt::Key_Right,
                        Qt::Key_Home, Qt::Key_Left}) {
    sendKey(widget(), key);
  }
  EXPECT_EQ(form_.notes, (Notes{"change 13", "change 12", "change 13", "change 12", "change 16", "change 9"}));
}

TEST_F(Sliders, WheelStepsByOne) {
  wheel(120);
  wheel(-120);
  EXPECT_EQ(form_.notes, (Notes{"change 13", "change 12"}));
}

TEST_F(Sliders, AssigningShowsAndRaisesNothing) {
  form_.slider.Value = 15;
  EXPECT_EQ(widget().value(), 15);
  form_.slider.Value = 100;
  EXPECT_EQ(widget().value(), 16);
  EXPECT_EQ(form_.slider.Value, 16);
  EXPECT_EQ(form_.notes, Notes{});
}

TEST_F(Sliders, TheHandlerMayAssignTheValueItself) {
  form_.slider.Scroll = [this] { form_.slider.Value = 10; };
  const QPoint start = handle();
  sendMouse(form_.slider, QEvent::MouseButtonPress, start, Qt::LeftButton, Qt::LeftButton);
  sendMouse(form_.slider, QEvent::MouseMove, start + QPoint(20, 0), Qt::NoButton, Qt::LeftButton);
  EXPECT_EQ(form_.slider.Value, 10);
  EXPECT_EQ(widget().value(), 10);
}

}  // namespace
}  // namespace kelvora
