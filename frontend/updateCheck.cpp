#include "frontend/updateCheck.h"

#include <string_view>

#include "base/fault.h"
#include "frontend/frmMain.h"
#include "frontend/webAddress.h"
#include "platform/backend.h"

namespace kelvora::updateCheck {

namespace {

bool isStarted = false;

/// The version after the marker, from `position` to the end of its line.
std::string versionAt(const std::string& text, std::size_t position) {
  std::string version;
  char c = 0;
  // Quirk Q-170: the end of the text ends the line one character early. A file without a final line break loses the
  // last digit of its version.
  do {
    c = position < text.size() ? text[position] : '\0';
    // Quirk Q-171: skips anything but digits and points: " 9.8.7b" is "9.8.7".
    if (('0' <= c && c <= '9') || c == '.') version += c;
    ++position;
  } while (c != '\n' && c != '\r' && position + 1 < text.size());
  return version;
}

}  // namespace

void checkForUpdates() {
  if (isStarted) return;
  isStarted = true;
  resumeNext([] {
    Winsock& socket = frmMain->sockUpdates;
    if (socket.State() > sckClosed) socket.Close();
    const WebAddress host = webAddress();
    socket.RemoteHost = host.host;
    socket.RemotePort = host.port;
    socket.Connect();
  });
}

void connected() {
  frmMain->updateBuffer.clear();
  // Quirk Q-279: requests the file by its full address, as from a proxy, and without headers.
  frmMain->sockUpdates.SendData("GET http://" + webAddress().authority() + "/games/kelvora/ver.txt HTTP/1.0\r\n\r\n");
}

/// An answer that is too long is ignored silently, like one without a version.
void dataArrived() {
  FrmMain& window = *frmMain;
  if (appendAnswer(window.updateBuffer, readArrived(window.sockUpdates))) return;
  window.sockUpdates.Close();
  window.updateBuffer.clear();
  window.updateBuffer.shrink_to_fit();
}

void closedByHost() {
  parseUpdateFile(frmMain->updateBuffer);
  resumeNext([] {
    if (frmMain->sockUpdates.State() > sckClosed) frmMain->sockUpdates.Close();
  });
}

void parseUpdateFile(const std::string& text) {
  constexpr std::string_view marker = "tvqver:";
  // Quirk Q-280: searches the answer's headers as well. The first marker counts.
  const std::size_t found = text.find(marker);
  if (found == std::string::npos) return;
  const std::string version = versionAt(text, found + marker.size());
  // Quirk Q-172: only compares for equality. An older version, or one without digits, is announced like a newer one.
  if (version == appVersionText()) return;
  MsgBox("The version " + version + " is available to download\n" + "from " + webAddress().host +
         ".  You can only connect to \n" + "servers running the same version as you.  Please update.");
}

void clear() { isStarted = false; }

}  // namespace kelvora::updateCheck
