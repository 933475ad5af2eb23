#pragma once

#include <string>

namespace kelvora {

/// Sets the program's icon in all available sizes, when the first events are processed: loading it earlier would delay
/// the first window. Needs a QApplication.
void setProgramIconLater(const std::string& applicationPath);

}  // namespace kelvora
