#pragma once

#include <string>

namespace kelvora::server {

// Hashing takes tens of milliseconds and 16 MiB on purpose. Call it on a thread that may wait.

/// False where the system has no suitable hash, as on Windows. Then nothing matches.
bool canHashPasswords();
/// A hash with a salt of its own. Empty if the system can't make one.
std::string hashOf(const std::string& password);
/// True for a hash of `hashOf` or of another program that the system takes for strong.
bool isPasswordHash(const std::string& text);
bool matches(const std::string& password, const std::string& hash);

/// Reads a line from standard input, which a terminal doesn't show. Prints the prompt on a terminal only.
std::string readSecret(const std::string& prompt);

}  // namespace kelvora::server
