#pragma once

#include <string>

#include "platform/form.h"
#include "platform/recording/format.h"
#include "platform/widgets.h"

namespace kelvora::recording {

// The secrets that a recording conceals.

/// A setting's value, hidden if its key is that of a password.
std::string toldSetting(const std::string& key, const std::string& value);
/// The text of a box. Some of it may be hidden without changing its length.
std::string toldText(const TextBox& box);

/// True while a secret is being typed into the form.
bool isTypingSecret(Form& form);
/// A key event's number without the letter that it tells. Keys that write nothing stay, such as Enter and the arrows.
int withoutLetter(EventId id, int code);
inline float withoutLetter(EventId, float coordinate) { return coordinate; }

}  // namespace kelvora::recording
