#include <gtest/gtest.h>

#include <QApplication>
#include <QMessageBox>
#include <QTimer>
#include <cstdio>
#include <cstdlib>

#include "base/fault.h"
#include "platform/backend.h"
#include "platform/qt/codePage.h"
#include "platform/qt/qtSettings.h"
#include "platform/windowing/faultReport.h"
#include "platform/windowing/handlerCall.h"
#include "tests/platform/qt/formProbe.h"

namespace kelvora {
namespace {

/// Answers the error box if its lower text is this one. Otherwise ends with another status.
void answerIf(const QString& told) {
  QTimer::singleShot(0, qApp, [told] {
    auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    if (box && box->informativeText() == told) return box->accept();
    if (box) std::fprintf(stderr, "the box says: %s\n", qPrintable(box->informativeText()));
    std::_Exit(3);
  });
}

QString ending() {
  return toQString("Kelvora " + appVersionText() + " has to end. If you report this, add what you did last.");
}

class FaultReportDeathTest : public ::testing::Test {
 protected:
  FaultReportDeathTest() { ::testing::FLAGS_gtest_death_test_style = "threadsafe"; }
};

TEST_F(FaultReportDeathTest, ASettingIsNamedWithItsFile) {
  EXPECT_EXIT(
      {
        answerIf("Just before: the setting \"quarks\" in section \"misc\" of " +
                 QString::fromStdString(QtSettings::defaultPath()) + ".\n" + ending());
        runHandler([] {
          GetSetting("misc", "quarks", "");
          raiseTypeMismatch();
        });
      },
      ::testing::ExitedWithCode(1), "Run-time error: Type mismatch");
}

TEST_F(FaultReportDeathTest, PictureIsNamedInsteadOfTheSettingBeforeIt) {
  EXPECT_EXIT(
      {
        answerIf("Just before: the picture /nowhere/sheet.png.\n" + ending());
        runHandler([] {
          GetSetting("fonts", "0size", "");
          LoadPicture("/nowhere/sheet.png");
        });
      },
      ::testing::ExitedWithCode(1), "Run-time error: File not found: /nowhere/sheet.png");
}

TEST_F(FaultReportDeathTest, TheRecordingIsNamed) {
  EXPECT_EXIT(
      {
        nameRecording("match.recording");
        answerIf(toQString("Kelvora " + appVersionText() +
                           " has to end. If you report this, add the recording match.recording."));
        runHandler([] { raiseTypeMismatch(); });
      },
      ::testing::ExitedWithCode(1), "Run-time error: Type mismatch");
}

TEST_F(FaultReportDeathTest, ACommandIsNamed) {
  EXPECT_EXIT(
      {
        FormProbe form;
        form.Show();
        form.okay.Visible = false;  // no default button, so Enter goes to the text box
        form.first.Text = "~playsound";
        form.first.KeyPress = [](int KeyAscii) {
          if (KeyAscii == 13) raiseSubscriptOutOfRange();
        };
        answerIf("Just before: the command ~playsound.\n" + ending());
        const HandlerScope events;  // the events of a pass, such as keys
        sendKey(widgetOf(form.first), Qt::Key_Return, "\r");
      },
      ::testing::ExitedWithCode(1), "Run-time error: Subscript out of range");
}

TEST_F(FaultReportDeathTest, ExpiredVerticesAreNotNamed) {
  EXPECT_EXIT(
      {
        runHandler([] { GetSetting("misc", "quarks", ""); });
        answerIf(ending());
        reportFault("Overflow");
      },
      ::testing::ExitedWithCode(1), "Run-time error: Overflow");
}

}  // namespace
}  // namespace kelvora
