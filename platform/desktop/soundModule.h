#pragma once

#include <memory>
#include <string>

namespace kelvora {

class MixerDevice;

/// The file of the sound module, where an installation has it as seen from the running program; in a build tree, where
/// it is built. Empty if there is none.
std::string soundModulePath();

/// Loads the module, which stays for the life of the process, and opens the machine's sound device. A module that is
/// missing or cannot be loaded gives a device without sound. Held up by the disk and by the machine.
std::unique_ptr<MixerDevice> openMixerDevice(const std::string& module);

}  // namespace kelvora
