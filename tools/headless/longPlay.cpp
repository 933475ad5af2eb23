#include "tools/headless/longPlay.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <ctime>
#include <stdexcept>
#include <utility>
#include <vector>

#include "core/mainLoop.h"
#include "core/modMain.h"
#include "core/startUp.h"
#include "core/view.h"
#include "frontend/frmConnect.h"
#include "protocol/frames.h"
#include "protocol/wireFormat.h"
#include "store/frmPowerups.h"
#include "tools/headless/heap.h"

namespace kelvora {

namespace {

constexpr Millis frameLength = 10;        // ms
constexpr std::size_t latency = 3;        // frames
constexpr double midnight = 24.0 * 3600;  // seconds
constexpr int second = LongPlay::framesPerSecond;
constexpr int minute = LongPlay::framesPerMinute;
constexpr Millis calmAfter = 4'000;   // after the end of a round nobody has a tail
constexpr Millis calmEvery = 20'000;  // how often the store is closed and the window small
const std::string password = "open sesame";

/// Leaves the game's endless loop while nothing happens.
struct Rest {};

std::int64_t threadTime() {
  timespec time{};
  ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

/// Counts whole frames by id.
void count(std::string_view frames, std::map<int, int>& byId) {
  for (std::size_t at = frames.find(wire::frameStart); at != std::string_view::npos;
       at = frames.find(wire::frameStart, at + 1)) {
    ++byId[static_cast<unsigned char>(frames[at + 1])];
  }
}

/// The heap size of a deque: a table of eight and blocks of 512 bytes, each with the allocator's 8 bytes.
template <class Element>
std::int64_t bytesOf(const std::deque<Element>& elements) {
  constexpr std::size_t inPiece = std::max<std::size_t>(512 / sizeof(Element), 1);
  const std::size_t pieces = elements.size() / inPiece + 1;
  return static_cast<std::int64_t>(8 * std::max<std::size_t>(pieces + 2, 8) + 16 +
                                   pieces * ((inPiece * sizeof(Element) + 8 + 15) / 16 * 16));
}

/// The heap size of a string.
std::size_t bytesOf(const std::string& text) {
  const bool isInside = text.capacity() <= std::string().capacity();
  return isInside ? 0 : (text.capacity() + 1 + 8 + 15) / 16 * 16;
}

std::int64_t bytesOf(const clsPlayer& player) {
  std::size_t names = 0;
  for (const clsTail& vertex : player.tails) names += bytesOf(vertex.tailID());
  return bytesOf(player.tails) + bytesOf(player.positionQueue) + static_cast<std::int64_t>(names);
}

/// The allocator's cache of freed small blocks, seven of each size, counts as used. A full cache always has the same
/// size.
void fillAllocatorStock() {
  constexpr std::size_t smallest = 24, largest = 1032, step = 16;
  std::vector<void*> pieces;
  pieces.reserve(7 * (largest - smallest + step) / step);
  for (std::size_t size = smallest; size <= largest; size += step) {
    for (int i = 0; i < 7; ++i) pieces.push_back(std::malloc(size));
  }
  for (void* piece : pieces) std::free(piece);
}

}  // namespace

LongPlay::LongPlay()
    : arena_(*this, appVersionText(), password, 1,
             {.intermissionMs = calmAfter + calmEvery + 2'000, .incomePerMinute = 60}),
      keeper_(arena_, {.count = 5, .skill = server::SkillLevel::mixed}, password, appVersionText(), 2) {
  machine.seconds = midnight / 2;
  machine.onDoEvents = [this] { onPass(); };
  machine.onMessageBox = [this](const std::string&) { ++boxes; };
}

void LongPlay::play(int frames) {
  end_ = frame_ + frames;
  passBegan_ = threadTime();
  try {
    if (frame_ == 0) modMain::startGame();
    modMain::mainLoop();
  } catch (const Rest&) {
    isInPass_ = false;
  }
}

void LongPlay::playToCalm() {
  for (const int before = rounds_; rounds_ == before;) play(1);
  play(calmAfter / frameLength);
  while (!every(calmEvery / frameLength)) play(1);
}

// Between two passes of the client: ends one pass, runs the outside world, and starts the next one.
void LongPlay::onPass() {
  if (std::exchange(isInPass_, true)) return;  // a dialog processes events
  clientTime_ += threadTime() - passBegan_;
  ++passes_;
  if (frame_ == end_) throw Rest{};
  playFrame();
  isInPass_ = false;
  passBegan_ = threadTime();
}

void LongPlay::playFrame() {
  ++frame_;
  machine.advance(frameLength);
  if (machine.seconds >= midnight) machine.seconds -= midnight;
  act();
  relay();
  if (every(server::Sight::step / frameLength)) tickArena();
  inject();
  // The machine's recordings are not the program's memory.
  machine.journal.clear();
  machine.soundCommands.clear();
  machine.messageBoxes.clear();
  machine.tracks.clear();
  machine.pointerPlacements.clear();
  server().connects.clear();
}

// The player's actions.

void LongPlay::act() {
  if (every(30 * minute, 1)) logIn("a wrong one");
  if (every(30 * minute, second)) logIn(password);
  if (every(30 * minute, 0)) frmMain->mnuFileDisconnect.Click();
  if (!modMain::world.localPlayer.isConnected || frmMain->sock.State() != sckConnected) return;
  steer();
  if (!modMain::world.localPlayer.alive && every(4 * second)) frmMain->btnSpawn.Click();
  if (modMain::world.localPlayer.alive && modMain::world.localPlayer.breaksOn && every(second)) {
    frmMain->canvas.MouseDown(2, 0, 0, 0);
  }
  trade();
  if (every(7 * second)) typeLine("still here");
  if (every(minute, 5 * second)) frmMain->lblPrivChat.MouseUp(1, 0, 0, 0);
  if (every(minute, 55 * second)) typeLine("~quarktype:0");
  if (every(2 * minute, minute + second)) frmMain->clientResized(20'000, 12'000);
  if (every(2 * minute, minute + 10 * second)) frmMain->clientResized(13'410, 10'050);
  if (every(minute, 30 * second)) frmMain->mnuQuarkStars.Click();
  if (every(minute, 40 * second)) frmMain->mnuQuarkQuarks.Click();
}

// Circles of changing size, so that loops close around others now and then.
void LongPlay::steer() {
  const float time = static_cast<float>(frame_ % (100 * minute));
  const float angle = time * 0.012F + std::sin(time * 0.0007F);
  const Vector centre = modMain::getCanvasCentre();
  frmMain->canvas.MouseMove(0, 0, centre.x * (1 + 0.9F * std::cos(angle)), centre.y * (1 + 0.9F * std::sin(angle)));
}

void LongPlay::trade() {
  const int item = frame_ / (20 * second) % powerupSlotCount;
  if (every(20 * second, 11 * second)) frmMain->btnShop.Click();
  if (frmPowerups.isVisible()) {
    if (every(20 * second, 12 * second)) frmPowerups->cmdBuy[item].Click();
    if (every(40 * second, 33 * second)) frmPowerups->cmdSell[item].Click();
    if (every(20 * second, 14 * second)) frmPowerups->cmdDone.Click();
  }
  if (every(20 * second, 16 * second)) frmMain->txtChat.KeyDown(keyF1 + item, 0);
}

void LongPlay::typeLine(const std::string& line) {
  frmMain->txtChat.Text = line;
  frmMain->txtChat.KeyDown(keyEnter, 0);
  frmMain->txtChat.KeyPress(keyEnter);
}

void LongPlay::logIn(const std::string& itsPassword) {
  frmConnect->txtPlayerName.Text = "Ann";
  frmConnect->txtServerPassword.Text = itsPassword;
  frmConnect->cmdConnect.Click();
  server().acceptConnection();
  ourClient_ = ++lastClient_;
  reader_.emplace();
  arena_.connected(ourClient_, now());
}

// The connection between client and arena.

void LongPlay::relay() {
  const std::string bytes = std::exchange(server().sent, {});
  server().sends.clear();
  if (ourClient_ == 0) return;
  if (server().state() == sckClosed) return follow();
  count(bytes, sent);
  const bool isSound = reader_->read(bytes, [this](std::string_view text) {
    // The arena treats a velocity report like any unknown message.
    arena_.received(ourClient_, text, now());
  });
  if (!isSound) throw std::logic_error("the client sends what is no frame");
  underWay_.push_back(std::exchange(toUs_, {}));
  if (underWay_.size() <= latency) return;
  const std::string arrived = std::move(underWay_.front());
  underWay_.pop_front();
  if (arrived.empty()) return;
  count(arrived, received);
  server().deliver(arrived);
}

/// The client has closed its socket.
void LongPlay::follow() {
  arena_.disconnected(std::exchange(ourClient_, 0));
  toUs_.clear();
  underWay_.clear();
}

void LongPlay::tickArena() {
  arena_.tick(now());
  keeper_.tick(now());
  visit();
}

// Another person, who stays for half of every four minutes. A bot makes room for them.
void LongPlay::visit() {
  const auto say = [this](const std::string& frame) { arena_.received(visitorClient_, wire::textOf(frame), now()); };
  if (every(4 * minute, minute)) {
    visitorClient_ = ++lastClient_;
    visitor_.emplace("Visitor", server::SkillLevel::normal, visitorClient_);
    sight_.clear();
    arena_.connected(visitorClient_, now());
    say(visitor_->login(password, redPlayer, appVersionText()));
  }
  if (!visitor_) return;
  sight_.add(arena_.players(now()), now());
  if (const server::PlayerView* self = sight_.player(visitorClient_)) visitor_->tick(sight_, *self, now(), say);
  if (every(4 * minute, 3 * minute)) {
    visitor_.reset();
    arena_.disconnected(visitorClient_);
  }
}

// Messages that a server may send and the arena doesn't.
void LongPlay::inject() {
  if (modMain::world.opponentCount == 0) return;
  const std::int16_t node = modMain::world.opponents.back().serverNode;
  if (every(10 * second, 1)) toUs_ += wire::toClient<wire::msgVelocity>(node, 100.0F, -50.0F);
  if (every(2 * minute, 90 * second)) toUs_ += wire::toClient<wire::msgSpawnDenied>();
  if (every(minute, 4)) toUs_ += wire::toClient<wire::msgPowerupOff>(node, 0);
  if (every(10 * second, 2)) toUs_ += wire::toClient<wire::msgAliveState>(node, 1);
  if (every(10 * second, 3)) toUs_ += wire::toClient<wire::msgLatencyReport>(30);
  const std::string particle = "n" + std::to_string(frame_ / (4 * minute));
  if (every(4 * minute, 2 * minute)) {
    toUs_ += wire::toClient<wire::msgParticleAdd>(particle, 1, 50'000.0F, 50'000.0F, 10.0F, 10.0F);
  }
  if (frame_ % (4 * minute) > 2 * minute && every(second)) {
    const auto place = static_cast<float>(50'000 + frame_ % (4 * minute));
    toUs_ += wire::toClient<wire::msgParticleMove>(particle, place, place);
  }
  if (every(4 * minute, 4 * minute - 1)) toUs_ += wire::toClient<wire::msgParticleRemove>(particle);
}

void LongPlay::send(server::ClientId client, const std::string& frame) {
  if (server::isBot(client)) return keeper_.hear(client, frame, now());
  if (client != ourClient_) {
    if (visitor_ && client == visitorClient_) visitor_->hear(frame, now());
    return;
  }
  if (const auto message = wire::splitId(wire::textOf(frame))) {
    if (message->id == wire::msgTailCapture) ++captures_;
    if (message->id == wire::msgRoundOver) ++rounds_;
  }
  toUs_ += frame;
}

void LongPlay::hangUp(server::ClientId client) {
  // A refused client hangs up by itself.
  if (server::isBot(client)) keeper_.hangUp(client);
}

LongPlay::Figures LongPlay::figures() {
  Figures figures;
  fillAllocatorStock();
  figures.heapBytes = usedHeapBytes();
  figures.keptBytes =
      bytesOf(modMain::world.localPlayer) + bytesOf(modMain::world.opponents) + bytesOf(modMain::world.netParticles);
  for (const clsPlayer& opponent : modMain::world.opponents) figures.keptBytes += bytesOf(opponent);
  for (const clsParticle& particle : modMain::world.netParticles) figures.keptBytes += bytesOf(particle.positionQueue);
  figures.slots = modMain::world.opponents.size();
  figures.captures = captures_;
  figures.rounds = rounds_;
  figures.clientMicroseconds = static_cast<double>(std::exchange(clientTime_, 0)) / 1000 / std::exchange(passes_, 0);
  return figures;
}

}  // namespace kelvora
