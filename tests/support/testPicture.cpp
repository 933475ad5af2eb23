#include <map>

#include "platform/pictures/pictureFile.h"
#include "tests/support/gameTest.h"

namespace kelvora {

PicturePointer testPicture(const std::string& path) {
  static std::map<std::string, PicturePointer> loaded;
  const auto known = loaded.find(path);
  if (known != loaded.end()) return known->second;
  return loaded[path] = loadPictureFile(path);
}

}  // namespace kelvora
