#include "server/moderation/penaltyFile.h"

#include <memory>
#include <stdexcept>
#include <utility>

#include "server/system/files.h"

namespace kelvora::server {

PenaltyFile::PenaltyFile(ModerationHost& host, std::string path) : host_(host), path_(std::move(path)) {
  if (const std::string error = read(); !error.empty()) throw std::runtime_error(error);
}

PenaltyFile::~PenaltyFile() {
  if (isStale_) replaceFile(path_, penalties_.text());
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
  return {};
}

void PenaltyFile::tick() {
  if (isStale_ && !isSaving_ && host_.wallClock() >= retryAt_) save();
}

const Penalty* PenaltyFile::find(PenaltyKind kind, std::string_view network) const {
  return penalties_.find(kind, network, host_.wallClock());
}

Outcome PenaltyFile::add(Penalty penalty) {
  Outcome outcome = penalties_.add(std::move(penalty), host_.wallClock());
  if (!outcome.isRefused()) save();
  return outcome;
}

std::vector<Penalty> PenaltyFile::remove(PenaltyKind kind, std::string_view networkOrName) {
  std::vector<Penalty> removed = penalties_.remove(kind, networkOrName);
  if (!removed.empty()) save();
  return removed;
}

void PenaltyFile::save() {
  if (path_.empty()) return;
  isStale_ = true;
  if (isSaving_) return;
  const auto error = std::make_shared<std::string>();
  isSaving_ = host_.runAside([path = path_, text = penalties_.text(), error] { *error = replaceFile(path, text); },
                             [this, error] {
                               isSaving_ = false;
                               if (!error->empty()) {
                                 host_.log("cannot write " + path_ + ": " + *error);
                                 retryAt_ = host_.wallClock() + retryAfter;
                                 isStale_ = true;
                               } else if (isStale_) {
                                 save();
                               }
                             });
  if (isSaving_) isStale_ = false;
}

}  // namespace kelvora::server
