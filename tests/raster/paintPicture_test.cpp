#include <gtest/gtest.h>

#include <array>
#include <random>
#include <string>

#include "raster/surface.h"
#include "tests/raster/referenceSurface.h"

namespace kelvora {
namespace {

Picture picture(int width, int height, std::vector<Pixel> pixels) { return {width, height, std::move(pixels)}; }

TEST(RasterOperations, HaveTheirPublishedValues) {
  EXPECT_EQ(static_cast<unsigned>(SRCAND), 0x8800C6U);
  EXPECT_EQ(static_cast<unsigned>(SRCPAINT), 0xEE0086U);
  EXPECT_EQ(static_cast<unsigned>(SRCCOPY), 0xCC0020U);
}

TEST(RasterOperations, CombineSourceAndDestinationBitByBit) {
  const Picture source = picture(1, 1, {0x0F3355});
  const auto joined = [&](RasterOperation operation) {
    Surface surface;
    surface.BackColor = RGB(0xFF, 0x0F, 0x36);
    surface.resize(1, 1);
    surface.PaintPicture(source, 0, 0, 15, 15, 0, 0, operation);
    return surface.pixels()[0];
  };
  EXPECT_EQ(joined(SRCAND), 0x0F0314U);
  EXPECT_EQ(joined(SRCPAINT), 0xFF3F77U);
  EXPECT_EQ(joined(SRCCOPY), 0x0F3355U);
}

// A matte, white outside the shape and black inside, and its image, black outside. The shape is a plus sign of three by
// three.
const Picture matte = picture(3, 3, {0xFFFFFF, 0, 0xFFFFFF, 0, 0, 0, 0xFFFFFF, 0, 0xFFFFFF});
Picture plus(Pixel colour) { return picture(3, 3, {0, colour, 0, colour, colour, colour, 0, colour, 0}); }

void paintSprite(Surface& surface, const Picture& image, int x, int y) {
  surface.PaintSprite({matte, 0, 0, SRCAND}, {image, 0, 0, SRCPAINT}, twips(x), twips(y), 45, 45);
}

TEST(SpriteStep, LaterSpritePunchesItsOwnHoleWithoutMixingColours) {
  constexpr Pixel red = 0xFF0000;
  constexpr Pixel blue = 0x0000FF;
  constexpr Pixel grey = 0x404040;
  Surface surface;
  surface.BackColor = RGB(0x40, 0x40, 0x40);
  surface.resize(4, 3);
  paintSprite(surface, plus(red), 0, 0);
  paintSprite(surface, plus(blue), 1, 0);
  const std::vector<Pixel> expected = {grey, red,  blue, grey,  //
                                       red,  blue, blue, blue,  //
                                       grey, red,  blue, grey};
  EXPECT_EQ(pixelsOf(surface), expected);
}

TEST(SpriteStep, IsClippedAtTheImage) {
  constexpr Pixel red = 0xFF0000;
  Surface surface;
  surface.BackColor = RGB(0x40, 0x40, 0x40);
  surface.resize(3, 3);
  paintSprite(surface, plus(red), -1, -1);
  paintSprite(surface, plus(0x00FF00), 2, 2);
  const std::vector<Pixel> expected = {red,      red,      0x404040,  //
                                       red,      0x404040, 0x404040,  //
                                       0x404040, 0x404040, 0x404040};
  EXPECT_EQ(pixelsOf(surface), expected);
}

TEST(SpriteStep, ExchangedMakesABrightPatchWithTheImageInsideItsShape) {
  constexpr Pixel colour = 0x20F030;
  Surface surface;
  surface.BackColor = RGB(0xFF, 0xFF, 0xFF);
  surface.resize(3, 1);
  const Picture patchMatte = picture(3, 1, {0xFFFFFF, 0, 0xFFFFFF});
  const Picture patchImage = picture(3, 1, {0, colour, 0});
  surface.PaintSprite({patchMatte, 0, 0, SRCPAINT}, {patchImage, 0, 0, SRCAND}, 0, 0, 45, 15);
  // The matte whitens its outside, whatever was there. The image then keeps only its own bits.
  EXPECT_EQ(pixelsOf(surface), (std::vector<Pixel>{0, colour, 0}));
}

TEST(PaintPicture, TakesACellOfTheSheet) {
  Surface surface;
  surface.resize(3, 2);
  const Picture sheet = picture(4, 3, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12});
  surface.PaintPicture(sheet, twips(1), 0, twips(2), twips(2), twips(2), twips(1), SRCCOPY);
  EXPECT_EQ(pixelsOf(surface), (std::vector<Pixel>{0, 7, 8, 0, 11, 12}));
}

TEST(PaintPicture, ConvertsEachNumberToPixelsSeparately) {
  Surface surface;
  surface.resize(4, 1);
  const Picture sheet = picture(5, 1, {1, 2, 3, 4, 5});
  // 7.5 is pixel 1. A width of 37.4 is 2 pixels, although its right edge at 44.9 would be pixel 3. 22.5 is pixel 2.
  surface.PaintPicture(sheet, 7.5F, 0, 37.4F, 15, 22.5F, 0, SRCCOPY);
  EXPECT_EQ(pixelsOf(surface), (std::vector<Pixel>{0, 3, 4, 0}));
}

TEST(PaintPicture, SkipsPartsOutsideTheSource) {
  Surface surface;
  surface.BackColor = RGB(0, 0, 99);
  surface.resize(5, 1);
  const Picture sheet = picture(2, 1, {1, 2});
  surface.PaintPicture(sheet, 0, 0, twips(5), 15, twips(-2), 0, SRCCOPY);
  EXPECT_EQ(pixelsOf(surface), (std::vector<Pixel>{99, 99, 1, 2, 99}));
}

TEST(PaintPicture, WithoutASizeChangesNothing) {
  Surface surface;
  surface.resize(3, 3);
  const Picture sheet = picture(2, 2, {1, 2, 3, 4});
  surface.PaintPicture(sheet, 0, 0, 0, 30, 0, 0, SRCCOPY);
  surface.PaintPicture(sheet, 30, 30, -30, -30, 0, 0, SRCCOPY);
  surface.PaintPicture(Picture{}, 0, 0, 30, 30, 0, 0, SRCCOPY);
  surface.PaintPicture(sheet, -3e38F, 3e38F, 3e38F, 3e38F, 3e38F, -3e38F, SRCCOPY);
  EXPECT_EQ(pixelsOf(surface), std::vector<Pixel>(9, 0));
}

/// Random cells and places, of which many lie in part outside the sheet or the image.
class RandomCopies : public testing::Test {
 protected:
  struct Cell {
    int x, y;
  };

  RandomCopies() {
    surface.BackColor = RGB(0x5A, 0xC3, 0x0F);
    surface.resize(37, 23);
  }

  int between(int low, int high) { return std::uniform_int_distribution<int>(low, high)(draws_); }

  Picture randomSheet(int width, int height) {
    Picture sheet{width, height, {}};
    for (int i = 0; i < width * height; ++i) sheet.pixels.push_back(static_cast<Pixel>(draws_()) & 0xFFFFFF);
    return sheet;
  }
  Cell randomCell(const Picture& sheet) { return {between(-12, sheet.width + 3), between(-12, sheet.height + 3)}; }
  PixelArea randomPlace() { return {between(-25, 40), between(-25, 30), between(-3, 35), between(-3, 25)}; }

  void copyToReference(const Picture& sheet, Cell cell, const PixelArea& place, RasterOperation operation) {
    reference_.copy(sheet, place.x, place.y, place.width, place.height, cell.x, cell.y, operation);
  }
  std::string difference() { return kelvora::difference(surface, reference_); }

  static constexpr std::array operations{SRCAND, SRCPAINT, SRCCOPY};
  Surface surface;

 private:
  std::mt19937 draws_{5};
  ReferenceSurface reference_{37, 23, 0x5AC30F};
};

TEST_F(RandomCopies, OfPicturesMatchTheirDefinitionForAllOperations) {
  const Picture sheet = randomSheet(29, 17);
  for (std::size_t i = 0; i < 5000; ++i) {
    const Cell cell = randomCell(sheet);
    const PixelArea place = randomPlace();
    const RasterOperation operation = operations.at(i % 3);
    surface.PaintPicture(sheet, twips(place.x), twips(place.y), twips(place.width), twips(place.height), twips(cell.x),
                         twips(cell.y), operation);
    copyToReference(sheet, cell, place, operation);
    ASSERT_EQ(difference(), "") << "copy " << i;
  }
}

// The sheets have different sizes, so that the two copies are also clipped differently.
TEST_F(RandomCopies, OfSpritesEqualTheirTwoCopiesForAllOperations) {
  const Picture mattes = randomSheet(29, 17);
  const Picture images = randomSheet(40, 21);
  for (std::size_t i = 0; i < 5000; ++i) {
    const Cell matte = randomCell(mattes);
    const Cell image = between(0, 1) == 0 ? matte : randomCell(images);
    const PixelArea place = randomPlace();
    const RasterOperation matteOperation = operations.at(i % 3);
    const RasterOperation imageOperation = operations.at(i / 3 % 3);
    surface.PaintSprite({mattes, twips(matte.x), twips(matte.y), matteOperation},
                        {images, twips(image.x), twips(image.y), imageOperation}, twips(place.x), twips(place.y),
                        twips(place.width), twips(place.height));
    copyToReference(mattes, matte, place, matteOperation);
    copyToReference(images, image, place, imageOperation);
    ASSERT_EQ(difference(), "") << "sprite " << i;
  }
}

TEST(PaintSprite, IsClearedAfterwards) {
  Surface surface;
  surface.BackColor = RGB(0x40, 0x40, 0x40);
  surface.resize(70, 40);
  Picture white{50, 30, std::vector<Pixel>(50 * 30, 0xFFFFFF)};
  surface.PaintSprite({white, 0, 0, SRCAND}, {white, 0, 0, SRCPAINT}, twips(17), twips(9), twips(50), twips(30));
  surface.Cls();
  EXPECT_EQ(pixelsOf(surface), std::vector<Pixel>(70 * 40, 0x404040));
}

}  // namespace
}  // namespace kelvora
