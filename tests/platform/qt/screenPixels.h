#pragma once

#include <QImage>
#include <QScreen>
#include <QWidget>
#include <QWindow>
#include <cstddef>

#include "platform/pictureBox.h"
#include "platform/qt/widgetPeer.h"

namespace kelvora {

/// The screen at the box's place, or `right` pixels further to the right.
inline QImage screenAt(const PictureBox& box, int right = 0) {
  QWidget& widget = *dynamic_cast<WidgetPeer&>(*box.peer).widget();
  QWidget& window = *widget.window();
  const QPoint corner = widget.mapTo(&window, QPoint());
  return window.screen()
      ->grabWindow(window.winId(), corner.x() + right, corner.y(), box.pixelWidth(), box.pixelHeight())
      .toImage()
      .convertToFormat(QImage::Format_RGB32);
}

/// The number of the box's pixels that the screen shows differently.
inline int stalePixels(const PictureBox& box) {
  const QImage screen = screenAt(box);
  int stale = 0;
  for (int y = 0; y < box.pixelHeight(); ++y) {
    const auto* const line = reinterpret_cast<const Pixel*>(screen.constScanLine(y));
    for (int x = 0; x < box.pixelWidth(); ++x) {
      const Pixel drawn = box.pixels()[static_cast<std::size_t>(y * box.pixelWidth() + x)];
      if ((line[x] & 0xFFFFFF) != drawn) ++stale;
    }
  }
  return stale;
}

}  // namespace kelvora
