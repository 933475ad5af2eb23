#include "platform/qt/dataFolder.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

namespace kelvora {

std::string dataFolder() {
  if (const QByteArray chosen = qgetenv("KELVORA_DATA"); !chosen.isEmpty()) return chosen.toStdString();
  const QString program = QCoreApplication::applicationDirPath();
  for (const QString& folder : {program, program + "/../share/kelvora"}) {
    if (QFileInfo::exists(folder + "/assets"))
      return QFile::encodeName(QFileInfo(folder).canonicalFilePath()).toStdString();
  }
  return KELVORA_DATA_FOLDER;
}

}  // namespace kelvora
