#pragma once

namespace kelvora {

/// From here on a reader who has gone away and a file that may not grow are errors of the call that meets them, not
/// ends of the process; and where the toolkit ends the process in the midst of its work, as it does once the X server
/// is gone, nothing is torn down.
void outliveFaults();

}  // namespace kelvora
