#pragma once

#include <span>

#include "platform/pictureBox.h"

class QWidget;

namespace kelvora {

/// Copies the picture's areas straight into the window's image, and shows what differs there. The widget shows the
/// picture in its upper left corner. A painter takes many times as long: it blends what it clips and converts the
/// pixels first. Does nothing and returns false where only a painter gives the right picture: on covered widgets and
/// scaled screens.
bool copyToWindow(const QWidget& widget, const PictureBox& box, std::span<const PixelArea> areas);

}  // namespace kelvora
