#pragma once

namespace kelvora {

/// Brings the tables of the page up to date. Called where the browser gets its turn, since a list comes row by row.
void showStaleGrids();

}  // namespace kelvora
