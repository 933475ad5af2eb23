#include "server/moderation/penaltyFile.h"

#include <memory>
#include <stdexcept>
#include <utility>

#include "server/system/files.h"

namespace kelvora::server {

PenaltyFile::PenaltyFile(ModerationHost& host, std::string path) : host_(host), path_(std::move(path)) {
  if (const std::string error = read(); !error.empty()) throw std::runtime_error(error);
  requireFolderOf(path_);
}

PenaltyFile::~PenaltyFile() {
  if (saving_.empty() && unsaved_.empty()) return;
  const std::string error = replaceFile(path_, penalties_.text());
  if (!error.empty()) host_.log("cannot write " + path_ + ": " + error);
}

void PenaltyFile::reread() {
  if (path_.empty()) return;
  const std::string error = read();
  host_.log(error.empty() ? "read " + path_ + ": " + std::to_string(penalties_.all().size()) + " bans and mutes"
                          : error);
}

std::string PenaltyFile::read() {
  if (path_.empty()) return {};
  const FileText file = readFile(path_, maxSize);
  if (!file.error.empty()) return "cannot read " + path_ + ": " + file.error;
  for (const std::string& complaint : penalties_.read(file.text.value_or(""), host_.wallClock())) {
    host_.log(path_ + ":" + complaint);
  }
  restoreUnsaved();
  return {};
}

void PenaltyFile::restoreUnsaved() {
  // The write in progress may be replacing the file that has just been read.
  unsaved_.insert(saving_.begin(), saving_.end());
  for (const auto& [place, penalty] : unsaved_) {
    penalties_.lift(place.first, place.second);
    if (!penalty) continue;
    const Outcome outcome = penalties_.add(*penalty, host_.wallClock());
    if (outcome.isRefused())
      host_.log("lost the " + std::string(wordFor(place.first)) + " of " + place.second + ": " + outcome.reason());
  }
}

void PenaltyFile::tick() {
  if (!unsaved_.empty() && host_.wallClock() >= retryAt_) save();
}

const Penalty* PenaltyFile::find(PenaltyKind kind, std::string_view network) const {
  return penalties_.find(kind, network, host_.wallClock());
}

Outcome PenaltyFile::add(Penalty penalty) {
  Outcome outcome = penalties_.add(penalty, host_.wallClock());
  if (outcome.isRefused()) return outcome;
  unsaved_[{penalty.kind, penalty.network}] = std::move(penalty);
  save();
  return outcome;
}

std::vector<Penalty> PenaltyFile::remove(PenaltyKind kind, std::string_view networkOrName) {
  std::vector<Penalty> removed = penalties_.remove(kind, networkOrName);
  for (const Penalty& penalty : removed) unsaved_[{kind, penalty.network}] = std::nullopt;
  if (!removed.empty()) save();
  return removed;
}

void PenaltyFile::save() {
  if (path_.empty()) return unsaved_.clear();
  if (!saving_.empty()) return;
  const auto error = std::make_shared<std::string>();
  const bool isUnderWay =
      host_.runAside([path = path_, text = penalties_.text(), error] { *error = replaceFile(path, text); },
                     [this, error] { concludeSaving(*error); });
  if (isUnderWay) saving_ = std::exchange(unsaved_, {});
}

void PenaltyFile::concludeSaving(const std::string& error) {
  if (error.empty()) {
    saving_.clear();
    if (!unsaved_.empty()) save();
    return;
  }
  host_.log("cannot write " + path_ + ": " + error);
  retryAt_ = host_.wallClock() + retryAfter;
  // Keeps the newer changes.
  unsaved_.merge(std::exchange(saving_, {}));
}

}  // namespace kelvora::server
