#include <benchmark/benchmark.h>
#include <QGuiApplication>
#include <cstring>
#include <string>

#include "bench/painterReplay.h"
#include "bench/scene.h"
#include "bench/surfaceRecorder.h"
#include "bench/surfaceReplay.h"
#include "bench/turns.h"
#include "frontend/frmMain.h"
#include "platform/qt/qtFonts.h"
#include "platform/qt/qtGlyphs.h"

// Records the drawing calls of a whole frame, then repeats them with the game's surface and the desktop's painter, both
// in memory. Also measures the game's whole frame, which includes ageing, tests and building texts.

namespace {

using namespace kelvora;
using namespace kelvora::bench;

enum class Texts { None, Full };

std::vector<DrawingCall> record(Scene& scene) {
  SurfaceRecorder recorder;
  scene.paint();
  return recorder.calls;
}

enum Piece : std::size_t { Drawing, Painter, Frame };

/// Argument 0: frames per slice. Counters, in microseconds per frame: the list with the game's surface and with the
/// desktop's painter, their ratio, the game's whole frame, and the part of it that isn't drawing.
void frames(benchmark::State& state, bool heavy, Texts texts) {
  QtGlyphSource glyphs;
  Scene scene(heavy, texts == Texts::Full ? &glyphs : nullptr);
  std::vector<DrawingCall> calls = record(scene);
  if (texts == Texts::None) {
    std::erase_if(calls, [](const DrawingCall& call) { return std::holds_alternative<PrintCall>(call.what); });
  }
  SurfaceReplay own(calls);
  PainterReplay peer(calls);
  own.draw();
  peer.draw();
  const int slice = static_cast<int>(state.range(0));
  Turns turns(3);
  for (auto unused : state) {
    turns.measure(Drawing, slice, [&] { own.draw(); });
    turns.measure(Painter, slice, [&] { peer.draw(); });
    turns.measure(Frame, slice, [&] { scene.paint(); });
  }
  state.counters["calls"] = static_cast<double>(calls.size());
  state.counters["surface_us"] = turns.microseconds(Drawing);
  state.counters["painter_us"] = turns.microseconds(Painter);
  state.counters["ratio"] = turns.ratio(Painter, Drawing);
  state.counters["frame_us"] = turns.microseconds(Frame);
  state.counters["logic_us"] = turns.microseconds(Frame) - turns.microseconds(Drawing);
  if (const char* folder = std::getenv("KELVORA_BENCH_PICTURES")) {
    const PictureBox& canvas = frmMain->canvas;
    const std::string name =
        std::string(folder) + (heavy ? "/heavy" : "/light") + (texts == Texts::Full ? "-text" : "");
    peer.image(canvas).save(QString::fromStdString(name + "-painter.png"));
    const Surface& picture = own.image(canvas);
    const QImage image(reinterpret_cast<const uchar*>(picture.pixels().data()), picture.pixelWidth(),
                       picture.pixelHeight(), QImage::Format_RGB32);
    image.save(QString::fromStdString(name + "-surface.png"));
  }
}

/// Calls of one kind, numbered as in DrawingCall: 1 lines, 2 circles, 3 copies, 4 texts, 5 sprites; 0 for all but
/// texts. Clears first.
void kinds(benchmark::State& state, bool heavy) {
  QtGlyphSource glyphs;
  Scene scene(heavy, &glyphs);
  std::vector<DrawingCall> calls = record(scene);
  const auto kind = static_cast<std::size_t>(state.range(0));
  std::erase_if(calls, [&](const DrawingCall& call) {
    return kind == 0 ? std::holds_alternative<PrintCall>(call.what) : call.what.index() != kind;
  });
  SurfaceReplay own(calls);
  PainterReplay peer(calls);
  const int slice = heavy ? 1 : 10;
  Turns turns(2);
  for (auto unused : state) {
    turns.measure(Drawing, slice, [&] { own.draw(); });
    turns.measure(Painter, slice, [&] { peer.draw(); });
  }
  state.counters["calls"] = static_cast<double>(calls.size());
  state.counters["surface_us"] = turns.microseconds(Drawing);
  state.counters["painter_us"] = turns.microseconds(Painter);
  state.counters["ratio"] = turns.ratio(Painter, Drawing);
}
/// The heavy frame's list on a canvas of the design size and on a large one. Arguments: its size in pixels. Drawing
/// takes the same time on both. Only the pixels cleared and shown increase. Showing copies the image once, like memcpy.
void canvasSize(benchmark::State& state) {
  enum Part : std::size_t { Draw, Clear, ClearAll, Show, Parts };
  Scene scene(true, nullptr);
  std::vector<DrawingCall> calls = record(scene);
  const Surface* const canvas = &frmMain->canvas;
  std::erase_if(calls, [&](const DrawingCall& call) {
    return call.surface != canvas || std::holds_alternative<PrintCall>(call.what) ||
           std::holds_alternative<ClearCall>(call.what);
  });
  SurfaceReplay list(calls, static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
  Surface& target = list.image(*canvas);
  std::vector<Pixel> shown(target.pixels().size());
  Turns turns(Parts);
  for (auto unused : state) {
    turns.measure(Draw, 1, [&] { list.draw(); });
    turns.measure(Clear, 1, [&] { target.Cls(); });
    target.DrawWidth = 64;
    for (int y = 0; y < target.pixelHeight() + 32; y += 32) {
      const auto height = static_cast<float>(y * twipsPerPixel);
      target.Line(0, height, static_cast<float>(target.pixelWidth() * twipsPerPixel), height);
    }
    turns.measure(ClearAll, 1, [&] { target.Cls(); });
    turns.measure(Show, 1, [&] { std::memcpy(shown.data(), target.pixels().data(), target.pixels().size_bytes()); });
  }
  state.counters["draw_us"] = turns.microseconds(Draw);
  state.counters["clear_us"] = turns.microseconds(Clear);
  state.counters["clearAll_us"] = turns.microseconds(ClearAll);
  state.counters["show_us"] = turns.microseconds(Show);
  state.counters["megapixels"] = static_cast<double>(shown.size()) / 1e6;
}
BENCHMARK(canvasSize)->Args({763, 608})->Args({1920, 1080})->Args({3840, 2160})->Unit(benchmark::kMicrosecond);

BENCHMARK_CAPTURE(kinds, light, false)->DenseRange(0, 5)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(kinds, heavy, true)->DenseRange(0, 5)->Unit(benchmark::kMicrosecond);

BENCHMARK_CAPTURE(frames, light, false, Texts::None)->Arg(10)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(frames, heavy, true, Texts::None)->Arg(1)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(frames, lightWithTexts, false, Texts::Full)->Arg(2)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(frames, heavyWithTexts, true, Texts::Full)->Arg(1)->Unit(benchmark::kMicrosecond);

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QGuiApplication application(argc, argv);
  kelvora::installFontSubstitutes();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
