#include "platform/recording/secrets.h"

#include <algorithm>
#include <vector>

#include "platform/recording/handlers.h"

namespace kelvora::recording {

namespace {

std::string hiddenIf(bool isSecret, const std::string& text) { return isSecret && !text.empty() ? "hidden" : text; }

}  // namespace

std::string toldSetting(const std::string& key, const std::string& value) {
  // The game's keys are in lower case.
  return hiddenIf(key.find("password") != std::string::npos, value);
}

std::string toldText(const TextBox& box) {
  const std::string& text = box.Text;
  const std::size_t kept = box.secretAt ? box.secretAt(text) : std::string::npos;
  if (kept == std::string::npos) return hiddenIf(box.design.isSecret, text);
  return text.substr(0, kept) + std::string(text.size() - kept, '*');
}

bool isTypingSecret(Form& form) {
  const std::vector<Control*> controls = controlsOf(form);
  return std::any_of(controls.begin(), controls.end(), [](Control* control) {
    const auto* box = dynamic_cast<TextBox*>(control);
    return box != nullptr && box->secretAt && box->secretAt(box->Text) != std::string::npos;
  });
}

int withoutLetter(EventId id, int code) {
  constexpr int firstLetter = 32;
  constexpr int firstWritingKey = 48;
  constexpr int keyF1 = 112;
  constexpr int keyF24 = 135;
  if (id == EventId::KeyPress) return code < firstLetter ? code : '*';
  const bool writes = code == firstLetter || (code >= firstWritingKey && (code < keyF1 || code > keyF24));
  return id == EventId::KeyDown && writes ? 0 : code;
}

}  // namespace kelvora::recording
