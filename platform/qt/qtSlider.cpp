#include <QSignalBlocker>
#include <QSlider>

#include "platform/qt/widgetPeer.h"
#include "platform/widgets.h"
#include "platform/windowing/handlerCall.h"

namespace kelvora {

namespace {

class SliderWidget : public QSlider {
 public:
  SliderWidget(Slider& slider, QWidget* parent) : QSlider(Qt::Horizontal, parent), slider_(slider) {
    // Marks and edges derive from these two. A dark window's own colours would make them dark.
    QPalette colours = palette();
    colours.setColor(QPalette::Window, QColor(239, 239, 239));
    colours.setColor(QPalette::Highlight, QColor(120, 168, 248));
    setPalette(colours);
    setRange(slider.Min, slider.Max);
    setSingleStep(1);
    setPageStep(1);
    setTickPosition(QSlider::TicksBelow);
    setTickInterval(1);
    setValue(slider.Value);
    setFocusPolicy(slider.TabIndex >= 0 ? Qt::StrongFocus : Qt::ClickFocus);
    connect(this, &QSlider::sliderMoved, this, [this](int value) {
      slider_.Value.adopt(value);
      raiseEvent(slider_, slider_.Scroll);
    });
    connect(this, &QSlider::valueChanged, this, [this](int value) {
      slider_.Value.adopt(value);
      if (!isSliderDown()) raiseEvent(slider_, slider_.Change);
    });
    connect(this, &QSlider::sliderReleased, this, [this] { raiseEvent(slider_, slider_.Change); });
  }

 private:
  Slider& slider_;
};

class SliderPeer : public WidgetPeer {
 public:
  SliderPeer(Slider& slider, QWidget* parent) : SliderPeer(slider, new SliderWidget(slider, parent)) {}

 protected:
  void show(PropertyId id) override {
    if (id != PropertyId::Value) return;
    const QSignalBlocker quiet(widget_);  // events are for user input only
    widget_->setValue(slider_.Value);
  }

 private:
  SliderPeer(Slider& slider, SliderWidget* widget) : WidgetPeer(slider, widget), slider_(slider), widget_(widget) {}

  Slider& slider_;
  SliderWidget* widget_;
};

}  // namespace

std::unique_ptr<WidgetPeer> makePeer(Slider& slider, QWidget* parent) {
  return std::make_unique<SliderPeer>(slider, parent);
}

}  // namespace kelvora
