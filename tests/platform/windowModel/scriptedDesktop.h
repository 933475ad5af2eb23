#pragma once

#include <map>
#include <memory>
#include <string>
#include <utility>

#include "platform/winsock.h"
#if defined(_WIN32)
#include "platform/win32/win32Backend.h"
#else
#include "platform/qt/qtDesktop.h"
#endif

namespace kelvora {

/// An in-memory socket. The game uses the SocketPeer interface. The other members act as the server and run the game's
/// handlers at once.
class ScriptedSocket : public SocketPeer {
 public:
  explicit ScriptedSocket(Winsock& owner) : owner_(owner) {}

  SocketState state() const override { return state_; }
  void connect(const std::string&, int) override { state_ = sckConnecting; }
  void close() override;
  void send(std::string_view) override {}
  std::string take() override { return std::exchange(arrived_, {}); }

  // Each does nothing in a state in which it isn't possible.
  void accept();
  void deliver(const std::string& bytes);
  void hangUp();
  /// The server refuses, or the connection breaks: state Error and no event.
  void fail();

 private:
  Winsock& owner_;
  SocketState state_ = sckClosed;
  std::string arrived_;
};

#if defined(_WIN32)
using DesktopBackend = Win32Backend;
#else
using DesktopBackend = QtDesktop;
#endif

/// The desktop with real windows, and with sockets, settings and pictures in memory.
class ScriptedDesktop : public DesktopBackend {
 public:
  ScriptedDesktop() : DesktopBackend("nosound nomusic") {}

  /// Reads every picture of the game once, for all desktops of this process and its children.
  static void readPictures();

  /// The server's side of one of the game's sockets.
  ScriptedSocket& farEnd(const Winsock& socket) { return *sockets_.at(&socket); }

  std::string applicationPath() override;
  PicturePointer loadPicture(const std::string& path) override;
  std::string readSetting(const std::string& section, const std::string& key, const std::string& fallback) override;
  void writeSetting(const std::string& section, const std::string& key, const std::string& value) override;
  std::unique_ptr<SocketPeer> createSocket(Winsock& socket) override;
  std::string webHost() override { return "web.invalid"; }

 private:
  std::map<const Winsock*, ScriptedSocket*> sockets_;
  std::map<std::pair<std::string, std::string>, std::string> settings_ = {{{"last login", "player name"}, "Ann"}};
};

}  // namespace kelvora
