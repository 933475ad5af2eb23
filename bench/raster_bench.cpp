#include <benchmark/benchmark.h>

#include <QImage>
#include <QPainter>
#include <array>
#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "raster/surface.h"

// The game's surface and the desktop's painter (no antialiasing, pens with round caps, a 32-bit image of the canvas's
// size) work through the same lists.

namespace {

using namespace kelvora;

constexpr int canvasWidth = 763;
constexpr int canvasHeight = 608;

struct Stroke {
  int x1, y1, x2, y2;  // pixels
  int width;
  Colour colour;
};

// A tail as the game paints it: 300 segments of `length` pixels that wander over the canvas; width 0 stands for 1 to 30
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

void drawStrokes(benchmark::State& state, const std::vector<Stroke>& strokes) {
  Surface surface = canvas();
  for (auto unused : state) {
    for (const Stroke& stroke : strokes) {
      surface.ForeColor = stroke.colour;
      surface.DrawWidth = stroke.width;
      surface.Line(twips(stroke.x1), twips(stroke.y1), twips(stroke.x2), twips(stroke.y2));
    }
    benchmark::DoNotOptimize(surface.pixels().data());
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(strokes.size()));
}

void drawStrokesPeer(benchmark::State& state, const std::vector<Stroke>& strokes) {
  QImage image = peerCanvas();
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing, false);
  for (auto unused : state) {
    for (const Stroke& stroke : strokes) {
      painter.setPen(QPen(peerColour(stroke.colour), stroke.width, Qt::SolidLine, Qt::RoundCap));
      painter.drawLine(stroke.x1, stroke.y1, stroke.x2, stroke.y2);
    }
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(strokes.size()));
}

void tailOfAllWidths(benchmark::State& state) { drawStrokes(state, tail(20, 0)); }
void tailOfAllWidthsPeer(benchmark::State& state) { drawStrokesPeer(state, tail(20, 0)); }
void tailOfWidth(benchmark::State& state) { drawStrokes(state, tail(20, static_cast<int>(state.range(0)))); }
void tailOfWidthPeer(benchmark::State& state) { drawStrokesPeer(state, tail(20, static_cast<int>(state.range(0)))); }
void longLines(benchmark::State& state) { drawStrokes(state, tail(250, static_cast<int>(state.range(0)))); }
void longLinesPeer(benchmark::State& state) { drawStrokesPeer(state, tail(250, static_cast<int>(state.range(0)))); }

// The world's border in full, its corners far outside.
std::vector<Stroke> border() {
  const Colour blue = RGB(0, 0, 255);
  return {{-3000, 100, 3600, 100, 8, blue},
          {3600, 100, 3600, 6700, 8, blue},
          {3600, 6700, -3000, 6700, 8, blue},
          {200, 6700, 200, -100, 8, blue}};
}
void worldBorder(benchmark::State& state) { drawStrokes(state, border()); }
void worldBorderPeer(benchmark::State& state) { drawStrokesPeer(state, border()); }

Picture sheet() {
  Picture picture{196, 49, {}};
  std::mt19937 draws(1);
  for (int i = 0; i < 196 * 49; ++i) picture.pixels.push_back(static_cast<Pixel>(draws()) & 0xFFFFFF);
  return picture;
}

constexpr std::array<RasterOperation, 3> operations = {SRCAND, SRCPAINT, SRCCOPY};
constexpr std::array<QPainter::CompositionMode, 3> peerOperations = {
    QPainter::RasterOp_SourceAndDestination, QPainter::RasterOp_SourceOrDestination, QPainter::CompositionMode_Source};
constexpr int copies = 100;

// Cells of 49 by 49 pixels, some of them over the border. Argument: the operation.
void sprites(benchmark::State& state) {
  Surface surface = canvas();
  const Picture source = sheet();
  const RasterOperation operation = operations.at(static_cast<std::size_t>(state.range(0)));
  for (auto unused : state) {
    for (int i = 0; i < copies; ++i) {
      surface.PaintPicture(source, twips(i * 37 % 780 - 20), twips(i * 53 % 620 - 20), twips(49), twips(49),
                           twips(i % 4 * 49), 0, operation);
    }
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * copies);
}

void spritesPeer(benchmark::State& state) {
  QImage image = peerCanvas();
  const Picture source = sheet();
  QImage peerSheet(source.width, source.height, QImage::Format_RGB32);
  for (int y = 0; y < source.height; ++y) {
    for (int x = 0; x < source.width; ++x) {
      peerSheet.setPixel(x, y, source.pixels[static_cast<std::size_t>(y * source.width + x)]);
    }
  }
  QPainter painter(&image);
  painter.setCompositionMode(peerOperations.at(static_cast<std::size_t>(state.range(0))));
  for (auto unused : state) {
    for (int i = 0; i < copies; ++i) {
      painter.drawImage(i * 37 % 780 - 20, i * 53 % 620 - 20, peerSheet, i % 4 * 49, 0, 49, 49);
    }
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * copies);
}

// Particles of the background: filled circles. Argument: the radius in pixels.
void circles(benchmark::State& state) {
  Surface surface = canvas();
  surface.FillColor = RGB(90, 90, 200);
  const float radius = twips(static_cast<int>(state.range(0)));
  for (auto unused : state) {
    for (int i = 0; i < copies; ++i) {
      surface.Circle(twips(i * 37 % canvasWidth), twips(i * 53 % canvasHeight), radius, RGB(90, 90, 200));
    }
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * copies);
}

void circlesPeer(benchmark::State& state) {
  QImage image = peerCanvas();
  QPainter painter(&image);
  const int radius = static_cast<int>(state.range(0));
  painter.setPen(QColor(90, 90, 200));
  painter.setBrush(QColor(90, 90, 200));
  for (auto unused : state) {
    for (int i = 0; i < copies; ++i) {
      painter.drawEllipse(QPoint(i * 37 % canvasWidth, i * 53 % canvasHeight), radius, radius);
    }
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * copies);
}

void clear(benchmark::State& state) {
  Surface surface = canvas();
  surface.BackColor = state.range(0) == 0 ? RGB(0, 0, 0) : RGB(10, 20, 30);
  for (auto unused : state) {
    surface.Cls();
    benchmark::ClobberMemory();
  }
}

void clearPeer(benchmark::State& state) {
  QImage image = peerCanvas();
  const QColor colour = state.range(0) == 0 ? QColor(0, 0, 0) : QColor(10, 20, 30);
  for (auto unused : state) {
    image.fill(colour);
    benchmark::ClobberMemory();
  }
}

BENCHMARK(tailOfAllWidths);
BENCHMARK(tailOfAllWidthsPeer);
BENCHMARK(tailOfWidth)->Arg(1)->Arg(2)->Arg(5)->Arg(10)->Arg(20)->Arg(30);
BENCHMARK(tailOfWidthPeer)->Arg(1)->Arg(2)->Arg(5)->Arg(10)->Arg(20)->Arg(30);
BENCHMARK(longLines)->Arg(1)->Arg(8)->Arg(30);
BENCHMARK(longLinesPeer)->Arg(1)->Arg(8)->Arg(30);
BENCHMARK(worldBorder);
BENCHMARK(worldBorderPeer);
BENCHMARK(sprites)->DenseRange(0, 2);
BENCHMARK(spritesPeer)->DenseRange(0, 2);
BENCHMARK(circles)->Arg(1)->Arg(2)->Arg(10);
BENCHMARK(circlesPeer)->Arg(1)->Arg(2)->Arg(10);
BENCHMARK(clear)->Arg(0)->Arg(1);
BENCHMARK(clearPeer)->Arg(0)->Arg(1);

}  // namespace
