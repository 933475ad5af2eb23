#include <benchmark/benchmark.h>

#include <QImage>
#include <QPainter>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

#include "bench/turns.h"
#include "raster/surface.h"

// The game's surface and the desktop's painter (no antialiasing, round pen caps, a 32-bit image of the canvas's size)
// process the same lists in turn. Copies and clears are compared with the C library moving the same bytes.

namespace {

using namespace kelvora;
using kelvora::bench::Turns;

constexpr int canvasWidth = 763;
constexpr int canvasHeight = 608;

struct Stroke {
  int x1, y1, x2, y2;  // pixels
  int width;
  Colour colour;
};

// A tail as painted by the game: 300 segments of `length` pixels that wander over the canvas. Width 0 means 1 to 30
// along the tail.
std::vector<Stroke> tail(int length, int width) {
  std::mt19937 draws(42);
  std::uniform_real_distribution<double> turns(-0.5, 0.5);
  std::vector<Stroke> strokes;
  double x = canvasWidth / 2.0;
  double y = canvasHeight / 2.0;
  double heading = 0;
  for (int i = 0; i < 300; ++i) {
    heading += turns(draws);
    double nextX = x + length * std::cos(heading);
    double nextY = y + length * std::sin(heading);
    if (nextX < 0 || nextX >= canvasWidth || nextY < 0 || nextY >= canvasHeight) {
      heading += 3;
      nextX = x + length * std::cos(heading);
      nextY = y + length * std::sin(heading);
    }
    const int penWidth = width > 0 ? width : std::max(1, i / 10);
    strokes.push_back({static_cast<int>(x), static_cast<int>(y), static_cast<int>(nextX), static_cast<int>(nextY),
                       penWidth, RGB(255 - i / 2, 0, 0)});
    x = nextX;
    y = nextY;
  }
  return strokes;
}

float twips(int pixels) { return static_cast<float>(pixels * twipsPerPixel); }

Surface canvas() {
  Surface surface;
  surface.resize(canvasWidth, canvasHeight);
  return surface;
}

QImage peerCanvas() {
  QImage image(canvasWidth, canvasHeight, QImage::Format_RGB32);
  image.fill(Qt::black);
  return image;
}

QColor peerColour(Colour colour) { return {colour.red, colour.green, colour.blue}; }

enum Piece : std::size_t { Own, Painter, Memory };

/// Microseconds of the surface, the painter and, if any, the memory operation, and their ratios.
void report(benchmark::State& state, const Turns& turns, bool hasMemory = false) {
  state.counters["surface_us"] = turns.microseconds(Own);
  state.counters["painter_us"] = turns.microseconds(Painter);
  state.counters["ratio"] = turns.ratio(Painter, Own);
  if (!hasMemory) return;
  state.counters["memory_us"] = turns.microseconds(Memory);
  state.counters["of_memory"] = turns.ratio(Own, Memory);
}

void drawStrokes(benchmark::State& state, const std::vector<Stroke>& strokes) {
  Surface surface = canvas();
  QImage image = peerCanvas();
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing, false);
  Turns turns(3);
  for (auto unused : state) {
    turns.measure(Own, 1, [&] {
      for (const Stroke& stroke : strokes) {
        surface.ForeColor = stroke.colour;
        surface.DrawWidth = stroke.width;
        surface.Line(twips(stroke.x1), twips(stroke.y1), twips(stroke.x2), twips(stroke.y2));
      }
    });
    turns.measure(Painter, 1, [&] {
      for (const Stroke& stroke : strokes) {
        painter.setPen(QPen(peerColour(stroke.colour), stroke.width, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(stroke.x1, stroke.y1, stroke.x2, stroke.y2);
      }
    });
  }
  report(state, turns);
}

void tailOfAllWidths(benchmark::State& state) { drawStrokes(state, tail(20, 0)); }
void tailOfWidth(benchmark::State& state) { drawStrokes(state, tail(20, static_cast<int>(state.range(0)))); }
void longLines(benchmark::State& state) { drawStrokes(state, tail(250, static_cast<int>(state.range(0)))); }

// The world's whole border, with its corners far outside.
void worldBorder(benchmark::State& state) {
  const Colour blue = RGB(0, 0, 255);
  drawStrokes(state, {{-3000, 100, 3600, 100, 8, blue},
                      {3600, 100, 3600, 6700, 8, blue},
                      {3600, 6700, -3000, 6700, 8, blue},
                      {200, 6700, 200, -100, 8, blue}});
}

Picture noise(int width, int height) {
  Picture picture{width, height, {}};
  std::mt19937 draws(1);
  for (int i = 0; i < width * height; ++i) picture.pixels.push_back(static_cast<Pixel>(draws()) & 0xFFFFFF);
  return picture;
}

QImage peerImage(const Picture& picture) {
  QImage image(picture.width, picture.height, QImage::Format_RGB32);
  for (int y = 0; y < picture.height; ++y) {
    for (int x = 0; x < picture.width; ++x) {
      image.setPixel(x, y, 0xFF000000U | picture.pixels[static_cast<std::size_t>(y * picture.width + x)]);
    }
  }
  return image;
}

struct Copy {
  int x, y, sourceX;
};

// The bytes of a copy moved by the C library row by row: the minimum for any copy.
void copyMemory(QImage& image, const Picture& source, const Copy& copy, int width, int height) {
  const int left = std::max(0, -copy.x);
  const int count = std::min(width, image.width() - copy.x) - left;
  if (count <= 0) return;
  for (int row = std::max(0, -copy.y); row < std::min(height, image.height() - copy.y); ++row) {
    std::memcpy(image.scanLine(copy.y + row) + (copy.x + left) * 4,
                source.pixels.data() + row * source.width + copy.sourceX + left, static_cast<std::size_t>(count) * 4);
  }
}

// Argument 0: the operation.
void copies(benchmark::State& state, const Picture& source, int width, int height, const std::vector<Copy>& list) {
  constexpr std::array<RasterOperation, 3> operations = {SRCAND, SRCPAINT, SRCCOPY};
  constexpr std::array<QPainter::CompositionMode, 3> peerOperations = {QPainter::RasterOp_SourceAndDestination,
                                                                       QPainter::RasterOp_SourceOrDestination,
                                                                       QPainter::CompositionMode_Source};
  const auto operation = static_cast<std::size_t>(state.range(0));
  Surface surface = canvas();
  QImage image = peerCanvas();
  QImage bare = peerCanvas();
  const QImage peerSource = peerImage(source);
  QPainter painter(&image);
  painter.setCompositionMode(peerOperations.at(operation));
  Turns turns(3);
  for (auto unused : state) {
    turns.measure(Own, 1, [&] {
      for (const Copy& copy : list) {
        surface.PaintPicture(source, twips(copy.x), twips(copy.y), twips(width), twips(height), twips(copy.sourceX), 0,
                             operations.at(operation));
      }
    });
    turns.measure(Painter, 1, [&] {
      for (const Copy& copy : list) painter.drawImage(copy.x, copy.y, peerSource, copy.sourceX, 0, width, height);
    });
    turns.measure(Memory, 1, [&] {
      for (const Copy& copy : list) copyMemory(bare, source, copy, width, height);
    });
  }
  report(state, turns, true);
}

// A hundred cells of 49 by 49 pixels, some of them across the border.
void sprites(benchmark::State& state) {
  std::vector<Copy> list;
  for (int i = 0; i < 100; ++i) list.push_back({i * 37 % 780 - 20, i * 53 % 620 - 20, i % 4 * 49});
  copies(state, noise(196, 49), 49, 49, list);
}

// A picture of the canvas's size.
void wholePicture(benchmark::State& state) {
  copies(state, noise(canvasWidth, canvasHeight), canvasWidth, canvasHeight, {{0, 0, 0}});
}

// Background particles: a hundred filled circles. Argument: the radius in pixels.
void circles(benchmark::State& state) {
  constexpr int count = 100;
  Surface surface = canvas();
  surface.FillColor = RGB(90, 90, 200);
  QImage image = peerCanvas();
  QPainter painter(&image);
  painter.setPen(QColor(90, 90, 200));
  painter.setBrush(QColor(90, 90, 200));
  const int radius = static_cast<int>(state.range(0));
  Turns turns(3);
  for (auto unused : state) {
    turns.measure(Own, 10, [&] {
      for (int i = 0; i < count; ++i) {
        surface.Circle(twips(i * 37 % canvasWidth), twips(i * 53 % canvasHeight), twips(radius), RGB(90, 90, 200));
      }
    });
    turns.measure(Painter, 10, [&] {
      for (int i = 0; i < count; ++i) {
        painter.drawEllipse(QPoint(i * 37 % canvasWidth, i * 53 % canvasHeight), radius, radius);
      }
    });
  }
  report(state, turns);
}

// Clears a fully drawn canvas. Argument 0: 0 to black, 1 to a colour, 2 to a picture of the canvas's size. Argument 1:
// the canvas's width in pixels; its height is in proportion.
void clear(benchmark::State& state) {
  const int width = static_cast<int>(state.range(1));
  const int height = width == canvasWidth ? canvasHeight : width * 9 / 16;
  Surface surface;
  surface.resize(width, height);
  QImage image(width, height, QImage::Format_RGB32);
  QImage bare(width, height, QImage::Format_RGB32);
  std::shared_ptr<Picture> background;
  if (state.range(0) == 2) background = std::make_shared<Picture>(noise(width, height));
  if (background) surface.setBackground(background);
  const QColor colour = state.range(0) == 0 ? QColor(0, 0, 0) : QColor(10, 20, 30);
  surface.BackColor = RGB(colour.red(), colour.green(), colour.blue());
  const QImage peerBackground = background ? peerImage(*background) : QImage();
  const auto bytes = static_cast<std::size_t>(bare.sizeInBytes());
  Turns turns(3);
  for (auto unused : state) {
    // An empty copy touches nothing, and a real one would be measured. So this draws lines of maximum width before the
    // clock starts.
    surface.DrawWidth = 64;
    for (int y = 0; y < height + 32; y += 32) surface.Line(0, twips(y), twips(width), twips(y));
    turns.measure(Own, 1, [&] { surface.Cls(); });
    turns.measure(Painter, 1, [&] {
      if (background) {
        QPainter painter(&image);
        painter.drawImage(0, 0, peerBackground);
      } else {
        image.fill(colour);
      }
    });
    // The two memory operations: bytes set, bytes copied.
    for (int y = 0; y < height; ++y) bare.scanLine(y)[0] = 1;
    turns.measure(Memory, 1, [&] {
      if (background) {
        std::memcpy(bare.bits(), background->pixels.data(), bytes);
      } else {
        std::memset(bare.bits(), 0, bytes);
      }
    });
  }
  report(state, turns, true);
  state.counters["megabytes"] = static_cast<double>(bytes) / 1e6;
}

constexpr auto unit = benchmark::kMicrosecond;
BENCHMARK(tailOfAllWidths)->Unit(unit);
BENCHMARK(tailOfWidth)->Arg(1)->Arg(2)->Arg(5)->Arg(10)->Arg(20)->Arg(30)->Unit(unit);
BENCHMARK(longLines)->Arg(1)->Arg(8)->Arg(30)->Unit(unit);
BENCHMARK(worldBorder)->Unit(unit);
BENCHMARK(sprites)->DenseRange(0, 2)->Unit(unit);
BENCHMARK(wholePicture)->DenseRange(0, 2)->Unit(unit);
BENCHMARK(circles)->Arg(1)->Arg(2)->Arg(10)->Unit(unit);
BENCHMARK(clear)->ArgsProduct({{0, 1, 2}, {canvasWidth, 3840}})->Unit(unit);

}  // namespace
