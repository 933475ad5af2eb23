#include "platform/form.h"

#include <utility>

#include "platform/backend.h"

namespace kelvora {

namespace {
std::vector<std::unique_ptr<Form>> retiredForms;
}

Form::Form(std::string caption, Design formDesign)
    : Control(nullptr, {0, 0, formDesign.clientWidth + frameWidth, formDesign.clientHeight + frameHeight}),
      Caption(*this, PropertyId::Caption, std::move(caption)),
      design(formDesign) {
  Visible.adopt(false);
  Closing = [this] {
    unloading();
    if (unload) unload();
  };
}

void Form::Show(Modality modality) {
  if (modality == Modality::Modal && Visible) throw RuntimeFault("Form already displayed; can't show modally");
  if (!peer) backend().realize(*this);
  if (!Visible) modality_ = modality;
  Visible = true;
  if (modality == Modality::Modal) backend().runModal(*this);
}

void Form::Hide() { Visible = false; }

void Form::clientResized(float clientWidth, float clientHeight) {
  Width.adopt(clientWidth + frameWidth);
  Height.adopt(clientHeight + frameHeight);
  if (Resize) Resize();
}

void Form::closedByUser() { Closing(); }

void retireForm(std::unique_ptr<Form> form) {
  form->unloaded_ = true;
  form->unloaded();
  form->Hide();
  retiredForms.push_back(std::move(form));
}

void releaseUnloadedForms() { retiredForms.clear(); }

}  // namespace kelvora
