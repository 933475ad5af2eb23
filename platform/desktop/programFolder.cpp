#include <system_error>

#include "platform/desktop/dataFolder.h"

namespace kelvora {

std::filesystem::path programFolder() {
  std::error_code ignored;
  return std::filesystem::read_symlink("/proc/self/exe", ignored).parent_path();
}

}  // namespace kelvora
