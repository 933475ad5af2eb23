#include "platform/qt/handlerCall.h"

#include <QApplication>
#include <QMessageBox>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "platform/backend.h"
#include "platform/form.h"
#include "platform/qt/codePage.h"

namespace kelvora {

namespace {
int depth = 0;
bool faultReported = false;
}  // namespace

int handlerDepth() { return depth; }

HandlerScope::HandlerScope() { ++depth; }
HandlerScope::~HandlerScope() { --depth; }

bool isFaultReported() { return faultReported; }

void reportFault(const char* what) {
  faultReported = true;
  const std::string text = std::string("Run-time error: ") + what;
  std::fprintf(stderr, "kelvora: %s\n", text.c_str());
  if (qobject_cast<QApplication*>(QCoreApplication::instance())) {
    QMessageBox box(QMessageBox::Critical, "Kelvora", toQString(text), QMessageBox::Ok, QApplication::activeWindow());
    box.setTextFormat(Qt::PlainText);
    box.setInformativeText(
        toQString("Kelvora " + appVersionText() + " has to end. If you report this, add what you did last."));
    box.exec();
  }
  std::_Exit(1);
}

bool takesEvents(Control& control) {
  const auto* form = dynamic_cast<Form*>(&control.root());
  return !form || !form->isUnloaded();
}

}  // namespace kelvora
