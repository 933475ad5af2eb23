#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "protocol/messages.h"

namespace kelvora::netMan {

/// The fields of one message, by number from 0. Numbers are read leniently: see docs/protocol.md. RuntimeFault for a
/// missing field, or a number out of the requested range. The text passed in must outlive this.
class MessageFields {
 public:
  MessageFields() = default;
  explicit MessageFields(std::string_view text);

  std::string text(std::size_t field) const;
  std::int16_t int16(std::size_t field) const;
  std::int32_t int32(std::size_t field) const;
  float single(std::size_t field) const;
  double real(std::size_t field) const;

  /// The field as a value of this type.
  template <wire::FieldType type>
  auto read(std::size_t field) const {
    if constexpr (type == wire::FieldType::text) return text(field);
    if constexpr (type == wire::FieldType::int16) return int16(field);
    if constexpr (type == wire::FieldType::int32) return int32(field);
    if constexpr (type == wire::FieldType::single) return single(field);
    if constexpr (type == wire::FieldType::real) return real(field);
  }

 private:
  std::string_view at(std::size_t field) const;

  std::vector<std::string_view> fields_;
};

}  // namespace kelvora::netMan
