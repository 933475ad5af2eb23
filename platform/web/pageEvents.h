#pragma once

#include <string>

namespace kelvora {

/// The kinds of page events, in the same order as `eventKinds` in page/events.js.
enum class PageEventKind {
  None,
  MouseDown,    ///< button, shift, x, y, inside
  MouseMove,    ///< buttons, shift, x, y, inside
  MouseUp,      ///< as MouseDown
  DoubleClick,  ///< as MouseDown
  Click,
  KeyDown,     ///< code, shift
  KeyPress,    ///< byte of code page 1252
  Edited,      ///< caret; `bytes` has the text
  Scrolled,    ///< value
  Changed,     ///< value
  Ticked,      ///< value
  CellChosen,  ///< column and row, as x and y
  Resized,     ///< width and height, as x and y
  Moved,       ///< x, y
  Closed,
  Activated,
  SocketOpened,
  SocketData,  ///< the received `bytes`
  SocketClosed,
  SocketFailed,
  Touched,  ///< as MouseDown
  Released,
};

struct PageEvent {
  PageEventKind kind = PageEventKind::None;
  int first = 0;  ///< the button, key code, character, caret or value
  int shift = 0;
  int x = 0;  ///< pixels
  int y = 0;
  bool isInside = false;  ///< of the control
  std::string bytes;
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
