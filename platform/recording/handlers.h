#pragma once

#include "platform/form.h"
#include "platform/recording/format.h"
#include "platform/widgets.h"

namespace kelvora::recording {

/// Visits the handlers of a control that a backend raises, whether they are set or not.
template <class Visit>
void visitHandlers(Control& control, const Visit& visit) {
  visit(EventId::Click, control.Click);
  visit(EventId::MouseDown, control.MouseDown);
  visit(EventId::MouseMove, control.MouseMove);
  visit(EventId::MouseUp, control.MouseUp);
  visit(EventId::KeyDown, control.KeyDown);
  visit(EventId::KeyPress, control.KeyPress);
  visit(EventId::DblClick, control.DblClick);
  if (auto* form = dynamic_cast<Form*>(&control)) {
    visit(EventId::Resize, form->Resize);
    visit(EventId::Activate, form->Activate);
    visit(EventId::Closing, form->Closing);
  } else if (auto* slider = dynamic_cast<Slider*>(&control)) {
    visit(EventId::Change, slider->Change);
    visit(EventId::Scroll, slider->Scroll);
  } else if (auto* timer = dynamic_cast<IntervalTimer*>(&control)) {
    visit(EventId::Timer, timer->Timer);
  }
}

/// A form and the controls that it contains, each container before its contents.
inline void appendControls(Control& container, std::vector<Control*>& all) {
  all.push_back(&container);
  for (Control* child : container.children()) appendControls(*child, all);
}

inline std::vector<Control*> controlsOf(Form& form) {
  std::vector<Control*> all;
  appendControls(form, all);
  return all;
}

}  // namespace kelvora::recording
