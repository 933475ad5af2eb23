#include "tests/platform/windowModel/scriptedDesktop.h"

#include <filesystem>

#include "generated/sourceFolder.h"
#include "platform/pictures/pictureFile.h"
#include "platform/windowing/handlerCall.h"

namespace kelvora {

namespace {

std::map<std::string, PicturePointer> pictures;

void run(const std::function<void()>& event) {
  if (event) runHandler([handler = event] { handler(); });
}

}  // namespace

void ScriptedSocket::close() {
  state_ = sckClosed;
  arrived_.clear();
}

void ScriptedSocket::accept() {
  if (state_ != sckConnecting) return;
  state_ = sckConnected;
  run(owner_.onConnect);
}

void ScriptedSocket::deliver(const std::string& bytes) {
  if (state_ != sckConnected) return;
  arrived_ += bytes;
  run(owner_.onDataArrival);
}

void ScriptedSocket::hangUp() {
  if (state_ != sckConnected) return;
  state_ = sckClosing;
  run(owner_.onClose);
}

void ScriptedSocket::fail() {
  if (state_ == sckConnecting || state_ == sckConnected) state_ = sckError;
}

void ScriptedDesktop::readPictures() {
  const std::string folder = KELVORA_SOURCE_DIR;
  for (const auto& file : std::filesystem::directory_iterator(folder + "/assets")) {
    const std::string path = file.path().generic_string();
    if (path.ends_with(".png")) pictures[path] = loadPictureFile(path);
  }
  pictures[folder + "/kelvora.jpg"] = loadPictureFile(folder + "/kelvora.jpg");
}

std::string ScriptedDesktop::applicationPath() { return KELVORA_SOURCE_DIR; }

PicturePointer ScriptedDesktop::loadPicture(const std::string& path) {
  PicturePointer& picture = pictures[path];
  if (!picture) picture = loadPictureFile(path);
  return picture;
}

std::string ScriptedDesktop::readSetting(const std::string& section, const std::string& key,
                                         const std::string& fallback) {
  const auto stored = settings_.find({section, key});
  return stored == settings_.end() ? fallback : stored->second;
}

void ScriptedDesktop::writeSetting(const std::string& section, const std::string& key, const std::string& value) {
  settings_[{section, key}] = value;
}

std::unique_ptr<SocketPeer> ScriptedDesktop::createSocket(Winsock& socket) {
  auto peer = std::make_unique<ScriptedSocket>(socket);
  sockets_[&socket] = peer.get();
  return peer;
}

}  // namespace kelvora
