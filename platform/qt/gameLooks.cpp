#include "platform/qt/gameLooks.h"

#include <malloc.h>

#include <QApplication>
#include <QFile>
#include <QIcon>
#include <QIconEngine>
#include <QImage>
#include <QPixmap>
#include <QProxyStyle>
#include <QTimer>
#include <optional>

#include "platform/pictures/decode.h"
#include "platform/qt/qtFonts.h"
#include "platform/qt/widgetPeer.h"
#include "platform/widgets.h"

namespace kelvora {

namespace {

/// The style draws this at the end of a menu without room. Every menu requests it, hardly any shows it, and loading it
/// would load all of the toolkit's picture readers.
class OverflowIcon : public QIconEngine {
 public:
  void paint(QPainter* painter, const QRect& place, QIcon::Mode mode, QIcon::State state) override {
    icon().paint(painter, place, Qt::AlignCenter, mode, state);
  }
  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    return icon().pixmap(size, mode, state);
  }
  QIconEngine* clone() const override { return new OverflowIcon; }

 private:
  static QIcon icon() {
    const auto* style = qobject_cast<const QProxyStyle*>(QApplication::style());
    return style ? style->baseStyle()->standardIcon(QStyle::SP_ToolBarHorizontalExtensionButton) : QIcon();
  }
};

class GameStyle : public QProxyStyle {
 public:
  GameStyle() : QProxyStyle("Fusion") {}

  int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                QStyleHintReturn* answer) const override {
    if (hint == SH_DialogButtonBox_ButtonsHaveIcons) return 0;
    return QProxyStyle::styleHint(hint, option, widget, answer);
  }

  QIcon standardIcon(StandardPixmap picture, const QStyleOption* option, const QWidget* widget) const override {
    if (picture == SP_ToolBarHorizontalExtensionButton) return QIcon(new OverflowIcon);
    return QProxyStyle::standardIcon(picture, option, widget);
  }
};

/// The toolkit's own reader would load a library for each kind of picture.
void addIcon(QIcon& icon, const QString& path) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) return;
  const QByteArray bytes = file.readAll();
  const std::optional<Picture> picture = decodeIcon({bytes.begin(), bytes.end()});
  if (!picture) return;
  icon.addPixmap(QPixmap::fromImage(QImage(reinterpret_cast<const uchar*>(picture->pixels.data()), picture->width,
                                           picture->height, QImage::Format_ARGB32)));
}

}  // namespace

QPalette gamePalette(const Looks& looks) {
  QPalette colours(toQColor(looks.raised), toQColor(looks.ground));
  colours.setColor(QPalette::Mid, toQColor(looks.line));
  colours.setColor(QPalette::Highlight, toQColor(looks.chosen));
  colours.setColor(QPalette::HighlightedText, Qt::white);
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
    colours.setColor(role, toQColor(looks.text));
    colours.setColor(QPalette::Disabled, role, toQColor(looks.quiet));
  }
  return colours;
}

void installGameLooks() {
  QApplication::setStyle(new GameStyle);
  QPalette colours = gamePalette(dialogLooks);
  colours.setColor(QPalette::Base, toQColor(dialogLooks.field));
  colours.setColor(QPalette::ToolTipBase, toQColor(dialogLooks.ground));
  colours.setColor(QPalette::ToolTipText, toQColor(dialogLooks.text));
  QApplication::setPalette(colours);
  QApplication::setFont(toQFont(FontSpec{}));
}

void setProgramIconLater(const std::string& applicationPath) {
  const QString files = QFile::decodeName(applicationPath.c_str()) + "/assets/icon-%1.png";
  QTimer::singleShot(0, qApp, [files] {
    // Quirk Q-308: by its design the window has a blank icon.
    QIcon icon;
    for (const int size : {16, 32, 48, 64, 128}) addIcon(icon, files.arg(size));
    QApplication::setWindowIcon(icon);
    malloc_trim(0);  // returns about a megabyte that the start has used and freed to the system
  });
}

}  // namespace kelvora
