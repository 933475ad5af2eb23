#include "frontend/frmConnect.h"
#include "frontend/frmFonts.h"
#include "frontend/frmGameFind.h"
#include "frontend/frmMain.h"
#include "store/frmPowerups.h"
#include "tests/platform/windowModel/hands.h"

namespace kelvora::hands {

namespace {

template <class FormType>
void addVisible(std::vector<Form*>& forms, FormSlot<FormType>& slot) {
  if (slot.isVisible()) forms.push_back(&*slot);
}

}  // namespace

std::vector<Form*> visibleForms() {
  std::vector<Form*> forms;
  addVisible(forms, frmMain);
  addVisible(forms, frmConnect);
  addVisible(forms, frmGameFind);
  addVisible(forms, frmFonts);
  addVisible(forms, frmPowerups);
  return forms;
}

}  // namespace kelvora::hands
