#include "protocol/wireFormat.h"

namespace kelvora::wire {

std::string buildFrame(std::int16_t id, const std::vector<std::string>& fields) {
  std::string frame{frameStart, static_cast<char>(id)};
  // Quirk Q-060: the fields go as they stand. A name or password that holds a delimiter breaks its own frame.
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (i > 0) frame += fieldSeparator;
    frame += fields[i];
  }
  frame += frameEnd;
  return frame;
}

std::vector<std::string_view> splitFields(std::string_view text) {
  std::vector<std::string_view> fields;
  std::size_t start = 0;
  for (std::size_t end; (end = text.find(fieldSeparator, start)) != std::string_view::npos; start = end + 1) {
    fields.push_back(text.substr(start, end - start));
  }
  fields.push_back(text.substr(start));
  return fields;
}

}  // namespace kelvora::wire
