#include "rendering/startLogo.h"

#include "base/fault.h"
#include "frontend/frmMain.h"
#include "platform/backend.h"

namespace kelvora::modMain {

void showStartLogo() {
  resumeNext([] { frmMain->canvas.MousePointer = 0; });
  resumeNext([] { frmMain->canvas.setPicture(LoadPicture(applicationPath() + "/kelvora.jpg")); });
  resumeNext([] { frmMain->lbcConnect.Visible = true; });
  for (int i = 0; i <= frmMain->picCaps.UBound; ++i) {
    resumeNext([i] {
      frmMain->picCaps[i].Cls();
      frmMain->picCaps[i].Refresh();
    });
    // Quirk Q-309: the captures beside the names, the credits and the latency stay.
    resumeNext([i] { frmMain->lbUserName[i].Caption = ""; });
    resumeNext([i] { frmMain->lbUserName[i].BackColor = RGB(0, 0, 0); });
  }
}

void hideStartLogo() {
  frmMain->canvas.setPicture(nullptr);
  frmMain->canvas.MousePointer = 99;
  frmMain->lbcConnect.Visible = false;
}

}  // namespace kelvora::modMain
