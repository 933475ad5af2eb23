#pragma once

#include <functional>
#include <string>

#include "tests/platform/windowModel/walk.h"

namespace kelvora {

/// Takes one line of a walk's report: "seen " and a situation, or "wrong " and a complaint.
using Report = std::function<void(const std::string&)>;

/// Runs the whole game in this process, which the walk ends.
[[noreturn]] void walkHere(const Steps& steps, Report report);

}  // namespace kelvora
