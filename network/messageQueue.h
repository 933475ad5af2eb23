#pragma once

#include <cstddef>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace kelvora {

/// The received messages that wait to be handled, numbered from 1 in order of arrival. An entry holds a frame without
/// its start byte; it is ready when its last byte is the frame's end. Entries that never become ready stay for good, so
/// finding, taking and removing cost the same however many of them there are.
///
/// Two bounds keep a hostile server from filling the memory; nothing that the client understands is as long. An entry
/// keeps its first `entryLimit` bytes and its end byte, and an entry that a text would lift the whole queue above
/// `totalLimit` stays as it was.
class MessageQueue {
 public:
  static constexpr std::size_t entryLimit = std::size_t{1} << 20;
  static constexpr std::size_t totalLimit = std::size_t{64} << 20;

  struct Taken {
    std::size_t index;  ///< the entry's number at the time
    std::string text;   ///< its text without the end byte
  };

  double messageCount() const { return static_cast<double>(count()); }
  /// The text of entry `index`, 1 to messageCount.
  std::string_view text(std::size_t index) const;

  /// A frame has started: one more entry, empty.
  void startEntry();
  /// Adds to the newest entry. With no entry left the text goes where nothing reads it; before the first entry ever,
  /// RuntimeFault "Subscript out of range".
  void append(std::string_view text);

  /// Cuts the end byte off the first entry that is ready and returns what is left of it. The entry keeps its place
  /// until it is removed, and is ready no longer unless another end byte stands there.
  std::optional<Taken> takeFirstReady();
  /// Removes whatever entry has this number now; the ones behind it move up. No such entry: nothing happens.
  void removeMessage(std::size_t index);

 private:
  static bool isReady(std::string_view text);
  std::size_t count() const { return parkedCount_ + waiting_.size(); }
  void parkUnready();
  void unparkLast();

  // In front the entries known to be unready, of which only those under way hold any text; behind them the others.
  std::size_t parkedCount_ = 0;
  std::map<std::size_t, std::string> parkedTexts_;  // by number, the empty ones left out
  std::deque<std::string> waiting_;
  std::size_t totalBytes_ = 0;
  bool exists_ = false;  // the first frame has started
};

namespace netMan {
extern MessageQueue messageQueue;
}

}  // namespace kelvora
