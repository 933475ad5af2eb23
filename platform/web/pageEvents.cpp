#include "platform/web/pageEvents.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <unordered_map>

#include "platform/web/page.h"

namespace kelvora {

namespace {

std::unordered_map<int, PageObject*>& objects() {
  static std::unordered_map<int, PageObject*> known;
  return known;
}

int lastId = 0;

}  // namespace

PageObject::PageObject() : id_(++lastId) { objects()[id_] = this; }

PageObject::~PageObject() { objects().erase(id_); }

bool servePageEvent() {
  std::array<std::int32_t, 7> told{};
  PageEvent event;
  event.kind = static_cast<PageEventKind>(page_nextEvent(told.data()));
  if (event.kind == PageEventKind::None) return false;
  event.bytes.resize(static_cast<std::size_t>(told[1]));
  page_takeEvent(event.bytes.data());
  event.first = told[2];
  event.shift = told[3];
  event.x = told[4];
  event.y = told[5];
  event.isInside = told[6] != 0;
  const auto target = objects().find(told[0]);
  if (target != objects().end()) target->second->take(event);
  return true;
}

}  // namespace kelvora
