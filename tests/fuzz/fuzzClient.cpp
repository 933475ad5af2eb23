#include "tests/fuzz/fuzzClient.h"

#include "base/fault.h"

namespace kelvora::fuzz {

FuzzClient::FuzzClient() {
  machine.onMessageBox = [this](const std::string&) {
    if (forBoxes_.empty()) return;
    const std::string piece = std::move(forBoxes_.front());
    forBoxes_.pop_front();
    if (read) read(piece);
  };
}

bool FuzzClient::survives(const std::function<void()>& action) {
  try {
    action();
    return true;
  } catch (const RuntimeFault&) {
    return false;
  } catch (const ProcessEnded&) {
    return false;
  }
}

void FuzzClient::play(Input input, const std::function<void(std::string piece)>& deliver,
                      const std::function<void(char what, Input& input)>& act) {
  std::string piece;
  const auto flush = [&] {
    if (!piece.empty()) deliver(std::exchange(piece, {}));
  };
  while (!input.isEmpty()) {
    const char byte = static_cast<char>(input.byte());
    if (byte != command) {
      piece += byte;
      continue;
    }
    const char what = static_cast<char>(input.byte());
    if (what == command) {
      piece += command;
      continue;
    }
    if (what == 'b') {  // collected messages arrive during the next box
      if (!piece.empty()) keepForBox(std::exchange(piece, {}));
      continue;
    }
    flush();
    act(what, input);
  }
  flush();
}

void FuzzClient::requireSoundFrames() {
  static constexpr std::string_view ids = "\x83\x85\x87\x90\x95\x98\x9B\x9E";
  std::string_view sent = server().sent;
  while (!sent.empty()) {
    const std::size_t end = sent.find(wire::frameEnd);
    require(end != std::string_view::npos && end >= 2 && sent[0] == wire::frameStart);
    require(ids.find(sent[1]) != std::string_view::npos);
    require(sent.substr(1, end).find(wire::frameStart) == std::string_view::npos);
    sent.remove_prefix(end + 1);
  }
}

}  // namespace kelvora::fuzz
