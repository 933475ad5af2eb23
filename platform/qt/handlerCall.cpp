#include "platform/qt/handlerCall.h"

#include <QApplication>
#include <QMessageBox>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>

#include "platform/backend.h"
#include "platform/form.h"
#include "platform/qt/codePage.h"

namespace kelvora {

namespace {
int depth = 0;
bool faultReported = false;
std::string lastNote;
}  // namespace

int handlerDepth() { return depth; }

HandlerScope::HandlerScope() { ++depth; }
HandlerScope::~HandlerScope() {
  if (--depth == 0) lastNote.clear();
}

void noteForReport(std::string what) { lastNote = std::move(what); }

bool isFaultReported() { return faultReported; }

void reportFault(const char* what) {
  faultReported = true;
  const std::string text = std::string("Run-time error: ") + what;
  std::fprintf(stderr, "kelvora: %s\n", text.c_str());
  if (qobject_cast<QApplication*>(QCoreApplication::instance())) {
    QMessageBox box(QMessageBox::Critical, "Kelvora", toQString(text), QMessageBox::Ok, QApplication::activeWindow());
    box.setTextFormat(Qt::PlainText);
    const std::string before = lastNote.empty() ? std::string() : "Just before: " + lastNote + ".\n";
    box.setInformativeText(
        toQString(before + "Kelvora " + appVersionText() + " has to end. If you report this, add what you did last."));
    box.setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    box.exec();
  }
  std::_Exit(1);
}

bool takesEvents(Control& control) {
  const auto* form = dynamic_cast<Form*>(&control.root());
  return !form || !form->isUnloaded();
}

}  // namespace kelvora
