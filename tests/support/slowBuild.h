#pragma once

namespace kelvora {

/// True where programs take several times as long, in Node and with sanitizers, and for Windows, where this machine's
/// build has shown the same. Long tests are shorter there.
#if defined(__EMSCRIPTEN__) || defined(KELVORA_SANITIZED) || defined(_WIN32)
inline constexpr bool isSlowBuild = true;
#else
inline constexpr bool isSlowBuild = false;
#endif

}  // namespace kelvora
