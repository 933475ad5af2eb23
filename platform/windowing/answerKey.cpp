#include "platform/windowing/answerKey.h"

#include "platform/widgets.h"
#include "platform/windowing/controlWalk.h"
#include "platform/windowing/handlerCall.h"

namespace kelvora {

bool answerKey(Control& form, bool enter) {
  const Button::Role role = enter ? Button::Role::Default : Button::Role::Cancel;
  Button* answer = nullptr;
  visitControls(form, [&answer, role](Control& control) {
    auto* button = dynamic_cast<Button*>(&control);
    if (button && button->role == role && button->Visible) answer = button;
  });
  if (!answer) return false;
  raiseEvent(*answer, answer->Click);
  return true;
}

bool AnsweredKeys::takeDown(Control& control, bool enter) {
  if (!takesEvents(control)) return false;
  isCharacterDue_ = true;  // before the button opens a box, under which the character may come
  if (answerKey(control.root(), enter)) return true;
  isCharacterDue_ = false;
  return false;
}

}  // namespace kelvora
