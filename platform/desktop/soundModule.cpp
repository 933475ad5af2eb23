#include "platform/desktop/soundModule.h"

#include <dlfcn.h>

#include <filesystem>
#include <system_error>

#include "platform/desktop/dataFolder.h"
#include "platform/sound/mixerDevice.h"
#include "platform/sound/soundtrack.h"

namespace kelvora {

namespace {

class SilentDevice : public MixerDevice {
 public:
  void setEffect(int, const std::string&) override {}
  void freeEffect(int) override {}
  void silence(int, bool) override {}
  void startEffect(int) override {}
  void stopEffect(int) override {}
  bool startMusic(const std::string&) override { return false; }
  void stopMusic() override {}
  bool isMusicPlaying() const override { return false; }
};

/// A function of the module. Null without a loadable module.
void* moduleFunction(const std::string& module, const char* name) {
  // An empty name would mean the program itself, and a name without a folder any system library.
  void* library = module.starts_with('/') ? dlopen(module.c_str(), RTLD_NOW | RTLD_LOCAL) : nullptr;
  return library ? dlsym(library, name) : nullptr;
}

}  // namespace

std::string soundModulePath() {
  namespace fs = std::filesystem;
  std::error_code ignored;
  const fs::path program = programFolder();
  // Installed programs are in a folder next to the modules' folder. In a build tree, that holds for the tests, and the
  // game is one folder further up.
  for (const fs::path& folder : {program / KELVORA_MODULES, program / "tests" / KELVORA_MODULES}) {
    const fs::path module = (folder / "kelvora-sound.so").lexically_normal();
    if (fs::exists(module, ignored)) return module.string();
  }
  return {};
}

std::unique_ptr<MixerDevice> openMixerDevice(const std::string& module) {
  void* create = moduleFunction(module, createMixerDeviceName);
  if (!create) return std::make_unique<SilentDevice>();
  return std::unique_ptr<MixerDevice>(reinterpret_cast<CreateMixerDevice*>(create)());
}

std::unique_ptr<Soundtrack> openSoundtrack(const std::string& module) {
  void* create = moduleFunction(module, createSoundtrackName);
  if (!create) return nullptr;
  return std::unique_ptr<Soundtrack>(reinterpret_cast<CreateSoundtrack*>(create)());
}

}  // namespace kelvora
