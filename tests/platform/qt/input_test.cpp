#include <gtest/gtest.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QLineEdit>

#include "platform/qt/inputEvents.h"
#include "tests/platform/qt/formProbe.h"

namespace kelvora {
namespace {

using Notes = std::vector<std::string>;

class Input : public ::testing::Test {
 protected:
  Input() { form_.Show(); }

  FormProbe form_;
};

TEST_F(Input, MouseEventsUseTwipsOfTheControl) {
  sendMouse(form_.label, QEvent::MouseButtonPress, {10, 4}, Qt::RightButton, Qt::RightButton, Qt::ShiftModifier);
  EXPECT_EQ(form_.notes, Notes{"label down 2 1 150 60"});
}

TEST_F(Input, MovesReportAllHeldButtons) {
  sendMouse(form_.box, QEvent::MouseMove, {0, 0}, Qt::NoButton, Qt::NoButton);
  sendMouse(form_.box, QEvent::MouseMove, {199, 99}, Qt::NoButton, Qt::LeftButton | Qt::RightButton);
  sendMouse(form_.box, QEvent::MouseMove, {1, 2}, Qt::NoButton, Qt::MiddleButton,
            Qt::ControlModifier | Qt::AltModifier);
  EXPECT_EQ(form_.notes, (Notes{"box move 0 0 0 0", "box move 3 0 2985 1485", "box move 4 6 15 30"}));
}

TEST_F(Input, ClickIsALeftReleaseInside) {
  sendMouse(form_.label, QEvent::MouseButtonPress, {1, 1}, Qt::LeftButton, Qt::LeftButton);
  sendMouse(form_.label, QEvent::MouseButtonRelease, {2, 1}, Qt::LeftButton, Qt::NoButton);
  EXPECT_EQ(form_.notes, (Notes{"label down 1 0 15 15", "label up 1 0 30 15", "label click"}));
  form_.notes.clear();
  sendMouse(form_.label, QEvent::MouseButtonRelease, {-2, 1}, Qt::LeftButton, Qt::NoButton);
  sendMouse(form_.label, QEvent::MouseButtonRelease, {2, 1}, Qt::RightButton, Qt::NoButton);
  EXPECT_EQ(form_.notes, (Notes{"label up 1 0 -30 15", "label up 2 0 30 15"}));
}

TEST_F(Input, PressedLabelGetsMovesOutsideIt) {
  sendMouse(form_.label, QEvent::MouseMove, {-20, 500}, Qt::NoButton, Qt::LeftButton);
  EXPECT_EQ(form_.notes, Notes{"label move 1 0 -300 7500"});
}

TEST_F(Input, Q020PictureGetsNoMovesOutsideItsEdges) {
  // The picture is 200 by 100 pixels.
  for (const QPoint outside : {QPoint(-1, 50), QPoint(200, 50), QPoint(50, -1), QPoint(50, 100)}) {
    sendMouse(form_.box, QEvent::MouseMove, outside, Qt::NoButton, Qt::LeftButton);
  }
  EXPECT_EQ(form_.notes, Notes{});
  sendMouse(form_.box, QEvent::MouseButtonRelease, {-1, 50}, Qt::LeftButton, Qt::NoButton);
  EXPECT_EQ(form_.notes, Notes{"box up 1 0 -15 750"});
}

TEST_F(Input, Q225AMouseThatLeavesRaisesNoEvent) {
  sendMouse(form_.box, QEvent::MouseMove, {199, 99}, Qt::NoButton, Qt::NoButton);
  form_.notes.clear();
  QEvent leave(QEvent::Leave);
  QCoreApplication::sendEvent(&widgetOf(form_.box), &leave);
  EXPECT_EQ(form_.notes, Notes{});
}

TEST_F(Input, Q229ATextBoxShowsTheTypedText) {
  EXPECT_EQ(dynamic_cast<QLineEdit&>(widgetOf(form_.first)).echoMode(), QLineEdit::Normal);
}

TEST_F(Input, SecondPressOfADoubleClickIsAPress) {
  sendMouse(form_.box, QEvent::MouseButtonDblClick, {1, 1}, Qt::RightButton, Qt::RightButton);
  EXPECT_EQ(form_.notes, Notes{"box down 2 0 15 15"});
}

TEST_F(Input, KeyDownComesBeforeKeyPress) {
  sendKey(widgetOf(form_.box), Qt::Key_A, "a");
  EXPECT_EQ(form_.notes, (Notes{"box key 65 0", "box press 97"}));
}

TEST_F(Input, FunctionKeysTypeNothing) {
  for (int i = 0; i < 6; ++i) sendKey(widgetOf(form_.box), Qt::Key_F1 + i, "", Qt::ShiftModifier);
  EXPECT_EQ(form_.notes, (Notes{"box key 112 1", "box key 113 1", "box key 114 1", "box key 115 1", "box key 116 1",
                                "box key 117 1"}));
}

TEST_F(Input, KeyPressIsAByteOfCodePage1252) {
  sendKey(widgetOf(form_.box), Qt::Key_unknown, QString(QChar(0x20AC)));
  sendKey(widgetOf(form_.box), Qt::Key_Eacute, QString(QChar(0xE9)));
  sendKey(widgetOf(form_.box), Qt::Key_unknown, QString(QChar(0x0416)));
  EXPECT_EQ(form_.notes, (Notes{"box press 128", "box press 233"}));
}

TEST_F(Input, BackspaceTypesEightAndDeleteNothing) {
  sendKey(widgetOf(form_.first), Qt::Key_Backspace, "\b");
  sendKey(widgetOf(form_.first), Qt::Key_Delete, "\x7f");
  EXPECT_EQ(form_.notes, (Notes{"first key 8 0", "first press 8", "first key 46 0"}));
}

TEST_F(Input, ArrowsReachTheTextBoxAsKeys) {
  sendKey(widgetOf(form_.first), Qt::Key_Up);
  sendKey(widgetOf(form_.first), Qt::Key_Down);
  EXPECT_EQ(form_.notes, (Notes{"first key 38 0", "first key 40 0"}));
}

TEST_F(Input, VirtualKeyCodesAreThoseOfWindows) {
  const struct {
    Qt::Key key;
    bool keypad;
    int code;
  } rows[] = {{Qt::Key_Z, false, 90},      {Qt::Key_0, false, 48},          {Qt::Key_0, true, 96},
              {Qt::Key_9, true, 105},      {Qt::Key_Exclam, false, 49},     {Qt::Key_Asterisk, true, 106},
              {Qt::Key_Slash, true, 111},  {Qt::Key_Space, false, 32},      {Qt::Key_Home, true, 36},
              {Qt::Key_F12, false, 123},   {Qt::Key_Return, false, 13},     {Qt::Key_Enter, true, 13},
              {Qt::Key_Escape, false, 27}, {Qt::Key_QuoteLeft, false, 192}, {Qt::Key_Eacute, false, 0}};
  for (const auto& row : rows) EXPECT_EQ(virtualKeyCode(row.key, row.keypad), row.code) << row.key;
}

TEST_F(Input, TypedTextEntersTheTextBox) {
  sendKey(widgetOf(form_.first), Qt::Key_X, "x");
  EXPECT_EQ(form_.first.Text.get(), "xone");
  EXPECT_EQ(form_.first.SelStart, 1);
}

TEST_F(Input, CharactersOutsideTheCodePageAreDropped) {
  auto& edit = dynamic_cast<QLineEdit&>(widgetOf(form_.first));
  edit.setCursorPosition(3);
  edit.insert(QString::fromUtf16(u"\u0416\u20AC\r\n!"));
  emit edit.textEdited(edit.text());
  EXPECT_EQ(form_.first.Text.get(), "one\x80 !");
  EXPECT_EQ(edit.text(), QString::fromUtf16(u"one\u20AC !"));
  EXPECT_EQ(form_.first.SelStart, 6);
}

TEST_F(Input, PastedLinesBecomeOne) {
  auto& edit = dynamic_cast<QLineEdit&>(widgetOf(form_.first));
  const auto pasted = [&](const QString& text) {
    edit.selectAll();
    QGuiApplication::clipboard()->setText(text);
    edit.paste();
    return form_.first.Text.get();
  };
  EXPECT_EQ(pasted("games.example.org\n"), "games.example.org");
  EXPECT_EQ(pasted("\n\tone\n\n\ttwo\tthree\n"), "one two three");
  EXPECT_EQ(pasted(QString::fromUtf16(u"x\U0001F600y\u4E2Dz\x1b[31m")), "xyz[31m");
  // Separate accents, as some systems write them.
  EXPECT_EQ(pasted(QString::fromUtf16(u"Rene\u0301 A\u030Angstro\u0308m e\u0328")), "Ren\xE9 \xC5ngstr\xF6m ");
  const std::string longText(100'000, 'a');
  EXPECT_EQ(pasted(QString::fromStdString(longText)).size(), 32'767U) << "as much as fits a line";
}

// An input method's event for composed text, with the focus on the picture and then on the text box.
TEST_F(Input, ComposedTextIsTypedText) {
  const auto compose = [](QWidget& widget, const QString& preedit, const QString& committed) {
    QInputMethodEvent event(preedit, {});
    event.setCommitString(committed);
    QCoreApplication::sendEvent(&widget, &event);
  };
  QInputMethodQueryEvent question(Qt::ImEnabled);
  QCoreApplication::sendEvent(&widgetOf(form_.box), &question);
  EXPECT_TRUE(question.value(Qt::ImEnabled).toBool()) << "otherwise no input method would talk to the picture";
  compose(widgetOf(form_.box), "`e", "");
  EXPECT_EQ(form_.notes, Notes{}) << "nothing is typed until it is whole";
  compose(widgetOf(form_.box), "", QString::fromUtf16(u"\u00E8\u4E2D\U0001F600!"));
  EXPECT_EQ(form_.notes, (Notes{"box press 232", "box press 33"}));
  form_.notes.clear();
  compose(widgetOf(form_.first), "", QString::fromUtf16(u"\u00E8\u4E2D\U0001F600!"));
  EXPECT_EQ(form_.notes, (Notes{"first press 232", "first press 33"}));
  EXPECT_EQ(form_.first.Text.get(), "\xE8!one");
  EXPECT_EQ(form_.first.SelStart, 2);
}

TEST_F(Input, CaretFollowsSelStartAndTheUser) {
  form_.first.Text = "latest line";
  EXPECT_EQ(form_.first.SelStart, 0);
  form_.first.SelStart = 11;
  auto& edit = dynamic_cast<QLineEdit&>(widgetOf(form_.first));
  EXPECT_EQ(edit.cursorPosition(), 11);
  sendKey(edit, Qt::Key_Home);
  EXPECT_EQ(form_.first.SelStart, 0);
}

TEST_F(Input, TheHandlerMayEmptyTheBoxInItsKeyPress) {
  form_.okay.Visible = false;  // no default button, so Enter goes to the text box
  form_.first.KeyPress = [this](int KeyAscii) {
    if (KeyAscii == 13) form_.first.Text = "";
  };
  sendKey(widgetOf(form_.first), Qt::Key_Return, "\r");
  EXPECT_EQ(form_.first.Text.get(), "");
  EXPECT_EQ(form_.notes, Notes{"first key 13 0"});
}

TEST_F(Input, EnterAndEscapeWorkAnywhereOnTheForm) {
  sendKey(widgetOf(form_.first), Qt::Key_Return, "\r");
  sendKey(widgetOf(form_.second), Qt::Key_Escape, "\x1b");
  EXPECT_EQ(form_.notes, (Notes{"okay", "stop"}));
}

TEST_F(Input, EnterOnAButtonClicksIt) {
  sendKey(widgetOf(form_.stop), Qt::Key_Return, "\r");
  EXPECT_EQ(form_.notes, Notes{"stop"});
}

}  // namespace
}  // namespace kelvora
