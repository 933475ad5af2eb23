#include <crypt.h>
#include <termios.h>
#include <unistd.h>

#include <csignal>
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

/// The terminal's settings while it shows what is typed.
termios shown{};

void showInput() { ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &shown); }

/// Stops the terminal from showing what is typed. A signal that ends the program shows it again.
void hideInput() {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
    std::signal(signal, [](int number) {
      showInput();
      std::signal(number, SIG_DFL);
      std::raise(number);
    });
  }
  termios hidden = shown;
  hidden.c_lflag &= ~static_cast<tcflag_t>(ECHO);
  ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &hidden);
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
  const bool isTerminal = ::tcgetattr(STDIN_FILENO, &shown) == 0;
  if (isTerminal) {
    std::cerr << prompt;
    hideInput();
  }
  std::string line;
  std::getline(std::cin, line);
  if (isTerminal) {
    showInput();
    std::cerr << "\n";
  }
  return line;
}

}  // namespace kelvora::server
