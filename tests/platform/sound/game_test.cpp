#include <gtest/gtest.h>
#include <QWindow>
#include <algorithm>
#include <chrono>
#include <memory>

#include "audio/frmMusic.h"
#include "audio/frmSound.h"
#include "audio/soundMan.h"
#include "core/modMain.h"
#include "frontend/frmMain.h"
#include "generated/sourceFolder.h"
#include "platform/desktop/soundMixer.h"
#include "platform/qt/qtDesktop.h"
#include "rendering/frmGfx.h"
#include "tests/platform/qt/offscreenToolkit.h"
#include "tests/platform/sound/recording.h"

namespace kelvora {
namespace {

/// The game on the real desktop backend without a screen, with its own effects and with tracks of half a second.
class SoundingGame : public ::testing::Test {
 protected:
  SoundingGame() {
    namespace fs = std::filesystem;
    const fs::path source = KELVORA_SOURCE_DIR;
    fs::create_directory_symlink(source / "assets", folder_.path() / "assets");
    fs::create_directory(folder_.path() / "sounds");
    for (const auto& entry : fs::directory_iterator(source / "sounds")) {
      const fs::path copy = folder_.path() / "sounds" / entry.path().filename();
      fs::copy_file(entry.path(), copy);
      if (copy.extension() == ".mp3") fs::resize_file(copy, 6'000);  // about 112 kbit/s
    }
    environment_.set("KELVORA_DATA", folder_.path().string());
    environment_.set("XDG_CONFIG_HOME", folder_.path().string());
    toolkit_ = std::make_unique<OffscreenToolkit>();
    desktop_ = std::make_unique<QtDesktop>("");
    installBackend(desktop_.get());
    modMain::world = {};
    soundMan::clear();
  }
  ~SoundingGame() override {
    frmMusic.unload();
    frmSound.unload();
    frmMain.unload();
    frmGfx.unload();
    releaseUnloadedForms();
    installBackend(nullptr);
  }

  bool play(const std::function<bool()>& isDone) {
    return waitFor([&isDone] {
      QCoreApplication::processEvents();
      return isDone();
    });
  }
  bool isHeard() {
    const Samples heard = recording_.left();
    return std::any_of(heard.begin(), heard.end(), [](int sample) { return std::abs(sample) > 1'000; });
  }

 private:
  TemporaryFolder folder_;
  Recording recording_{folder_.path() / "device.raw"};
  ScopedEnvironment environment_;
  std::unique_ptr<OffscreenToolkit> toolkit_;
  std::unique_ptr<QtDesktop> desktop_;
};

TEST_F(SoundingGame, PlaysEveryEffectAudibly) {
  soundMan::initAudio();
  // A busy machine starts an effect too late, and leaves it out.
  auto next = std::chrono::steady_clock::now();
  EXPECT_TRUE(play([&] {
    if (const auto now = std::chrono::steady_clock::now(); now >= next) {
      soundMan::playSound(soundMan::Sound{0});
      next = now + 4 * SoundMixer::usualMaxDelay;
    }
    return isHeard();
  }));
  for (int slot = 0; slot <= 8; ++slot) EXPECT_TRUE(frmSound->mm(slot).isOpen()) << slot;
}

TEST_F(SoundingGame, MusicContinuesFromTrackToTrackWithItsWindowHidden) {
  soundMan::initAudio();
  soundMan::startMusic();
  frmMusic->tmrNext.Interval = 20;
  soundMan::currentMusic = 4;
  soundMan::nextMusic();
  EXPECT_EQ(frmMusic->player.Caption.get(), "music5.mp3");
  EXPECT_TRUE(play([] { return soundMan::currentMusic == 1; }));
  EXPECT_TRUE(play([] { return soundMan::currentMusic == 2; }));
  EXPECT_EQ(frmMusic->player.Caption.get(), "music2.mp3");
  EXPECT_FALSE(frmMusic.isVisible());
  EXPECT_TRUE(isHeard());
}

TEST_F(SoundingGame, MainWindowIsTheOwnerEvenIfTheMusicLoadsFirst) {
  soundMan::startMusic();
  frmMain->Show();
  frmMusic->Show();
  const QWindow* main = nullptr;
  const QWindow* music = nullptr;
  for (const QWindow* window : QGuiApplication::topLevelWindows()) {
    if (window->title() == "Kelvora") main = window;
    if (window->title() == "Music Control") music = window;
  }
  ASSERT_NE(main, nullptr);
  ASSERT_NE(music, nullptr);
  EXPECT_EQ(main->transientParent(), nullptr);
  EXPECT_EQ(music->transientParent(), main);
}

}  // namespace
}  // namespace kelvora
