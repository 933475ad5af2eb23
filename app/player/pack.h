#pragma once

#include <cstddef>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "platform/property.h"
#include "raster/font.h"
#include "raster/picture.h"

namespace kelvora::player {

/// Packs values for a copy of this process.
class Pack {
 public:
  template <class T>
  void field(const T& value) {
    static_assert(std::is_trivially_copyable_v<T> && !std::is_pointer_v<T>);
    bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
  }
  void field(const std::string& text) {
    field(text.size());
    bytes += text;
  }
  void field(const FontSpec& font) {
    field(font.family);
    field(font.size);
    field(font.bold);
  }
  void field(const PicturePointer& picture) {
    field(picture != nullptr);
    if (!picture) return;
    field(picture->width);
    field(picture->height);
    bytes.append(reinterpret_cast<const char*>(picture->pixels.data()), picture->pixels.size() * sizeof(Pixel));
  }
  template <class T>
  void field(const Property<T>& property) {
    field(property.get());
  }

  std::string bytes;
};

/// Reads what Pack has packed, in the same order.
class Unpack {
 public:
  explicit Unpack(std::string_view bytes) : bytes_(bytes) {}

  template <class T>
  void field(T& value) {
    static_assert(std::is_trivially_copyable_v<T> && !std::is_pointer_v<T>);
    std::memcpy(&value, take(sizeof value).data(), sizeof value);
  }
  void field(std::string& text) { text = take(value<std::size_t>()); }
  void field(FontSpec& font) {
    field(font.family);
    field(font.size);
    field(font.bold);
  }
  void field(PicturePointer& picture) {
    picture.reset();
    if (!value<bool>()) return;
    Picture read{value<int>(), 0, {}};
    field(read.height);
    read.pixels.resize(static_cast<std::size_t>(read.width) * static_cast<std::size_t>(read.height));
    const std::string_view pixels = take(read.pixels.size() * sizeof(Pixel));
    if (!pixels.empty()) std::memcpy(read.pixels.data(), pixels.data(), pixels.size());
    picture = std::make_shared<const Picture>(std::move(read));
  }
  /// Assigns the property only if it changes, because a control may be costly to repaint.
  template <class T>
  void field(Property<T>& property) {
    T read{};
    field(read);
    if (!(read == property.get())) property = read;
  }

  template <class T>
  T value() {
    T read{};
    field(read);
    return read;
  }
  bool isAtEnd() const { return bytes_.empty(); }

 private:
  std::string_view take(std::size_t size) {
    if (size > bytes_.size()) throw std::logic_error("a packed value is missing");
    const std::string_view taken = bytes_.substr(0, size);
    bytes_.remove_prefix(size);
    return taken;
  }

  std::string_view bytes_;
};

}  // namespace kelvora::player
