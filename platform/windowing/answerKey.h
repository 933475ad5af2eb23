#pragma once

namespace kelvora {

class Control;

/// Clicks the form's last visible default button (Enter) or cancel button (Esc). False if it has none.
bool answerKey(Control& form, bool enter);

}  // namespace kelvora
