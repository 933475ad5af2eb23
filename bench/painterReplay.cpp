#include "bench/painterReplay.h"

#include <QFontMetrics>

#include "platform/qt/qtFonts.h"

namespace kelvora::bench {

namespace {

QColor toQColor(Colour colour) { return {colour.red, colour.green, colour.blue}; }

QPainter::CompositionMode compositionFor(RasterOperation operation) {
  switch (operation) {
    case SRCAND:
      return QPainter::RasterOp_SourceAndDestination;
    case SRCPAINT:
      return QPainter::RasterOp_SourceOrDestination;
    default:
      return QPainter::CompositionMode_Source;
  }
}

template <class... Handlers>
struct Overloaded : Handlers... {
  using Handlers::operator()...;
};
template <class... Handlers>
Overloaded(Handlers...) -> Overloaded<Handlers...>;

}  // namespace

PainterReplay::PainterReplay(const std::vector<DrawingCall>& calls) {
  steps_.reserve(calls.size());
  for (const DrawingCall& call : calls) {
    const auto add = [&](decltype(DrawingCall::what) what) {
      Step& step = steps_.emplace_back();
      step.target = &targetFor(*call.surface);
      step.call = std::move(what);
      prepare(step);
    };
    if (const auto* sprite = std::get_if<SpriteCall>(&call.what)) {
      add(sprite->matte);
      add(sprite->image);
    } else {
      add(call.what);
    }
  }
}

PainterReplay::Target& PainterReplay::targetFor(const Surface& surface) {
  auto& target = targets_[&surface];
  if (!target) {
    target = std::make_unique<Target>();
    target->image = QImage(surface.pixelWidth(), surface.pixelHeight(), QImage::Format_RGB32);
    target->image.fill(Qt::black);
    target->painter = std::make_unique<QPainter>(&target->image);
    target->painter->setRenderHint(QPainter::Antialiasing, false);
  }
  return *target;
}

const QImage* PainterReplay::imageFor(const Picture* picture) {
  if (!picture) return nullptr;
  QImage& image = images_[picture];
  if (image.isNull()) {
    image = QImage(picture->width, picture->height, QImage::Format_RGB32);
    for (int y = 0; y < picture->height; ++y) {
      for (int x = 0; x < picture->width; ++x) {
        image.setPixel(x, y, 0xFF000000U | picture->pixels[static_cast<std::size_t>(y * picture->width + x)]);
      }
    }
  }
  return &image;
}

void PainterReplay::prepare(Step& step) {
  std::visit(Overloaded{[&](const ClearCall& call) {
                          step.brush = toQColor(call.back);
                          step.source = imageFor(call.background);
                        },
                        [&](const LineCall& call) {
                          step.pen = QPen(toQColor(call.colour), call.width, Qt::SolidLine, Qt::RoundCap);
                        },
                        [&](const CircleCall& call) {
                          step.pen = QPen(toQColor(call.outline), 1);
                          step.brush = toQColor(call.fill);
                        },
                        [&](const CopyCall& call) { step.source = imageFor(call.source); },
                        [](const SpriteCall&) {},  // two copies
                        [&](const PrintCall& call) {
                          step.pen = QPen(toQColor(call.colour));
                          step.font = toQFont(call.font);
                          const QFontMetrics metrics(step.font);
                          int y = call.y + metrics.ascent();
                          for (const QString& text : QString::fromLatin1(call.text).split("\r\n")) {
                            step.lines.push_back({{call.x, y}, text});
                            y += metrics.height();
                          }
                        }},
             step.call);
}

void PainterReplay::perform(const Step& step) {
  QPainter& painter = *step.target->painter;
  std::visit(Overloaded{[&](const ClearCall&) {
                          painter.setCompositionMode(QPainter::CompositionMode_Source);
                          painter.fillRect(step.target->image.rect(), step.brush);
                          if (step.source) painter.drawImage(0, 0, *step.source);
                          painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
                        },
                        [&](const LineCall& call) {
                          painter.setPen(step.pen);
                          painter.drawLine(call.x1, call.y1, call.x2, call.y2);
                        },
                        [&](const CircleCall& call) {
                          painter.setPen(step.pen);
                          painter.setBrush(step.brush);
                          painter.drawEllipse(QPoint(call.x, call.y), call.radius, call.radius);
                        },
                        [&](const CopyCall& call) {
                          painter.setCompositionMode(compositionFor(call.operation));
                          painter.drawImage(call.x, call.y, *step.source, call.sourceX, call.sourceY, call.width,
                                            call.height);
                          painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
                        },
                        [](const SpriteCall&) {},
                        [&](const PrintCall&) {
                          painter.setPen(step.pen);
                          painter.setFont(step.font);
                          for (const TextLine& line : step.lines) painter.drawText(line.baseline, line.text);
                        }},
             step.call);
}

void PainterReplay::draw() {
  for (const Step& step : steps_) perform(step);
}

}  // namespace kelvora::bench
