#pragma once

#include <utility>

namespace kelvora {

class Control;

/// Clicks the form's last visible default button (Enter) or cancel button (Esc). False if it has none.
bool answerKey(Control& form, bool enter);

/// The keys of a control that its form has answered. The control gets neither them nor their characters.
class AnsweredKeys {
 public:
  /// Handles a press of Enter or Esc. False if it is the control's own.
  bool takeDown(Control& control, bool enter);
  /// Handles a character of Enter or Esc. False if it is the control's own.
  bool takeCharacter() { return std::exchange(isCharacterDue_, false); }

 private:
  bool isCharacterDue_ = false;
};

}  // namespace kelvora
