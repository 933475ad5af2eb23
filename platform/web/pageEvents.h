#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace kelvora {

/// What the page tells, in the order of page/events.js.
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
  std::array<int, 5> numbers{};  ///< of a mouse event: button, Shift, x and y in pixels, 1 for inside
  std::string bytes;
};

/// Something that the page knows by a number: a control, a box, a socket. Events for one that is gone are dropped.
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

/// Hands the first waiting event to its object; false if there is none.
bool servePageEvent();

}  // namespace kelvora
