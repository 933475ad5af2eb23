#pragma once

#include <cstdint>

namespace kelvora {

/// An action of the user on a control or window.
enum class InputKind : std::uint8_t {
  MouseDown,    ///< button, shift, x, y
  MouseMove,    ///< buttons, shift, x, y
  MouseUp,      ///< button, shift, x, y, 1 inside the control
  DoubleClick,  ///< as MouseDown
  Click,
  KeyDown,   ///< code, shift
  KeyPress,  ///< byte of code page 1252
  Edited,
  Scrolled,
  Changed,
  Moved,
  Resized,
  Closed,
  Activated,
};

struct Input {
  InputKind kind;
  int first = 0;  ///< the first number that InputKind lists
  int shift = 0;
  int x = 0;  ///< pixels of the game
  int y = 0;
  int inside = 0;
};

/// Takes the input of one control. Input that is still queued when it is destroyed is dropped.
class InputTarget {
 public:
  InputTarget();
  virtual ~InputTarget();
  InputTarget(const InputTarget&) = delete;
  InputTarget& operator=(const InputTarget&) = delete;

  virtual void take(const Input& input) = 0;
  /// Queues input. Window procedures call this, so no game code runs inside the system's dispatch.
  void post(const Input& input) const;
  int id() const { return id_; }
  /// The target with this id, or null.
  static InputTarget* find(int id);

 private:
  int id_;
};

/// Hands the oldest queued input to its target. False if there was none.
bool serveInput();
bool isInputQueued();

}  // namespace kelvora
