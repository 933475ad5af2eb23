#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/control.h"
#include "raster/colour.h"

namespace kelvora {

/// A window. Left and Top are the outer corner on the screen in twips; Width and Height count a frame of fixed size
/// round the client area, whatever decoration the window manager puts there.
class Form : public Control {
 public:
  static constexpr float frameWidth = 200;   ///< twips, both sides together
  static constexpr float frameHeight = 825;  ///< twips, title and menu included

  enum class Border { Sizable, Fixed };  ///< Fixed: no resizing, no minimise or maximise button
  struct Design {
    float clientWidth = 0;   ///< twips
    float clientHeight = 0;  ///< twips
    Border border = Border::Fixed;
    Colour back = RGB(0, 0, 0);
    bool systemColours = false;  ///< the background of all dialogs in place of `back`
  };
  enum class Modality { Modeless, Modal };

  Form(std::string caption, Design design);

  Property<std::string> Caption;
  const Design design;

  /// Runs once, right after the form came into being and can be found by its name.
  virtual void load() {}
  /// The user closed the window; the form is unloaded when this returns, unless it ended the process.
  virtual void unloading() {}
  /// Runs when the form has been unloaded, by whomever; it stays in memory for a while.
  virtual void unloaded() {}

  std::function<void()> Resize;
  /// The window has got the focus, at its first showing too.
  std::function<void()> Activate;

  /// Shows the window. Modal returns when it has been hidden or unloaded; a modal show of a visible form is
  /// RuntimeFault. A modeless show of a visible form brings it to the front and leaves its modality alone.
  void Show(Modality modality = Modality::Modeless);
  void Hide();

  /// The user or the window manager gave the window another size: client area in twips. Runs Resize.
  void clientResized(float clientWidth, float clientHeight);
  /// The user closed the window: runs `unloading`, then unloads the form.
  void closedByUser();

  /// Chosen by the show that makes the form visible, and kept until it is hidden.
  Modality modality() const { return modality_; }
  /// True from the unload on. The form takes no more events.
  bool isUnloaded() const { return unloaded_; }

  /// Unloads the form by its name; set by its slot.
  std::function<void()> unload;

 private:
  friend void retireForm(std::unique_ptr<Form> form);

  Modality modality_ = Modality::Modeless;
  bool unloaded_ = false;
};

/// A form by its name: it comes into being, and loads, the first time that it is touched, and again after an unload.
template <class FormType>
class FormSlot {
 public:
  FormType& operator*() {
    if (!form_) {
      form_ = std::make_unique<FormType>();
      form_->Form::unload = [this] { unload(); };
      form_->load();
    }
    return *form_;
  }
  FormType* operator->() { return &**this; }

  bool isLoaded() const { return form_ != nullptr; }
  /// True if the form is loaded and on the screen. Does not load it.
  bool isVisible() const { return form_ && form_->Visible; }

  void unload();

 private:
  std::unique_ptr<FormType> form_;
};

/// Unloaded forms stay in memory until `releaseUnloadedForms`, since the handler that unloaded one may be its own.
void retireForm(std::unique_ptr<Form> form);
/// Frees them; called where no event handler is running.
void releaseUnloadedForms();

template <class FormType>
void FormSlot<FormType>::unload() {
  if (form_) retireForm(std::move(form_));
}

}  // namespace kelvora
