#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/control.h"
#include "raster/colour.h"

namespace kelvora {

/// A window. Left and Top are its outer corner on the screen, in twips. Width and Height include a frame of fixed size
/// around the client area, whatever decoration the window manager adds.
class Form : public Control {
 public:
  static constexpr float frameWidth = 200;   ///< twips, both sides together
  static constexpr float frameHeight = 825;  ///< twips, including title and menu

  enum class Border { Sizable, Fixed };  ///< Fixed has no resizing, minimise or maximise button
  struct Design {
    float clientWidth = 0;   ///< twips
    float clientHeight = 0;  ///< twips
    Border border = Border::Fixed;
    Colour back = RGB(0, 0, 0);
    bool systemColours = false;  ///< the dialogs' common background instead of `back`
  };
  enum class Modality { Modeless, Modal };

  Form(std::string caption, Design design);

  Property<std::string> Caption;
  const Design design;

  /// Called once, after the form has been created. Its slot already returns it.
  virtual void load() {}
  /// Called when the user closes the window. The form is unloaded afterwards.
  virtual void unloading() {}
  /// Called after the form has been unloaded, in whatever way. It stays in memory until `releaseUnloadedForms`.
  virtual void unloaded() {}

  /// Raised when the client area has a new size.
  std::function<void()> Resize;
  /// Raised when the user closes the window. Runs `unloading`, then unloads the form.
  std::function<void()> Closing;
  /// Raised whenever the window gets the focus, including when it is first shown.
  std::function<void()> Activate;

  /// Shows the window. A modal call returns when the window has been hidden or unloaded, and raises RuntimeFault if the
  /// form is already visible. A modeless call on a visible form brings it to the front and keeps its modality.
  void Show(Modality modality = Modality::Modeless);
  /// Hides the window without unloading it. Ends a modal `Show`.
  void Hide();

  /// Called when the user or the window manager resizes the window; client area in twips. Runs Resize.
  void clientResized(float clientWidth, float clientHeight);
  /// Called when the user closes the window. Runs Closing.
  void closedByUser();

  /// The modality of the call that made the form visible. Kept until the form is hidden.
  Modality modality() const { return modality_; }
  /// True once unloaded. The form then takes no more events.
  bool isUnloaded() const { return unloaded_; }

  /// Unloads the form through its slot, which sets this.
  std::function<void()> unload;

 private:
  friend void retireForm(std::unique_ptr<Form> form);

  Modality modality_ = Modality::Modeless;
  bool unloaded_ = false;
};

/// Holds a form for global access. The first access creates and loads it, and so does the first access after an unload.
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
  /// True if the form is loaded and visible. Doesn't load it.
  bool isVisible() const { return form_ && form_->Visible; }

  void unload();

 private:
  std::unique_ptr<FormType> form_;
};

/// Keeps an unloaded form in memory until `releaseUnloadedForms`, because one of its own handlers may be running.
void retireForm(std::unique_ptr<Form> form);
/// Destroys retired forms. Must be called while no event handler is running.
void releaseUnloadedForms();

template <class FormType>
void FormSlot<FormType>::unload() {
  if (form_) retireForm(std::move(form_));
}

}  // namespace kelvora
