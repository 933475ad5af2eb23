#include <crypt.h>
#include <termios.h>
#include <unistd.h>

#include <iostream>
#include <memory>

#include "server/system/passwords.h"

namespace kelvora::server {

namespace {

// Hard to compute without much memory, and Debian's own choice for logins.
constexpr const char* method = "$y$";
constexpr std::size_t maxPassword = 255;  // bytes

std::string hashWith(const std::string& password, const std::string& setting) {
  if (password.size() > maxPassword) return {};
  const auto data = std::make_unique<crypt_data>();  // 32 KiB
  const char* hash = ::crypt_rn(password.c_str(), setting.c_str(), data.get(), sizeof(crypt_data));
  return hash == nullptr ? "" : hash;
}

}  // namespace

bool canHashPasswords() { return true; }

std::string hashOf(const std::string& password) {
  char setting[CRYPT_GENSALT_OUTPUT_SIZE];
  if (::crypt_gensalt_rn(method, 0, nullptr, 0, setting, sizeof setting) == nullptr) return {};
  return hashWith(password, setting);
}

bool isPasswordHash(const std::string& text) {
  // The first test is of the method alone.
  return ::crypt_checksalt(text.c_str()) == CRYPT_SALT_OK && hashWith("", text).size() == text.size();
}

bool matches(const std::string& password, const std::string& hash) {
  const std::string own = hashWith(password, hash);
  if (own.empty() || own.size() != hash.size()) return false;
  // Takes the same time wherever they differ.
  unsigned int difference = 0;
  for (std::size_t i = 0; i < own.size(); ++i) difference |= static_cast<unsigned char>(own[i] ^ hash[i]);
  return difference == 0;
}

std::string readSecret(const std::string& prompt) {
  termios before{};
  const bool isTerminal = ::tcgetattr(STDIN_FILENO, &before) == 0;
  if (isTerminal) {
    std::cerr << prompt;
    termios silent = before;
    silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent);
  }
  std::string line;
  std::getline(std::cin, line);
  if (isTerminal) {
    ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &before);
    std::cerr << "\n";
  }
  return line;
}

}  // namespace kelvora::server
