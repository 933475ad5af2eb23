#include "platform/qt/qtDesktop.h"

#include <QApplication>
#include <QCursor>
#include <QDateTime>
#include <QDialogButtonBox>
#include <QFile>
#include <QGridLayout>
#include <QLabel>
#include <QMessageBox>
#include <QPixmapCache>
#include <cstdlib>

#include "platform/desktop/chosenWebHost.h"
#include "platform/desktop/dataFolder.h"
#include "platform/desktop/mixedAudio.h"
#include "platform/form.h"
#include "platform/pictures/pictureFile.h"
#include "platform/qt/codePage.h"
#include "platform/qt/qtFaultBox.h"
#include "platform/qt/qtForm.h"
#include "platform/qt/widgetPeer.h"
#include "platform/sockets/streamSocket.h"
#include "platform/windowing/boxText.h"
#include "platform/windowing/faultReport.h"
#include "platform/windowing/handlerCall.h"

namespace kelvora {

namespace {

/// KiB, for the style's cached button parts. It never reuses them for a window that is created again, such as the store
/// at every visit, so they would grow to the toolkit's own limit of 10 MiB.
constexpr int styleCacheLimit = 1024;

/// Gives a box without an icon equal margins. By default its text is indented, and its button at the right edge.
void centre(QMessageBox& box) {
  if (auto* text = box.findChild<QLabel*>("qt_msgbox_label")) {
    text->setIndent(0);
    text->setContentsMargins({});
  }
  if (auto* buttons = box.findChild<QDialogButtonBox*>()) buttons->setCenterButtons(true);
  auto* const layout = qobject_cast<QGridLayout*>(box.layout());
  if (layout == nullptr) return;
  layout->setHorizontalSpacing(0);
  for (int i = 0; i < layout->count(); ++i) {
    if (QSpacerItem* const gap = layout->itemAt(i)->spacerItem()) gap->changeSize(0, 0);
  }
  layout->invalidate();
}

}  // namespace

QtDesktop::QtDesktop(std::string commandLine)
    : commandLine_(std::move(commandLine)), settings_(QtSettings::defaultPath()) {
  setFaultBox(showFaultBox);
  sinceStart_.start();
  QPixmapCache::setCacheLimit(styleCacheLimit);
  if (const auto frame = frameFromEnvironment()) pacer_.emplace(*frame);
  wakeUp_.setSingleShot(true);
  wakeUp_.setTimerType(Qt::PreciseTimer);
  QObject::connect(&network_, &QSocketNotifier::activated, &network_, serveSockets);
}

Millis QtDesktop::tickCount() { return firstTick + sinceStart_.elapsed(); }

// Every player asks for the time in every frame, and the system looks up a file for the local time. So it is asked once
// a second, and computed in between.
float QtDesktop::secondsSinceMidnight() {
  constexpr qint64 second = 1000;
  const qint64 now = QDateTime::currentMSecsSinceEpoch();
  if (now / second != askedSecond_) {
    askedSecond_ = now / second;
    secondOfDay_ = QDateTime::fromSecsSinceEpoch(askedSecond_).time().msecsSinceStartOfDay() / second;
  }
  return static_cast<float>(static_cast<double>(secondOfDay_ * second + now % second) / second);
}

void QtDesktop::messageBox(const std::string& text) {
  const HandlerScope scope;
  QMessageBox box(QMessageBox::NoIcon, "Kelvora", QString::fromStdU16String(boxText(text)), QMessageBox::Ok,
                  QApplication::activeWindow());
  box.setTextFormat(Qt::PlainText);
  centre(box);
  box.exec();
}

void QtDesktop::endProcess() { std::_Exit(0); }

void QtDesktop::placePointer(int x, int y) { QCursor::setPos(x, y); }

std::string QtDesktop::applicationPath() { return dataFolder(); }

PicturePointer QtDesktop::loadPicture(const std::string& path) {
  noteForReport("the picture " + toBytes(QFile::decodeName(path.c_str())));
  return loadPictureFile(path);
}

std::string QtDesktop::readSetting(const std::string& section, const std::string& key, const std::string& fallback) {
  noteForReport("the setting \"" + key + "\" in section \"" + section + "\" of " +
                toBytes(QFile::decodeName(QtSettings::defaultPath().c_str())));
  return settings_.read(section, key, fallback);
}

void QtDesktop::writeSetting(const std::string& section, const std::string& key, const std::string& value) {
  settings_.write(section, key, value);
}

std::unique_ptr<SocketPeer> QtDesktop::createSocket(Winsock& socket) { return std::make_unique<StreamSocket>(socket); }

std::unique_ptr<SoundPeer> QtDesktop::createSound() { return std::make_unique<MixedSound>(mixer_); }

std::unique_ptr<MusicPeer> QtDesktop::createMusic() { return std::make_unique<MixedMusic>(mixer_); }

void QtDesktop::realize(Form& form) {
  auto peer = std::make_unique<FormPeer>(form);
  realizeChildren(form, peer->window().client());
  form.peer = std::move(peer);
}

std::string QtDesktop::webHost() { return chosenWebHost(); }

}  // namespace kelvora
