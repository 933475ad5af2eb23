#pragma once

#include <QCoreApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <string>
#include <vector>

#include "platform/form.h"
#include "platform/menuItem.h"
#include "platform/pictureBox.h"
#include "platform/qt/qtForm.h"
#include "platform/qt/widgetPeer.h"
#include "platform/widgets.h"

namespace kelvora {

/// A window with controls of several kinds that records their events.
class FormProbe : public Form {
 public:
  FormProbe() : Form("Probe", {.clientWidth = 6000, .clientHeight = 4500, .border = Border::Sizable}) {
    first.TabIndex = 1;
    second.TabIndex = 0;
    Resize = [this] { note("Resize"); };
    listen(label, "label");
    listen(box, "box");
    listen(first, "first");
    okay.Click = [this] { note("okay"); };
    stop.Click = [this] { note("stop"); };
    item.Click = [this] { note("item"); };
  }
  void unloading() override { unloadings().push_back("unloading"); }

  static std::vector<std::string>& unloadings() {
    static std::vector<std::string> notes;
    return notes;
  }

  MenuItem menu{this, "File"};
  MenuItem item{&menu, "Ticked", MenuItem::Design::Checked};
  MenuItem line{&menu, "-"};
  MenuItem off{&menu, "Off", MenuItem::Design::Disabled};
  Label label{this, {150, 150, 1500, 300}, "label", {}};
  PictureBox box{this, {1500, 600, 3000, 1500}};
  TextBox first{this, {150, 3000, 1500, 300}, "one"};
  TextBox second{this, {1800, 3000, 1500, 300}, "two"};
  Button okay{this, {150, 3600, 1500, 375}, "Okay", Button::Role::Default};
  Button stop{this, {1800, 3600, 1500, 375}, "Stop", Button::Role::Cancel};
  IntervalTimer timer{this, 1};

  std::vector<std::string> notes;

  void note(const std::string& text) { notes.push_back(text); }

 private:
  void listen(Control& control, const std::string& name) {
    const auto mouse = [this, name](const std::string& event) {
      return [this, name, event](int Button, int Shift, float X, float Y) {
        note(name + " " + event + " " + std::to_string(Button) + " " + std::to_string(Shift) + " " +
             std::to_string(static_cast<int>(X)) + " " + std::to_string(static_cast<int>(Y)));
      };
    };
    control.MouseDown = mouse("down");
    control.MouseMove = mouse("move");
    control.MouseUp = mouse("up");
    control.Click = [this, name] { note(name + " click"); };
    control.KeyDown = [this, name](int KeyCode, int Shift) {
      note(name + " key " + std::to_string(KeyCode) + " " + std::to_string(Shift));
    };
    control.KeyPress = [this, name](int KeyAscii) { note(name + " press " + std::to_string(KeyAscii)); };
  }
};

inline QWidget& widgetOf(Control& control) { return *dynamic_cast<WidgetPeer&>(*control.peer).widget(); }
inline FormWindow& windowOf(Form& form) { return dynamic_cast<FormPeer&>(*form.peer).window(); }

inline void sendMouse(Control& control, QEvent::Type type, QPoint pixel, Qt::MouseButton button,
                      Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
  QWidget& widget = widgetOf(control);
  QMouseEvent event(type, pixel, widget.mapToGlobal(pixel), button, buttons, modifiers);
  QCoreApplication::sendEvent(&widget, &event);
}

inline void sendKey(QWidget& widget, int key, const QString& text = {},
                    Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
  QKeyEvent event(QEvent::KeyPress, key, modifiers, text);
  QCoreApplication::sendEvent(&widget, &event);
}

}  // namespace kelvora
