#pragma once

#include <optional>
#include <span>

#include "platform/pictureBox.h"

class QWidget;

namespace kelvora {

/// Copies the picture's areas straight into the window's image, and shows the tiles that differ there. Returns the
/// number of their pixels. A painter takes many times as long: it blends what it clips and converts the pixels first.
/// Shows nothing and returns nothing where only a painter gives the right picture: on covered widgets and scaled
/// screens. The widget shows the picture in its upper left corner.
std::optional<int> copyToWindow(const QWidget& widget, const PictureBox& box, std::span<const PixelArea> areas);

}  // namespace kelvora
