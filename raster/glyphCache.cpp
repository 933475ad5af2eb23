#include "raster/glyphCache.h"

#include <algorithm>
#include <utility>

namespace kelvora {

namespace {

// A frame has about 30 lines, most of which stay the same for many frames.
constexpr std::size_t maxCachedLines = 64;
constexpr std::size_t maxCachedLength = 256;

}  // namespace

FontGlyphs::FontGlyphs(GlyphSource& source, FontSpec font)
    : source_(source), font_(std::move(font)), lineHeight_(source.lineHeight(font_)) {}

const Glyph& FontGlyphs::glyph(unsigned char character) {
  std::optional<Glyph>& slot = glyphs_.at(character);
  if (!slot) {
    Glyph glyph = source_.glyph(font_, character);
    glyph.width = std::max(0, glyph.width);
    glyph.height = std::max(0, glyph.height);
    glyph.coverage.resize(static_cast<std::size_t>(glyph.width) * static_cast<std::size_t>(glyph.height));
    slot = std::move(glyph);
  }
  return *slot;
}

const TextLine* FontGlyphs::line(std::string_view text) {
  if (text.size() > maxCachedLength) return nullptr;
  ++uses_;
  if (const auto known = lines_.find(text); known != lines_.end()) {
    known->second.lastUse = uses_;
    return &known->second.line;
  }
  if (lines_.size() == maxCachedLines) {
    lines_.erase(std::min_element(lines_.begin(), lines_.end(), [](const auto& one, const auto& other) {
      return one.second.lastUse < other.second.lastUse;
    }));
  }
  return &lines_.emplace(text, KnownLine{TextLine(*this, text), uses_}).first->second.line;
}

void GlyphCache::setSource(GlyphSource* source) {
  fonts_.clear();
  source_ = source;
}

FontGlyphs* GlyphCache::find(const FontSpec& font) {
  if (source_ == nullptr) return nullptr;
  const auto known =
      std::find_if(fonts_.begin(), fonts_.end(), [&](const auto& entry) { return entry->font() == font; });
  if (known != fonts_.end()) return known->get();
  return fonts_.emplace_back(std::make_unique<FontGlyphs>(*source_, font)).get();
}

GlyphCache& glyphCache() {
  static GlyphCache cache;
  return cache;
}

}  // namespace kelvora
