#pragma once

#include <QFont>
#include <QImage>
#include <QPainter>
#include <QPen>
#include <QString>
#include <map>
#include <memory>
#include <vector>

#include "bench/surfaceRecorder.h"

namespace kelvora::bench {

/// Repeats a list of drawing calls with the desktop's painter: 32-bit images, only glyphs antialiased, pens with round
/// ends. Pens, fonts and images are created in the constructor, so that only drawing is measured.
class PainterReplay {
 public:
  explicit PainterReplay(const std::vector<DrawingCall>& calls);
  void draw();
  const QImage& image(const Surface& surface) const { return targets_.at(&surface)->image; }

 private:
  struct Target {
    QImage image;
    std::unique_ptr<QPainter> painter;
  };
  struct TextLine {
    QPoint baseline;
    QString text;
  };
  struct Step {
    Target* target = nullptr;
    decltype(DrawingCall::what) call;
    QPen pen;
    QBrush brush;
    QFont font;
    const QImage* source = nullptr;
    std::vector<TextLine> lines;
  };

  Target& targetFor(const Surface& surface);
  const QImage* imageFor(const Picture* picture);
  void prepare(Step& step);
  static void perform(const Step& step);

  std::map<const Surface*, std::unique_ptr<Target>> targets_;
  std::map<const Picture*, QImage> images_;
  std::vector<Step> steps_;
};

}  // namespace kelvora::bench
