#include "platform/win32/eventQueue.h"

#include <deque>
#include <unordered_map>

namespace kelvora {

namespace {

struct Entry {
  int target;
  Input input;
};

/// A program that takes no events, such as one in a long handler, forgets what it can't catch up with.
constexpr std::size_t maxQueued = 10'000;

std::deque<Entry> entries;

std::unordered_map<int, InputTarget*>& targets() {
  static std::unordered_map<int, InputTarget*> all;
  return all;
}

/// Ids are also the commands of menu items, which have 16 bits. Small ones are the system's.
int freeId() {
  constexpr int first = 100;
  constexpr int last = 0xEFFF;
  static int id = first;
  do {
    id = id == last ? first : id + 1;
  } while (targets().contains(id));
  return id;
}

}  // namespace

InputTarget::InputTarget() : id_(freeId()) { targets()[id_] = this; }

InputTarget::~InputTarget() {
  targets().erase(id_);
  std::erase_if(entries, [this](const Entry& entry) { return entry.target == id_; });
}

InputTarget* InputTarget::find(int id) {
  const auto found = targets().find(id);
  return found == targets().end() ? nullptr : found->second;
}

void InputTarget::post(const Input& input) const {
  if (entries.size() < maxQueued) entries.push_back({id_, input});
}

bool isInputQueued() { return !entries.empty(); }

bool serveInput() {
  if (entries.empty()) return false;
  const Entry entry = entries.front();
  entries.pop_front();
  if (InputTarget* target = InputTarget::find(entry.target)) target->take(entry.input);
  return true;
}

}  // namespace kelvora
