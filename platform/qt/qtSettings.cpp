#include "platform/qt/qtSettings.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <QSettings>
#include <QStandardPaths>
#include <filesystem>
#include <system_error>
#include <utility>

#include "platform/qt/codePage.h"

namespace kelvora {

namespace {
QString keyPath(const std::string& section, const std::string& key) { return toQString(section + "/" + key); }
}  // namespace

QtSettings::QtSettings(std::string path) : path_(std::move(path)) {}

std::string QtSettings::read(const std::string& section, const std::string& key, const std::string& fallback) const {
  const QSettings store(QFile::decodeName(path_.c_str()), QSettings::IniFormat);
  const QVariant value = store.value(keyPath(section, key));
  // A comma outside quotes in a file written by hand makes a list of what was meant as one text.
  if (value.typeId() == QMetaType::QStringList) return toBytes(value.toStringList().join(", "));
  return value.isValid() && value.canConvert<QString>() ? toBytes(value.toString()) : fallback;
}

void QtSettings::write(const std::string& section, const std::string& key, const std::string& value) {
  protect();
  QSettings store(QFile::decodeName(path_.c_str()), QSettings::IniFormat);
  store.setValue(keyPath(section, key), toQString(value));
  store.sync();
}

/// The password of the last login lies in this file in clear text: nobody else may read it, from its first byte on.
void QtSettings::protect() const {
  const std::filesystem::path folder = std::filesystem::path(path_).parent_path();
  std::error_code ignored;
  std::filesystem::create_directories(folder.parent_path(), ignored);
  if (::mkdir(folder.c_str(), S_IRWXU) != 0) ::chmod(folder.c_str(), S_IRWXU);
  const int file = ::open(path_.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR);
  if (file < 0) return;
  if (::fchmod(file, S_IRUSR | S_IWUSR) != 0) {  // somebody else's file: writing it fails just as quietly
  }
  ::close(file);
}

std::string QtSettings::defaultPath() {
  const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
  return QFile::encodeName(folder + "/kelvora/kelvora.ini").toStdString();
}

}  // namespace kelvora
