#include "platform/windowing/handlerCall.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "base/fault.h"
#include "platform/form.h"
#include "platform/headless/headlessBackend.h"
#include "platform/widgets.h"

namespace kelvora {
namespace {

/// Ends the process: with 3 if a fault's report says nothing of what was before, with 4 if it names "~playsound".
void answer(const std::string&, const std::string& advice) {
  if (advice.starts_with("Kelvora ")) std::_Exit(3);
  if (advice.starts_with("Just before: the command ~playsound.\n")) std::_Exit(4);
  std::_Exit(5);
}

/// Types a byte behind this line, whose handler faults.
void press(const std::string& text, int byte, bool isSecret = false) {
  HeadlessBackend backend;
  Form form("", {});
  TextBox line(&form, {}, text, {.isSecret = isSecret});
  line.KeyPress = [](int) { raiseSubscriptOutOfRange(); };
  setFaultBox(answer);
  raiseKeyPress(line, byte);
}

TEST(KeyPressDeathTest, NamesTheCommandThatFaults) {
  EXPECT_EXIT(press("~playsound", 13), ::testing::ExitedWithCode(4), "Subscript out of range");
}

TEST(KeyPressDeathTest, DoesNotNameACommandThatNobodyTook) {
  const auto pressWithoutHandler = [] {
    HeadlessBackend backend;
    Form form("", {});
    TextBox line(&form, {}, "~playsound");
    setFaultBox(answer);
    raiseKeyPress(line, 13);
    runGame([] { raiseSubscriptOutOfRange(); });
  };
  EXPECT_EXIT(pressWithoutHandler(), ::testing::ExitedWithCode(3), "Subscript out of range");
}

TEST(KeyPressDeathTest, DoesNotNameWhatIsNoCommandOrNotEntered) {
  EXPECT_EXIT(press("playsound", 13), ::testing::ExitedWithCode(3), "Subscript out of range");
  EXPECT_EXIT(press("~playsound", 'x'), ::testing::ExitedWithCode(3), "Subscript out of range");
  EXPECT_EXIT(press("~password", 13, true), ::testing::ExitedWithCode(3), "Subscript out of range");
}

}  // namespace
}  // namespace kelvora
