#pragma once

#include <string>

#include "server/lists/hostList.h"

namespace kelvora::server {

/// The beginning of the page that lists the published games, up to the table's rows.
std::string listTableBegin();
/// A game's row, with links to play it in the browser, and to watch it if it takes spectators. Without an address, they
/// lead to the server that sends the page. Addresses, notes and numbers may be anything.
std::string listTableRow(const HostEntry& host);
/// The text after the last row.
std::string listTableEnd();

}  // namespace kelvora::server
