#include "platform/desktop/dataFolder.h"

#include <cstdlib>
#include <system_error>

namespace kelvora {

namespace fs = std::filesystem;

std::string withoutLinks(const fs::path& path) {
  std::error_code ignored;
  const fs::path found = fs::canonical(path, ignored);
  return (found.empty() ? path : found).string();
}

std::string dataFolder() {
  if (const char* chosen = std::getenv("KELVORA_DATA"); chosen && *chosen) return chosen;
  std::error_code ignored;
  const fs::path program = programFolder();
  for (const fs::path& folder : {program, program / "../share/kelvora"}) {
    if (fs::exists(folder / "assets", ignored)) return withoutLinks(folder);
  }
  // On other machines than the builder's, faults name the place where the pictures belong.
  return fs::exists(KELVORA_DATA_FOLDER, ignored) ? KELVORA_DATA_FOLDER : program.string();
}

}  // namespace kelvora
