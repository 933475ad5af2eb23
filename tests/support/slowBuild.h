#pragma once

namespace kelvora {

/// True in the browser's build, which is slow in Node. Long tests are shorter there.
#if defined(__EMSCRIPTEN__)
inline constexpr bool isBrowserBuild = true;
#else
inline constexpr bool isBrowserBuild = false;
#endif

}  // namespace kelvora
