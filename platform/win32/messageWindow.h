#pragma once

#include "platform/form.h"
#include "platform/widgets.h"

namespace kelvora {

/// A message with one button, as dark as the game's dialogs. Shown modally.
class MessageWindow : public Form {
 public:
  explicit MessageWindow(const std::string& text);

 private:
  struct Size {
    float width;
    float height;
  };
  MessageWindow(const std::string& text, Size size);
  static Size measure(const std::string& text);

  Label text_;
  Button close_;
};

}  // namespace kelvora
