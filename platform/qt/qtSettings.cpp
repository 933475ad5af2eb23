#include "platform/qt/qtSettings.h"

#include <sys/stat.h>

#include <QFile>
#include <QSettings>
#include <QStandardPaths>
#include <QStringList>
#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

#include "platform/desktop/settingsDraft.h"
#include "platform/qt/codePage.h"

namespace kelvora {

namespace {

QString keyPath(const std::string& section, const std::string& key) { return toQString(section + "/" + key); }

QString pathName(const std::filesystem::path& path) { return QFile::decodeName(path.c_str()); }

/// All of the game's keys are like that. Others, from a damaged file, may be renamed when they are written.
bool isPlain(const QString& key) {
  return std::ranges::all_of(
      key, [](QChar c) { return c == u' ' || c == u'/' || (c < QChar(128) && c.isLetterOrNumber()); });
}

bool holdsAll(const QSettings& copy, const QSettings& store) {
  return std::ranges::all_of(store.allKeys(), [&](const QString& key) {
    return key.isEmpty() || !isPlain(key) || (copy.contains(key) && copy.value(key) == store.value(key));
  });
}

}  // namespace

QtSettings::QtSettings(std::string path, std::chrono::milliseconds patience)
    : path_(std::move(path)), patience_(patience) {}

std::string QtSettings::read(const std::string& section, const std::string& key, const std::string& fallback) const {
  const QSettings store(pathName(path_), QSettings::IniFormat);
  const QVariant value = store.value(keyPath(section, key));
  // An unquoted comma in a manually edited file makes a list out of a single text.
  if (value.typeId() == QMetaType::QStringList) return toBytes(value.toStringList().join(", "));
  return value.isValid() && value.canConvert<QString>() ? toBytes(value.toString()) : fallback;
}

void QtSettings::write(const std::string& section, const std::string& key, const std::string& value) {
  makeFolder();
  // Another instance that considers this one hanging removes its draft. Other programs could do that forever.
  constexpr int maxDrafts = 100;
  for (int draft = 0; draft < maxDrafts; ++draft) {
    if (writeDraft(section, key, value)) return;
  }
}

/// Returns false if another instance has removed the draft. The toolkit replaces a file atomically, but on a disk that
/// fills up the new file may be truncated. So the toolkit writes a draft, which is read back first. Its status is
/// useless, because junk in the file is an error as well.
bool QtSettings::writeDraft(const std::string& section, const std::string& key, const std::string& value) const {
  SettingsDraft draft(path_, patience_);
  if (draft.path().empty()) return !draft.isRemoved();
  QSettings store(pathName(draft.path()), QSettings::IniFormat);
  store.setValue(keyPath(section, key), toQString(value));
  store.sync();
  draft.rename();
  const bool isWhole = holdsAll(QSettings(pathName(draft.path()), QSettings::IniFormat), store);
  return (isWhole && draft.publish()) || !draft.isRemoved();
}

/// The folder contains the last password in plain text, so nobody else may read it.
void QtSettings::makeFolder() const {
  const std::filesystem::path folder = std::filesystem::path(path_).parent_path();
  std::error_code ignored;
  std::filesystem::create_directories(folder.parent_path(), ignored);
  if (::mkdir(folder.c_str(), S_IRWXU) != 0) ::chmod(folder.c_str(), S_IRWXU);
}

std::string QtSettings::defaultPath() {
  const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
  return QFile::encodeName(folder + "/kelvora/kelvora.ini").toStdString();
}

}  // namespace kelvora
