#include "platform/control.h"

#include "platform/seamWatch.h"

namespace kelvora {

namespace {
SeamWatch* seamWatch = nullptr;
}

void installSeamWatch(SeamWatch* watch) { seamWatch = watch; }

PeerCall::PeerCall() {
  if (seamWatch) seamWatch->peerCallBegins();
}

PeerCall::~PeerCall() {
  if (seamWatch) seamWatch->peerCallEnds();
}

void notifyPeer(Control& owner, PropertyId id) {
  const PeerCall call;
  if (owner.peer) owner.peer->changed(id);
}

void noteAdoption(Control& owner, PropertyId id) {
  if (seamWatch) seamWatch->adopted(owner, id);
}

Control::Control(Control* container, Place place)
    : Left(*this, PropertyId::Left, place.left),
      Top(*this, PropertyId::Top, place.top),
      Width(*this, PropertyId::Width, place.width),
      Height(*this, PropertyId::Height, place.height),
      Visible(*this, PropertyId::Visible, true),
      ToolTipText(*this, PropertyId::ToolTipText),
      container_(container) {
  if (container_) container_->children_.push_back(this);
}

Control::~Control() {
  if (container_) std::erase(container_->children_, this);
  for (Control* child : children_) child->container_ = nullptr;
}

Control& Control::root() {
  Control* control = this;
  while (control->container_) control = control->container_;
  return *control;
}

void Control::SetFocus() {
  const PeerCall call;
  if (peer) peer->takeFocus();
}

}  // namespace kelvora
