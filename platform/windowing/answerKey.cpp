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

}  // namespace kelvora
