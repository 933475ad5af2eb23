#include "protocol/frameReader.h"

#include "protocol/messages.h"
#include "protocol/wireFormat.h"

namespace kelvora::wire {

bool FrameReader::isLogin() const { return !text_.empty() && text_.front() == static_cast<char>(msgLogin); }

bool FrameReader::read(std::string_view bytes, const std::function<void(std::string_view text)>& handle) {
  for (const char byte : bytes) {
    if (isOpen_ == (byte == frameStart) && !isLogin()) return false;
    if (!isOpen_) {
      isOpen_ = true;
    } else if (byte == frameEnd) {
      handle(text_);
      text_.clear();
      isOpen_ = false;
    } else if (text_.size() == maxFrameLength) {
      return false;
    } else {
      text_ += byte;
    }
  }
  return true;
}

}  // namespace kelvora::wire
