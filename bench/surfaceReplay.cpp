#include "bench/surfaceReplay.h"

namespace kelvora::bench {

namespace {

float twips(int pixels) { return static_cast<float>(pixels * twipsPerPixel); }

void perform(Surface& target, const ClearCall& call) {
  target.BackColor = call.back;
  target.Cls();
}

void perform(Surface& target, const LineCall& call) {
  target.ForeColor = call.colour;
  target.DrawWidth = call.width;
  target.Line(twips(call.x1), twips(call.y1), twips(call.x2), twips(call.y2));
}

void perform(Surface& target, const CircleCall& call) {
  target.FillColor = call.fill;
  target.Circle(twips(call.x), twips(call.y), twips(call.radius), call.outline);
}

void perform(Surface& target, const CopyCall& call) {
  target.PaintPicture(*call.source, twips(call.x), twips(call.y), twips(call.width), twips(call.height),
                      twips(call.sourceX), twips(call.sourceY), call.operation);
}

void perform(Surface& target, const SpriteCall& call) {
  const auto copy = [](const CopyCall& part) {
    return SpriteCopy{*part.source, twips(part.sourceX), twips(part.sourceY), part.operation};
  };
  target.PaintSprite(copy(call.matte), copy(call.image), twips(call.matte.x), twips(call.matte.y),
                     twips(call.matte.width), twips(call.matte.height));
}

void perform(Surface& target, const PrintCall& call) {
  target.ForeColor = call.colour;
  target.FontSize = call.font.size;
  target.CurrentX = twips(call.x);
  target.CurrentY = twips(call.y);
  target.Print(call.text);
}

}  // namespace

SurfaceReplay::SurfaceReplay(const std::vector<DrawingCall>& calls) {
  steps_.reserve(calls.size());
  for (const DrawingCall& call : calls) steps_.push_back({&targetFor(*call.surface), call.what});
}

SurfaceReplay::SurfaceReplay(const std::vector<DrawingCall>& calls, int width, int height) : SurfaceReplay(calls) {
  for (auto& [surface, target] : targets_) target->resize(width, height);
}

Surface& SurfaceReplay::targetFor(const Surface& surface) {
  auto& target = targets_[&surface];
  if (!target) {
    target = std::make_unique<Surface>();
    target->Font = surface.Font;
    target->resize(surface.pixelWidth(), surface.pixelHeight());
    target->setBackground(surface.background());
  }
  return *target;
}

void SurfaceReplay::draw() {
  for (const Step& step : steps_) {
    std::visit([&](const auto& call) { perform(*step.target, call); }, step.call);
  }
}

}  // namespace kelvora::bench
