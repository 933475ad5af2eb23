#pragma once

namespace kelvora {

/// Ignores SIGPIPE and SIGXFSZ, so that the failing call returns an error. Also skips all destructors when the toolkit
/// ends the process, as it does after the X server dies.
void ignoreFatalSignals();

}  // namespace kelvora
