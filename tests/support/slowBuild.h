#pragma once

namespace kelvora {

/// True where programs take several times as long: in Node and with sanitizers. Long tests are shorter there.
#if defined(__EMSCRIPTEN__) || defined(KELVORA_SANITIZED)
inline constexpr bool isSlowBuild = true;
#else
inline constexpr bool isSlowBuild = false;
#endif

}  // namespace kelvora
