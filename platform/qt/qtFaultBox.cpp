#include "platform/qt/qtFaultBox.h"

#include <QApplication>
#include <QMessageBox>

#include "platform/qt/codePage.h"

namespace kelvora {

void showFaultBox(const std::string& error, const std::string& advice) {
  if (!qobject_cast<QApplication*>(QCoreApplication::instance())) return;
  QMessageBox box(QMessageBox::Critical, "Kelvora", toQString(error), QMessageBox::Ok, QApplication::activeWindow());
  box.setTextFormat(Qt::PlainText);
  box.setInformativeText(toQString(advice));
  box.setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  box.exec();
}

}  // namespace kelvora
