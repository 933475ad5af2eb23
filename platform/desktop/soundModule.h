#pragma once

#include <memory>
#include <string>

namespace kelvora {

class MixerDevice;
class Soundtrack;

/// The path of the sound module, relative to the running program: as installed, or as built in a build tree. Empty if
/// there is none.
std::string soundModulePath();

/// Loads the module for the rest of the process, and opens the sound device. May block. Without a loadable module,
/// returns a silent device.
std::unique_ptr<MixerDevice> openMixerDevice(const std::string& module);

/// Loads the module for the rest of the process, for sound without a device. Null without a loadable module.
std::unique_ptr<Soundtrack> openSoundtrack(const std::string& module);

}  // namespace kelvora
