#pragma once

namespace kelvora {

/// True where long tests are shorter: in Node and with sanitizers, where programs take several times as long, and for
/// Windows, because the release for this machine runs the same tests in full.
#if defined(__EMSCRIPTEN__) || defined(KELVORA_SANITIZED) || defined(_WIN32)
inline constexpr bool hasShortTests = true;
#else
inline constexpr bool hasShortTests = false;
#endif

}  // namespace kelvora
