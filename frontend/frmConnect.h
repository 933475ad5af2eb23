#pragma once

#include "platform/form.h"
#include "platform/widgets.h"
#include "protocol/rules.h"

namespace kelvora {

/// Collects the login's data and starts the connection. Positions are twips in the client area.
class FrmConnect : public Form {
 public:
  FrmConnect();
  /// Fills in the last input and places the dialog over the main window.
  void load() override;

  PlayerColour colour = redPlayer;  ///< chosen

  Label Label1{this, {120, 180, 1455, 285}, "Player Name:", caption};
  TextBox txtPlayerName{this, {1740, 180, 2055, 285}, ""};
  Label Label2{this, {120, 540, 1455, 285}, "Server Address:", caption};
  TextBox txtServerAddress{this, {1740, 540, 2055, 285}, "127.0.0.1"};
  Label Label3{this, {120, 900, 1455, 285}, "Server Port:", caption};
  TextBox txtServerPort{this, {1740, 900, 915, 285}, "2010"};
  // Quirk Q-230: the only caption without a colon.
  Label Label4{this, {120, 1260, 1455, 285}, "Server Password", caption};
  // Quirk Q-229: the password is shown and stored as it is typed.
  TextBox txtServerPassword{this, {1740, 1260, 2055, 285}, "", {.isSecret = true}};
  Label Label5{this, {120, 1620, 1455, 285}, "Preferred Color:", caption};
  /// The circles' borders are black, so their background is lighter than the dialog.
  Label colourGround{this, {1740, 1620, 1935, 255}, "", {.back = RGB(150, 156, 182)}};
  ControlArray<Shape, 6> shpUserColor{[this](int i) {
    return Shape{this, {1860 + 300.0F * static_cast<float>(i), 1620, 195, 255}, circleColours[i]};
  }};
  /// Covers the circles and takes their clicks.
  Label lblShapeSelect{this, {1740, 1620, 1935, 255}, "", {.transparent = true, .border = true, .systemColours = true}};
  Button cmdConnect{this, {480, 1980, 1455, 375}, "Connect", Button::Role::Default};
  // Quirk Q-050: Esc opens the list of servers instead of pressing cmdCancel.
  Button cmdGetList{this, {2040, 1980, 1455, 375}, "Get List", Button::Role::Cancel};
  Button cmdCancel{this, {1260, 2460, 1455, 375}, "Cancel"};

  /// Also called by the game finder, after filling in address and port.
  void cmdConnect_Click();
  /// Highlights a colour's circle. RuntimeFault for a colour outside 0 to 5.
  void selectColour(PlayerColour chosen);

 private:
  static inline const LabelDesign caption{.alignment = Alignment::Right, .systemColours = true};
  static constexpr Colour circleColours[6] = {RGB(255, 0, 0),   RGB(255, 255, 0), RGB(0, 255, 0),
                                              RGB(0, 255, 255), RGB(0, 0, 255),   RGB(255, 0, 255)};

  void loadLastLogin();
  void saveLastLogin();
  void colourRowMouseDown(float X, float Y);
};

extern FormSlot<FrmConnect> frmConnect;

}  // namespace kelvora
