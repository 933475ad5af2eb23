#include "platform/qt/coveredWindows.h"

#include <xcb/xcb.h>

#include <QAbstractNativeEventFilter>
#include <QGuiApplication>
#include <QSet>
#include <cstdint>
#include <cstdlib>
#include <memory>

namespace kelvora {

namespace {

QSet<WId> coveredWindows;

// Shows what has been drawn meanwhile. The update of a window leaves out children that paint all of their area.
void refresh(WId id) {
  const QWidget* const window = QWidget::find(id);
  if (!window) return;
  for (QWidget* const part : window->findChildren<QWidget*>()) part->update();
}

class VisibilityFilter : public QAbstractNativeEventFilter {
 public:
  bool nativeEventFilter(const QByteArray& type, void* message, qintptr*) override {
    const auto* const event = static_cast<xcb_generic_event_t*>(message);
    constexpr int sentByProgram = 0x80;
    if (type != "xcb_generic_event_t" || (event->response_type & ~sentByProgram) != XCB_VISIBILITY_NOTIFY) return false;
    const auto& notice = *static_cast<xcb_visibility_notify_event_t*>(message);
    if (notice.state == XCB_VISIBILITY_FULLY_OBSCURED) {
      coveredWindows.insert(notice.window);
    } else if (coveredWindows.remove(notice.window)) {
      refresh(notice.window);
    }
    return false;
  }
};

}  // namespace

void watchCover(const QWidget& window) {
  const auto* const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  xcb_connection_t* const connection = x11 ? x11->connection() : nullptr;
  if (!connection) return;
  static VisibilityFilter filter;
  qGuiApp->installNativeEventFilter(&filter);
  const auto id = static_cast<xcb_window_t>(window.internalWinId());
  // The toolkit's own choice of events stays.
  const std::unique_ptr<xcb_get_window_attributes_reply_t, decltype(&std::free)> attributes(
      xcb_get_window_attributes_reply(connection, xcb_get_window_attributes(connection, id), nullptr), &std::free);
  if (!attributes) return;
  const std::uint32_t events = attributes->your_event_mask | XCB_EVENT_MASK_VISIBILITY_CHANGE;
  xcb_change_window_attributes(connection, id, XCB_CW_EVENT_MASK, &events);
}

bool isCovered(const QWidget& window) { return coveredWindows.contains(window.internalWinId()); }

}  // namespace kelvora
