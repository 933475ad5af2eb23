#pragma once

#include <cstddef>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace kelvora {

/// Received messages that wait to be handled, numbered from 1 in order of arrival. An entry holds a frame without its
/// start byte, and is ready when its last byte is the frame's end. Entries that never become ready stay forever, so
/// the cost of finding, taking and removing doesn't depend on their number.
///
/// Two limits keep a hostile server from filling the memory, both far above any real message. An entry stores its first
/// `entryLimit` bytes and its end byte. A text is dropped if all entries together would exceed `totalLimit`. Both
/// limits are in bytes. Strings that grow take up to twice as much memory.
class MessageQueue {
 public:
  static constexpr std::size_t entryLimit = std::size_t{1} << 20;
  static constexpr std::size_t totalLimit = std::size_t{32} << 20;

  struct Taken {
    std::size_t index;  ///< the entry's number at that time
    std::string text;   ///< its text without the end byte
  };

  double messageCount() const { return static_cast<double>(count()); }
  /// The text of entry `index`, from 1 to messageCount. RuntimeFault for any other index.
  std::string_view text(std::size_t index) const;

  /// Adds an empty entry for a new frame.
  void startEntry();
  /// Appends to the newest entry, or drops the text if no entry is left. RuntimeFault "Subscript out of range" before
  /// the first startEntry.
  void append(std::string_view text);

  /// Removes the end byte of the first ready entry and returns the rest. The entry keeps its number until it is
  /// removed. It is no longer ready, unless it ends with another end byte.
  std::optional<Taken> takeFirstReady();
  /// Removes the entry that has this number now; later ones move up. Does nothing if there is none.
  void removeMessage(std::size_t index);

 private:
  static bool isReady(std::string_view text);
  std::size_t count() const { return parkedCount_ + waiting_.size(); }
  void parkUnready();
  void unparkLast();

  // The queue holds the parked entries first, then the waiting ones. Parked entries are known not to be ready, and only
  // the unfinished ones among them have a text.
  std::size_t parkedCount_ = 0;
  std::map<std::size_t, std::string> parkedTexts_;  // by number, without the empty ones
  std::deque<std::string> waiting_;
  std::size_t totalBytes_ = 0;
  bool exists_ = false;  // the first frame has started
};

namespace netMan {
extern MessageQueue messageQueue;
}

}  // namespace kelvora
