#include "platform/qt/programIcon.h"

#include <malloc.h>
#include <QApplication>
#include <QFile>
#include <QIcon>
#include <QTimer>

namespace kelvora {

void setProgramIconLater(const std::string& applicationPath) {
  const QString files = QFile::decodeName(applicationPath.c_str()) + "/assets/icon-%1.png";
  QTimer::singleShot(0, qApp, [files] {
    // Quirk Q-308: by its design the window has a blank icon.
    QIcon icon;
    for (const int size : {16, 32, 48, 64, 128, 256}) icon.addFile(files.arg(size));
    QApplication::setWindowIcon(icon);
    malloc_trim(0);  // returns about a megabyte that the start has used and freed to the system
  });
}

}  // namespace kelvora
