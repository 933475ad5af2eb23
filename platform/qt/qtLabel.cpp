#include <QFontMetrics>

#include "platform/qt/codePage.h"
#include "platform/qt/qtFonts.h"
#include "platform/qt/widgetPeer.h"
#include "platform/widgets.h"
#include "platform/windowing/shownLabel.h"

namespace kelvora {

namespace {

class LabelWidget : public ControlWidget {
 public:
  LabelWidget(Label& label, QWidget* parent) : ControlWidget(label, parent), label_(label) {}

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    const LabelDesign& design = label_.design;
    if (!design.transparent) {
      painter.fillRect(rect(), design.systemColours ? palette().color(QPalette::Window) : toQColor(label_.BackColor));
    }
    QRect inside = rect();
    if (label_.BorderStyle != 0) {
      drawBorder(painter, rect(), design.systemColours ? palette().color(QPalette::Mid) : QColor(Qt::gray));
      inside.adjust(1, 1, -1, -1);
    }
    painter.setPen(design.systemColours ? palette().color(QPalette::WindowText) : toQColor(label_.ForeColor));
    const QString text = toQString(label_.Caption.get());
    painter.setFont(toQFont(design.font, label_.FontSize));
    if (!fitsInLines(painter.fontMetrics(), text, inside.size())) {
      painter.setFont(fittingFont(painter.font(), text, inside.size()));
    }
    const QFontMetrics metrics = painter.fontMetrics();
    const int aligned = horizontal(metrics, text, inside.size());
    if (inside.height() < 2 * metrics.lineSpacing()) {
      // Centres a single line, with any odd pixel above it, as in the text boxes next to it.
      inside.setTop(inside.top() + (inside.height() - metrics.height() + 1) / 2);
    }
    // Headings and paragraphs start at the top.
    painter.drawText(inside, Qt::AlignTop | aligned, text);
  }

 private:
  static bool fitsInLines(const QFontMetrics& metrics, const QString& text, QSize room) {
    if (room.height() < 2 * metrics.lineSpacing()) return false;
    const QRect lines = metrics.boundingRect(QRect(QPoint(), room), Qt::TextExpandTabs | Qt::TextWordWrap, text);
    return lines.width() <= room.width() && lines.height() <= room.height();
  }

  /// Wraps a text that is too wide for one line if there is room for several.
  int horizontal(const QFontMetrics& metrics, const QString& text, QSize room) const {
    const bool wrap = metrics.horizontalAdvance(text) > room.width() && room.height() >= 2 * metrics.lineSpacing();
    const int flags = Qt::TextExpandTabs | (wrap ? Qt::TextWordWrap : 0);
    switch (label_.design.alignment) {
      case Alignment::Right:
        return flags | Qt::AlignRight;
      case Alignment::Centre:
        return flags | Qt::AlignHCenter;
      default:
        return flags | Qt::AlignLeft;
    }
  }

  Label& label_;
};

class LabelPeer : public WidgetPeer {
 public:
  LabelPeer(Label& label, QWidget* parent) : WidgetPeer(label, new LabelWidget(label, parent)), label_(label) {
    followCaption();
  }

 protected:
  void show(PropertyId id) override {
    if (!shown_.isNew(id)) return;
    if (id == PropertyId::Caption || id == PropertyId::FontSize) followCaption();
    widget()->update();
  }

 private:
  void followCaption() {
    if (fitWidth(label_)) widget()->setGeometry(pixelPlace(label_));
  }

  Label& label_;
  ShownLabel shown_{label_};
};

}  // namespace

std::unique_ptr<WidgetPeer> makePeer(Label& label, QWidget* parent) {
  return std::make_unique<LabelPeer>(label, parent);
}

}  // namespace kelvora
