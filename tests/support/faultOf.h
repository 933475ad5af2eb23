#pragma once

#include <string>

#include "base/fault.h"

namespace kelvora {

/// The text of the fault that the call ends with; empty if it ends without one.
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
