#pragma once

#include <QWidget>

namespace kelvora {

/// Begins to notice when other windows cover this shown window entirely. Only X11 without a compositor tells that;
/// elsewhere a window never counts as covered. The window is repainted when it comes into sight again.
void watchCover(const QWidget& window);

/// True if no pixel of the watched window is in sight because of other windows above it.
bool isCovered(const QWidget& window);

}  // namespace kelvora
