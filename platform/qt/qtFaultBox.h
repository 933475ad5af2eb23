#pragma once

#include <string>

namespace kelvora {

/// The error box before the end. Does nothing without an application.
void showFaultBox(const std::string& error, const std::string& advice);

}  // namespace kelvora
