#pragma once

#include <span>

namespace kelvora {

class ScriptedDesktop;

/// One action of the user or the server. Does nothing where it isn't possible.
struct Step {
  const char* name;
  void (*perform)(ScriptedDesktop& desktop);
};

/// All steps.
std::span<const Step> steps();

}  // namespace kelvora
