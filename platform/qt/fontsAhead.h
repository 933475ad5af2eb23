#pragma once

#include <thread>

namespace kelvora {

/// Reads the system's rules for fonts on a thread of its own, from its beginning to its end, while the toolkit connects
/// to the screen: both take as long. The toolkit finds the rules read, or reads them itself if there is no thread.
class FontsAhead {
 public:
  FontsAhead();
  ~FontsAhead();
  FontsAhead(const FontsAhead&) = delete;
  FontsAhead& operator=(const FontsAhead&) = delete;

 private:
  std::thread thread_;
};

}  // namespace kelvora
