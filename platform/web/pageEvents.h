#pragma once

#include <array>
#include <string>

namespace kelvora {

/// The kinds of page events, in the same order as `eventKinds` in page/events.js.
enum class PageEventKind {
  None,
  MouseDown,
  MouseMove,
  MouseUp,
  DoubleClick,
  Click,
  KeyDown,
  KeyPress,
  Edited,
  Scrolled,
  Changed,
  Ticked,
  CellChosen,
  Resized,
  Moved,
  Closed,
  Activated,
  SocketOpened,
  SocketData,
  SocketClosed,
  SocketFailed,
  Touched,
  Released,
};

struct PageEvent {
  PageEventKind kind = PageEventKind::None;
  /// Of a mouse event or touch: button, Shift, x and y in pixels, 1 for inside. Of a key event: KeyCode or KeyAscii,
  /// and Shift. Of a slider: its value. Of an edited box: the caret. Of a cell: row and column. Of a form: its size or
  /// place in pixels.
  std::array<int, 5> numbers{};
  std::string bytes;  ///< the text of an edited box, or what a socket has received
};

/// A control, box or socket that the page addresses by its id. Events for destroyed objects are dropped.
class PageObject {
 public:
  PageObject();
  PageObject(const PageObject&) = delete;
  PageObject& operator=(const PageObject&) = delete;
  virtual ~PageObject();
  virtual void take(const PageEvent& event) = 0;
  int id() const { return id_; }

 private:
  int id_;
};

/// Hands the oldest pending event to its object. False if there is none.
bool servePageEvent();

}  // namespace kelvora
