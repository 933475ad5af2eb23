#pragma once

#include <string>

namespace kelvora {

/// Gives all windows the program's icon, in all the sizes that are there, when the events are served for the first
/// time: reading them would hold up the first window. Needs a QApplication.
void setProgramIconLater(const std::string& applicationPath);

}  // namespace kelvora
