#include "network/messageFields.h"

#include "base/fault.h"
#include "base/numbers.h"
#include "base/text.h"
#include "protocol/wireFormat.h"

namespace kelvora::netMan {

MessageFields::MessageFields(std::string_view text) : fields_(wire::splitFields(text)) {}

std::string_view MessageFields::at(std::size_t field) const {
  if (field >= fields_.size()) raiseSubscriptOutOfRange();
  return fields_[field];
}

std::string MessageFields::text(std::size_t field) const { return std::string(at(field)); }
std::int16_t MessageFields::int16(std::size_t field) const { return toInt16(readNumber(at(field))); }
std::int32_t MessageFields::int32(std::size_t field) const { return toInt32(readNumber(at(field))); }
float MessageFields::single(std::size_t field) const { return toSingle(readNumber(at(field))); }
double MessageFields::real(std::size_t field) const { return readNumber(at(field)); }

}  // namespace kelvora::netMan
