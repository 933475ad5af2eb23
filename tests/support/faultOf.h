#pragma once

#include <string>

#include "base/fault.h"

namespace kelvora {

/// The text of the RuntimeFault that the call throws; empty if it throws none.
template <class Call>
std::string faultOf(Call&& call) {
  try {
    call();
  } catch (const RuntimeFault& fault) {
    return fault.what();
  }
  return "";
}

}  // namespace kelvora
