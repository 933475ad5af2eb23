#include "platform/qt/windowImage.h"

#include <QBackingStore>
#include <QImage>
#include <QRegion>
#include <QWidget>
#include <QWindow>
#include <algorithm>
#include <cstddef>
#include <vector>

#include "raster/opaqueRows.h"

namespace kelvora {

namespace {

struct PixelRows {
  Pixel* first;
  std::ptrdiff_t pitch;  // pixels
};

// True if the window shows every pixel of the widget, and nothing else there.
bool isUncovered(const QWidget& widget) {
  if (widget.visibleRegion() != QRegion(widget.rect())) return false;
  for (const QWidget* part = &widget; !part->isWindow(); part = part->parentWidget()) {
    const QObjectList& siblings = part->parentWidget()->children();  // from the lowest to the topmost
    for (qsizetype i = siblings.indexOf(part) + 1; i < siblings.size(); ++i) {
      const auto* const above = qobject_cast<const QWidget*>(siblings[i]);
      if (above && above->isVisible() && !above->isWindow() && above->geometry().intersects(part->geometry()))
        return false;
    }
  }
  return true;
}

bool hasGamePixels(QImage::Format format) {
  return format == QImage::Format_RGB32 || format == QImage::Format_ARGB32 ||
         format == QImage::Format_ARGB32_Premultiplied;
}

// The place's rows in the window's image, which is being painted; null where pixels can't be copied one to one.
PixelRows rowsOf(QBackingStore& store, const QRect& place) {
  QPaintDevice* const device = store.paintDevice();
  auto* const image = device && device->devType() == QInternal::Image ? static_cast<QImage*>(device) : nullptr;
  if (!image || !hasGamePixels(image->format()) || image->devicePixelRatio() != 1 || !image->rect().contains(place))
    return {};
  const auto pitch = static_cast<std::ptrdiff_t>(image->bytesPerLine() / qsizetype{sizeof(Pixel)});
  return {reinterpret_cast<Pixel*>(image->bits()) + place.y() * pitch + place.x(), pitch};
}

Rows rowsOf(const PixelArea& area, const PictureBox& box, PixelRows window) {
  const int pitch = box.pixelWidth();
  return {window.first + area.y * window.pitch + area.x,
          window.pitch,
          box.pixels().data() + std::ptrdiff_t{area.y} * pitch + area.x,
          pitch,
          area.width,
          area.height};
}

// The tiles of the areas that the window doesn't show yet. Much is drawn again as it was, such as icons and texts, and
// comparing takes less time than copying. Valid until the next call.
std::span<const PixelArea> differences(const PictureBox& box, std::span<const PixelArea> areas, PixelRows window) {
  static std::vector<PixelArea> tiles;  // keeps its memory, because this runs in every frame
  tiles.clear();
  for (const PixelArea& area : areas) {
    const int end = area.x + area.width;
    for (int x = area.x; x < end; x += Surface::tileWidth) {
      const PixelArea tile{x, area.y, std::min(Surface::tileWidth, end - x), area.height};
      if (!isOpaqueCopy(rowsOf(tile, box, window))) joinOrAppend(tiles, tile);
    }
  }
  return tiles;
}

QRegion regionOf(std::span<const PixelArea> areas, QPoint corner) {
  static std::vector<QRect> places;
  places.clear();
  for (const PixelArea& area : areas) {
    places.push_back(QRect(area.x, area.y, area.width, area.height).translated(corner));
  }
  QRegion region;
  region.setRects(places.data(), static_cast<int>(places.size()));
  return region;
}

}  // namespace

std::optional<int> copyToWindow(const QWidget& widget, const PictureBox& box, std::span<const PixelArea> areas) {
  QBackingStore* const store = widget.backingStore();
  QWindow* const window = widget.window()->windowHandle();
  if (!store || !window || !window->isExposed() || !isUncovered(widget)) return std::nullopt;
  const QRect place(widget.mapTo(widget.window(), QPoint()), QSize(box.pixelWidth(), box.pixelHeight()));
  // Painting nothing makes the image readable. Painting all areas would wait for the transfer of the previous frame.
  store->beginPaint({});
  const PixelRows rows = rowsOf(*store, place);
  std::span<const PixelArea> changed;
  if (rows.first) changed = differences(box, areas, rows);
  store->endPaint();
  if (!rows.first) return std::nullopt;
  if (changed.empty()) return 0;
  const QRegion region = regionOf(changed, place.topLeft());
  store->beginPaint(region);
  const bool isSameImage = rowsOf(*store, place).first == rows.first;
  int pixels = 0;
  for (const PixelArea& area : changed) {
    if (isSameImage) copyOpaque(rowsOf(area, box, rows));
    pixels += area.width * area.height;
  }
  store->endPaint();
  if (!isSameImage) return std::nullopt;
  store->flush(region, window);
  return pixels;
}

}  // namespace kelvora
