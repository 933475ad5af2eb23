#pragma once

namespace kelvora {

/// Shows the tables that have changed. Called once per wait, because lists arrive row by row.
void showStaleGrids();

}  // namespace kelvora
