#pragma once

namespace kelvora::modMain {

/// The average paint time in units of 10 ms, at least 1. It multiplies every speed per frame.
double getTimeScale();

}  // namespace kelvora::modMain
