#include "bench/surfaceRecorder.h"

namespace kelvora::bench {

namespace {

SurfaceRecorder* recorder = nullptr;

void note(const Surface* surface, decltype(DrawingCall::what) what) {
  recorder->calls.push_back({surface, std::move(what)});
  if (recorder->onCall) recorder->onCall(recorder->calls.back());
}

}  // namespace

SurfaceRecorder::SurfaceRecorder() { recorder = this; }
SurfaceRecorder::~SurfaceRecorder() { recorder = nullptr; }

// The linker's wrappers for the surface's operations, and the operations themselves.
void realCls(Surface*) asm("__real__ZN7kelvora7Surface3ClsEv");
void wrappedCls(Surface*) asm("__wrap__ZN7kelvora7Surface3ClsEv");
void realLine(Surface*, float, float, float, float) asm("__real__ZN7kelvora7Surface4LineEffff");
void wrappedLine(Surface*, float, float, float, float) asm("__wrap__ZN7kelvora7Surface4LineEffff");
void realCircle(Surface*, float, float, float, Colour) asm("__real__ZN7kelvora7Surface6CircleEfffNS_6ColourE");
void wrappedCircle(Surface*, float, float, float, Colour) asm("__wrap__ZN7kelvora7Surface6CircleEfffNS_6ColourE");
void realPaintPicture(Surface*, const Picture&, float, float, float, float, float, float, RasterOperation) asm(
    "__real__ZN7kelvora7Surface12PaintPictureERKNS_7PictureEffffffNS_15RasterOperationE");
void wrappedPaintPicture(Surface*, const Picture&, float, float, float, float, float, float, RasterOperation) asm(
    "__wrap__ZN7kelvora7Surface12PaintPictureERKNS_7PictureEffffffNS_15RasterOperationE");
void realPaintSprite(Surface*, const SpriteCopy&, const SpriteCopy&, float, float, float,
                     float) asm("__real__ZN7kelvora7Surface11PaintSpriteERKNS_10SpriteCopyES3_ffff");
void wrappedPaintSprite(Surface*, const SpriteCopy&, const SpriteCopy&, float, float, float,
                        float) asm("__wrap__ZN7kelvora7Surface11PaintSpriteERKNS_10SpriteCopyES3_ffff");
void realPrint(Surface*,
               std::string_view) asm("__real__ZN7kelvora7Surface5PrintESt17basic_string_viewIcSt11char_traitsIcEE");
void wrappedPrint(Surface*,
                  std::string_view) asm("__wrap__ZN7kelvora7Surface5PrintESt17basic_string_viewIcSt11char_traitsIcEE");

void wrappedCls(Surface* surface) {
  if (recorder) note(surface, ClearCall{surface->BackColor, surface->background().get()});
  realCls(surface);
}

void wrappedLine(Surface* surface, float x1, float y1, float x2, float y2) {
  if (recorder) {
    note(surface,
         LineCall{toPixels(x1), toPixels(y1), toPixels(x2), toPixels(y2), surface->DrawWidth, surface->ForeColor});
  }
  realLine(surface, x1, y1, x2, y2);
}

void wrappedCircle(Surface* surface, float x, float y, float radius, Colour outline) {
  if (recorder) note(surface, CircleCall{toPixels(x), toPixels(y), toPixels(radius), outline, surface->FillColor});
  realCircle(surface, x, y, radius, outline);
}

void wrappedPaintPicture(Surface* surface, const Picture& source, float x, float y, float w, float h, float sx,
                         float sy, RasterOperation operation) {
  if (recorder) {
    note(surface,
         CopyCall{&source, toPixels(x), toPixels(y), toPixels(w), toPixels(h), toPixels(sx), toPixels(sy), operation});
  }
  realPaintPicture(surface, source, x, y, w, h, sx, sy, operation);
}

void wrappedPaintSprite(Surface* surface, const SpriteCopy& matte, const SpriteCopy& image, float x, float y, float w,
                        float h) {
  const auto noted = [&](const SpriteCopy& copy) {
    return CopyCall{&copy.source, toPixels(x),         toPixels(y),        toPixels(w),
                    toPixels(h),  toPixels(copy.left), toPixels(copy.top), copy.operation};
  };
  if (recorder) note(surface, SpriteCall{noted(matte), noted(image)});
  realPaintSprite(surface, matte, image, x, y, w, h);
}

void wrappedPrint(Surface* surface, std::string_view text) {
  if (recorder) {
    FontSpec font = surface->Font;
    font.size = surface->FontSize;
    note(surface, PrintCall{toPixels(surface->CurrentX), toPixels(surface->CurrentY), font, surface->ForeColor,
                            std::string(text)});
  }
  realPrint(surface, text);
}

}  // namespace kelvora::bench
