#include "platform/qt/qtSettings.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QByteArray>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace kelvora {
namespace {

/// The settings in a temporary folder, found through XDG_CONFIG_HOME as in the running program.
class Settings : public ::testing::Test {
 protected:
  Settings() : before_(qgetenv("XDG_CONFIG_HOME")) {
    std::string pattern = (std::filesystem::temp_directory_path() / "kelvora-settings-XXXXXX").string();
    home_ = mkdtemp(pattern.data());
    qputenv("XDG_CONFIG_HOME", home_.c_str());
  }
  ~Settings() override {
    before_.isNull() ? qunsetenv("XDG_CONFIG_HOME") : qputenv("XDG_CONFIG_HOME", before_);
    std::filesystem::remove_all(home_);
  }

  std::filesystem::path folder() const { return home_ / "kelvora"; }
  std::filesystem::path file() const { return folder() / "kelvora.ini"; }

  /// The value that a later run would read: the same bytes under a path that this process hasn't cached.
  std::string readInLaterRun(const std::string& section, const std::string& key) {
    const std::filesystem::path copy = home_ / ("later" + std::to_string(++copies_) + ".ini");
    std::filesystem::copy_file(file(), copy);
    return QtSettings(copy.string()).read(section, key, "missing");
  }

  static unsigned permissions(const std::filesystem::path& path) {
    struct stat status = {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
    return status.st_mode & 0777U;
  }

  std::filesystem::path home_;

 private:
  QByteArray before_;
  int copies_ = 0;
};

TEST_F(Settings, LiveInTheUsersConfigurationFolder) { EXPECT_EQ(QtSettings::defaultPath(), file().string()); }

TEST_F(Settings, ReadTheDefaultWithoutCreatingAFile) {
  EXPECT_EQ(QtSettings(QtSettings::defaultPath()).read("audio", "music", "True"), "True");
  EXPECT_FALSE(std::filesystem::exists(folder()));
}

TEST_F(Settings, AreStoredAtOnce) {
  QtSettings settings(QtSettings::defaultPath());
  settings.write("last login", "player name", "Ada");
  settings.write("fonts", "0size", "12");
  EXPECT_EQ(settings.read("last login", "player name", ""), "Ada");
  EXPECT_EQ(readInLaterRun("last login", "player name"), "Ada");
  EXPECT_EQ(readInLaterRun("fonts", "0size"), "12");
  settings.write("last login", "player name", "");
  EXPECT_EQ(readInLaterRun("last login", "player name"), "");
}

TEST_F(Settings, ArePrivateToTheUser) {
  const mode_t before = ::umask(0);
  QtSettings settings(QtSettings::defaultPath());
  settings.write("last login", "server password", "secret");
  EXPECT_EQ(permissions(folder()), 0700U);
  EXPECT_EQ(permissions(file()), 0600U);
  settings.write("last login", "server password", "secret too");
  EXPECT_EQ(permissions(file()), 0600U);
  ::umask(before);
}

TEST_F(Settings, MakeAFilePrivateThatOthersCouldRead) {
  std::filesystem::create_directory(folder());
  std::ofstream(file()) << "[audio]\nmusic=False\n";
  ::chmod(folder().c_str(), 0755);
  ::chmod(file().c_str(), 0644);
  QtSettings settings(QtSettings::defaultPath());
  EXPECT_EQ(settings.read("audio", "music", "True"), "False");
  settings.write("audio", "sfx", "True");
  EXPECT_EQ(permissions(folder()), 0700U);
  EXPECT_EQ(permissions(file()), 0600U);
}

TEST_F(Settings, KeepEveryByte) {
  std::string all;
  for (int byte = 0; byte < 256; ++byte) all.push_back(static_cast<char>(byte));
  QtSettings settings(QtSettings::defaultPath());
  settings.write("last login", "player name", all);
  EXPECT_EQ(settings.read("last login", "player name", ""), all);
  EXPECT_EQ(readInLaterRun("last login", "player name"), all);
}

TEST_F(Settings, KeepTextsThatAreSpecialInTheFileFormat) {
  QtSettings settings(QtSettings::defaultPath());
  for (const std::string text :
       {"a,b", "@Invalid()", "@@", "\"quoted\"", "a;b", "a=b", " blanks ", "[x]", "%41", "\\x41",
        "\x01"
        "1",
        "a\r\nb", "@ByteArray(x)"}) {
    settings.write("last login", "server password", text);
    EXPECT_EQ(readInLaterRun("last login", "server password"), text);
  }
}

TEST_F(Settings, ReadADamagedFileAsFarAsPossible) {
  std::filesystem::create_directory(folder());
  std::ofstream(file()) << std::string("\0\xFF]]]===\n%%%\n", 14);
  EXPECT_EQ(QtSettings(QtSettings::defaultPath()).read("audio", "music", "True"), "True");
}

TEST_F(Settings, DoNotFaultWhereNothingCanBeWritten) {
  // A file in place of the folder stops even root.
  std::ofstream(folder()) << "in the way";
  QtSettings settings(QtSettings::defaultPath());
  EXPECT_EQ(settings.read("audio", "music", "True"), "True");
  settings.write("audio", "music", "False");
  EXPECT_TRUE(std::filesystem::is_regular_file(folder()));
}

/// An unprivileged user while it exists.
class OrdinaryUser {
 public:
  OrdinaryUser() { EXPECT_EQ(::seteuid(superuser_ ? nobody : ::geteuid()), 0); }
  ~OrdinaryUser() { EXPECT_EQ(::seteuid(superuser_ ? 0 : ::geteuid()), 0); }
  OrdinaryUser(const OrdinaryUser&) = delete;
  OrdinaryUser& operator=(const OrdinaryUser&) = delete;

 private:
  static constexpr uid_t nobody = 65534;
  bool superuser_ = ::geteuid() == 0;
};

TEST_F(Settings, DoNotFaultInAReadOnlyFolder) {
  ::chmod(home_.c_str(), 0555);
  {
    const OrdinaryUser user;
    QtSettings settings(QtSettings::defaultPath());
    EXPECT_EQ(settings.read("audio", "music", "True"), "True");
    settings.write("audio", "music", "False");
  }
  ::chmod(home_.c_str(), 0700);
  EXPECT_FALSE(std::filesystem::exists(folder()));
}

TEST_F(Settings, ReadTheDefaultFromAFileThatCannotBeRead) {
  QtSettings(QtSettings::defaultPath()).write("audio", "music", "False");
  const std::filesystem::path locked = home_ / "locked.ini";
  std::filesystem::copy_file(file(), locked);
  ::chmod(home_.c_str(), 0755);
  ::chmod(locked.c_str(), 0);
  const OrdinaryUser user;
  EXPECT_EQ(QtSettings(locked.string()).read("audio", "music", "True"), "True");
}

TEST_F(Settings, DoNotFaultWhereAFolderHasTheFilesName) {
  std::filesystem::create_directories(file());
  QtSettings settings(QtSettings::defaultPath());
  EXPECT_EQ(settings.read("audio", "music", "True"), "True");
  settings.write("audio", "music", "False");
  EXPECT_TRUE(std::filesystem::is_directory(file()));
}

}  // namespace
}  // namespace kelvora
