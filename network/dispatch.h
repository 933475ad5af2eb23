#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kelvora::netMan {

/// The fields of one message, read by their numbers from 0. A field that is not there, and a number beyond the range
/// that is asked for, is RuntimeFault. The text that they are cut from must outlive them.
class MessageFields {
 public:
  MessageFields() = default;
  explicit MessageFields(std::string_view text);

  std::string text(std::size_t field) const;
  std::int16_t int16(std::size_t field) const;
  std::int32_t int32(std::size_t field) const;
  float single(std::size_t field) const;
  double real(std::size_t field) const;

 private:
  std::string_view at(std::size_t field) const;

  std::vector<std::string_view> fields_;
};

/// What is done with a message.
struct Route {
  std::int16_t id;
  void (*handle)(const MessageFields& fields);
};

/// Every message that the client understands.
std::span<const Route> routes();
/// Null for an id that the client does not know.
const Route* findRoute(std::int16_t id);

}  // namespace kelvora::netMan
