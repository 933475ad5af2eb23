#pragma once

#include <optional>
#include <span>

#include "platform/pictureBox.h"

class QWidget;

namespace kelvora {

/// Copies the areas' tiles that differ into the window's image and shows them. Returns how many pixels they have, or
/// nothing if only a painter gives the right picture: the widget is covered or the screen scaled. The widget shows the
/// picture in its upper left corner. A painter takes many times as long.
std::optional<int> copyToWindow(const QWidget& widget, const PictureBox& box, std::span<const PixelArea> areas);

}  // namespace kelvora
