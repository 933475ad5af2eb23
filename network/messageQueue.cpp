#include "network/messageQueue.h"

#include <algorithm>
#include <utility>

#include "base/fault.h"
#include "protocol/wireFormat.h"

namespace kelvora {

bool MessageQueue::isReady(std::string_view text) { return !text.empty() && text.back() == wire::frameEnd; }

std::string_view MessageQueue::text(std::size_t index) const {
  if (index < 1 || index > count()) raiseSubscriptOutOfRange();
  if (index > parkedCount_) return waiting_[index - parkedCount_ - 1];
  const auto found = parkedTexts_.find(index);
  return found == parkedTexts_.end() ? std::string_view{} : std::string_view{found->second};
}

void MessageQueue::startEntry() {
  exists_ = true;
  parkUnready();
  waiting_.emplace_back();
}

void MessageQueue::append(std::string_view text) {
  // Quirk Q-061: an end byte before the run's first frame has no entry, which ends the client.
  if (!exists_) raiseSubscriptOutOfRange();
  if (count() == 0) return;
  if (waiting_.empty()) unparkLast();
  std::string& entry = waiting_.back();
  const std::size_t before = entry.size();
  // The end byte of a full entry is stored beyond the limit and doesn't count.
  const std::size_t room = entryLimit - std::min(before, entryLimit);
  if (text.size() <= room) {
    if (totalBytes_ + text.size() > totalLimit) return;
    entry += text;
  } else if (totalBytes_ + room + 1 <= totalLimit) {
    entry += text.substr(0, room);
    entry.resize(entryLimit);
    entry += text.back();
  }
  totalBytes_ += entry.size() - before;
}

std::optional<MessageQueue::Taken> MessageQueue::takeFirstReady() {
  parkUnready();
  if (waiting_.empty()) return std::nullopt;
  std::string& entry = waiting_.front();
  entry.pop_back();
  --totalBytes_;
  return Taken{parkedCount_ + 1, entry};
}

void MessageQueue::removeMessage(std::size_t index) {
  if (index < 1 || index > count()) return;
  totalBytes_ -= text(index).size();
  if (index > parkedCount_) {
    waiting_.erase(waiting_.begin() + static_cast<std::ptrdiff_t>(index - parkedCount_ - 1));
    return;
  }
  parkedTexts_.erase(index);
  std::map<std::size_t, std::string> moved;
  for (auto it = parkedTexts_.upper_bound(index); it != parkedTexts_.end(); it = parkedTexts_.erase(it)) {
    moved.emplace(it->first - 1, std::move(it->second));
  }
  parkedTexts_.merge(moved);
  --parkedCount_;
}

void MessageQueue::parkUnready() {
  for (; !waiting_.empty() && !isReady(waiting_.front()); waiting_.pop_front()) {
    ++parkedCount_;
    if (!waiting_.front().empty()) parkedTexts_.emplace(parkedCount_, std::move(waiting_.front()));
  }
}

void MessageQueue::unparkLast() {
  waiting_.emplace_front();
  if (const auto last = parkedTexts_.find(parkedCount_); last != parkedTexts_.end()) {
    waiting_.front() = std::move(last->second);
    parkedTexts_.erase(last);
  }
  --parkedCount_;
}

}  // namespace kelvora
