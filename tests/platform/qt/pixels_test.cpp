#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>
#include <array>
#include <cstdint>

#include "platform/qt/widgetPeer.h"

namespace kelvora {
namespace {

// Pixels as the game has them: the highest byte is 0.
constexpr std::array<std::uint32_t, 4> pixels = {0x00FF0000, 0x00000000, 0x00102030, 0x00FFFFFF};

QImage gamePicture() { return {reinterpret_cast<const uchar*>(pixels.data()), 2, 2, QImage::Format_RGB32}; }

QImage shownOn(QImage::Format format) {
  QImage window(4, 4, format);
  window.fill(Qt::transparent);
  QPainter painter(&window);
  drawPixels(painter, gamePicture(), QRect(0, 0, 2, 2));
  painter.end();
  return window;
}

TEST(Pixels, StayOpaqueOnATranslucentWindow) {
  const QImage window = shownOn(QImage::Format_ARGB32_Premultiplied);
  EXPECT_EQ(window.pixel(0, 0), 0xFFFF0000U);
  EXPECT_EQ(window.pixel(1, 0), 0xFF000000U);
  EXPECT_EQ(window.pixel(0, 1), 0xFF102030U);
  EXPECT_EQ(window.pixel(1, 1), 0xFFFFFFFFU);
  EXPECT_EQ(window.pixel(2, 2), 0U) << "the rest stays unchanged";
}

TEST(Pixels, AreCopiedUnchangedOnAPlainWindow) {
  const QImage window = shownOn(QImage::Format_RGB32);
  EXPECT_EQ(window.pixelColor(0, 0), QColor(255, 0, 0));
  EXPECT_EQ(window.pixelColor(0, 1), QColor(16, 32, 48));
}

TEST(Pixels, PartIsCopiedToItsOwnPosition) {
  QImage window(2, 2, QImage::Format_ARGB32_Premultiplied);
  window.fill(Qt::transparent);
  QPainter painter(&window);
  drawPixels(painter, gamePicture(), QRect(1, 1, 1, 1));
  painter.end();
  EXPECT_EQ(window.pixel(1, 1), 0xFFFFFFFFU);
  EXPECT_EQ(window.pixel(0, 0), 0U);
}

}  // namespace
}  // namespace kelvora
