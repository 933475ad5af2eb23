#include <gtest/gtest.h>

#include "base/fault.h"
#include "platform/form.h"
#include "platform/menuItem.h"
#include "platform/pictureBox.h"
#include "platform/widgets.h"
#include "tests/support/gameTest.h"

namespace kelvora {
namespace {

class SampleForm : public Form {
 public:
  SampleForm() : Form("Sample", {.clientWidth = 3000, .clientHeight = 1500}) { ++built; }
  ~SampleForm() override { --built; }
  void load() override { ++loads; }
  void unloading() override { ++unloads; }

  PictureBox picture{this, {0, 0, 1500, 750}};
  TextBox text{this, {0, 0, 300, 300}, "abc"};
  IntervalTimer timer{this, 100};

  static inline int built = 0;
  static inline int loads = 0;
  static inline int unloads = 0;
};

FormSlot<SampleForm> sampleForm;

class Controls : public GameTest {
 protected:
  Controls() { SampleForm::loads = SampleForm::unloads = 0; }
  ~Controls() override {
    sampleForm.unload();
    releaseUnloadedForms();
    EXPECT_EQ(SampleForm::built, 0);
  }
};

/// Records a control's notifications to its peer.
class NotingPeer : public Peer {
 public:
  explicit NotingPeer(std::vector<PropertyId>& told) : told_(told) {}
  void changed(PropertyId id) override { told_.push_back(id); }

 private:
  std::vector<PropertyId>& told_;
};

TEST_F(Controls, FormIsCreatedAndLoadedOnFirstUse) {
  EXPECT_FALSE(sampleForm.isLoaded());
  EXPECT_FALSE(sampleForm.isVisible());
  EXPECT_EQ(SampleForm::built, 0);
  EXPECT_EQ(sampleForm->Caption.get(), "Sample");
  EXPECT_EQ(sampleForm->Left.get(), 0);
  EXPECT_EQ(SampleForm::loads, 1);
  EXPECT_TRUE(sampleForm.isLoaded());
  EXPECT_FALSE(sampleForm.isVisible());
}

TEST_F(Controls, UnloadedFormIsCreatedAgainOnNextUse) {
  sampleForm->text.Text = "changed";
  sampleForm.unload();
  EXPECT_FALSE(sampleForm.isLoaded());
  EXPECT_EQ(sampleForm->text.Text.get(), "abc");
  EXPECT_EQ(SampleForm::loads, 2);
}

TEST_F(Controls, AnUnloadedFormLivesUntilItIsReleased) {
  sampleForm->timer.Timer = [] { sampleForm.unload(); };
  sampleForm->timer.Timer();
  EXPECT_EQ(SampleForm::built, 1);
  releaseUnloadedForms();
  EXPECT_EQ(SampleForm::built, 0);
}

TEST_F(Controls, ClosingByTheUserUnloadsTheForm) {
  sampleForm->Show();
  sampleForm->closedByUser();
  EXPECT_EQ(SampleForm::unloads, 1);
  EXPECT_FALSE(sampleForm.isLoaded());
}

TEST_F(Controls, OuterSizesIncludeTheWindowFrame) {
  EXPECT_EQ(sampleForm->Width.get(), 3200);
  EXPECT_EQ(sampleForm->Height.get(), 2325);
  bool resized = false;
  sampleForm->Resize = [&resized] { resized = true; };
  sampleForm->clientResized(4000, 2000);
  EXPECT_TRUE(resized);
  EXPECT_EQ(sampleForm->Width.get(), 4200);
  EXPECT_EQ(sampleForm->Height.get(), 2825);
}

TEST_F(Controls, AVisibleFormCannotBeShownModally) {
  sampleForm->Show();
  EXPECT_THROW(sampleForm->Show(Form::Modality::Modal), RuntimeFault);
  EXPECT_TRUE(sampleForm.isVisible());
}

TEST_F(Controls, AFormKeepsItsModalityUntilItIsHidden) {
  machine.onModal = [](Form& form) {
    form.Show();
    EXPECT_EQ(form.modality(), Form::Modality::Modal) << "shown again while visible";
  };
  sampleForm->Show(Form::Modality::Modal);
  EXPECT_EQ(machine.modalForms.size(), 1U);
  sampleForm->Show();
  EXPECT_EQ(sampleForm->modality(), Form::Modality::Modeless);
}

TEST_F(Controls, ModalShowReturnsWhenTheFormIsGone) {
  bool stood = false;
  machine.onModal = [&stood](Form& form) {
    stood = form.Visible;
    sampleForm.unload();
  };
  sampleForm->Show(Form::Modality::Modal);
  EXPECT_TRUE(stood);
  EXPECT_FALSE(sampleForm.isLoaded());
}

TEST_F(Controls, NegativeSizesAreRefusedAndTheOldOnesKept) {
  EXPECT_THROW(sampleForm->picture.Width = -1, RuntimeFault);
  EXPECT_EQ(sampleForm->picture.Width.get(), 1500);
  sampleForm->picture.Width = 0;
  EXPECT_EQ(sampleForm->picture.Width.get(), 0);
  sampleForm->picture.Left = -5;
  EXPECT_EQ(sampleForm->picture.Left.get(), -5);
}

TEST_F(Controls, PeersAreNotifiedOfAssignmentsButNotOfTheirOwnChanges) {
  std::vector<PropertyId> told;
  TextBox& text = sampleForm->text;
  text.peer = std::make_unique<NotingPeer>(told);
  text.Text = "typed by the game";
  EXPECT_EQ(told, std::vector<PropertyId>{PropertyId::Text});
  text.Text.adopt("typed by the player");
  EXPECT_EQ(told.size(), 1U);
  EXPECT_EQ(text.Text.get(), "typed by the player");
}

TEST_F(Controls, AnIndexOutsideAControlArrayIsAFault) {
  EXPECT_THROW(frmMain->picCaps[-1], RuntimeFault);
  EXPECT_THROW(frmMain->picCaps[6], RuntimeFault);
  EXPECT_NO_THROW(frmMain->picCaps[5]);
}

TEST_F(Controls, PictureBoxHasAsManyPixelsAsFitItsSize) {
  EXPECT_EQ(sampleForm->picture.pixelWidth(), 100);
  EXPECT_EQ(sampleForm->picture.pixelHeight(), 50);
  sampleForm->Show();
  sampleForm->picture.Width = 3000;
  EXPECT_EQ(sampleForm->picture.pixelWidth(), 200);
}

TEST_F(Controls, TheRootOfAControlIsItsForm) {
  EXPECT_EQ(&frmMain->lbUserName[3].root(), &*frmMain);
  EXPECT_EQ(&frmMain->mnuDirLineClick.root(), &*frmMain);
  EXPECT_EQ(&frmMain->root(), &*frmMain);
}

TEST_F(Controls, AMenuItemIsDesignedPlainCheckedOrDisabled) {
  MenuItem menu{&*sampleForm, "Menu"};
  const MenuItem plain{&menu, "a"};
  const MenuItem checked{&menu, "b", MenuItem::Design::Checked};
  const MenuItem disabled{&menu, "c", MenuItem::Design::Disabled};
  EXPECT_TRUE(plain.Enabled && !plain.Checked);
  EXPECT_TRUE(checked.Enabled && checked.Checked);
  EXPECT_TRUE(!disabled.Enabled && !disabled.Checked);
}

}  // namespace
}  // namespace kelvora
