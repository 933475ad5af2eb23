#include "server/moderation/penalties.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

#include "base/codePage.h"
#include "base/search.h"
#include "base/text.h"
#include "server/arena/names.h"
#include "server/arena/plainText.h"
#include "server/moderation/commandLine.h"
#include "server/moderation/network.h"
#include "server/system/files.h"

namespace kelvora::server {

namespace {

constexpr std::size_t maxComplaints = 20;

/// The text as a message and a line can hold it.
std::string bounded(std::string_view text, std::size_t length) {
  std::string plain(text);
  std::erase_if(plain, [](char c) { return isControl(c) || isDelimiter(c); });
  return trimBlanks(trimBlanks(plain).substr(0, length));
}

Outcome readLine(std::string text, Penalty& penalty) {
  std::replace(text.begin(), text.end(), '\t', ' ');
  std::string_view line = text;
  const std::string_view kind = takeWord(line);
  if (kind != "ban" && kind != "mute") return Outcome::refused("expected \"ban\" or \"mute\"");
  penalty.kind = kind == "ban" ? PenaltyKind::ban : PenaltyKind::mute;
  const auto network = readNetwork(std::string(takeWord(line)));
  if (!network) return Outcome::refused("expected an IP address, or an IPv6 one with /64");
  penalty.network = *network;
  const auto end = readTime(takeWord(line));
  if (!end) return Outcome::refused("expected a time such as 2026-11-22T14:00:00Z, or \"forever\"");
  penalty.end = *end;
  const auto letters = codePageFromUtf8(line);
  if (!letters) return Outcome::refused("expected UTF-8 with letters of code page 1252");
  std::string_view rest = *letters;
  if (rest.starts_with('"')) {
    const std::size_t quote = rest.find('"', 1);
    if (quote == rest.npos) return Outcome::refused("the name has no second quotation mark");
    penalty.name = bounded(rest.substr(1, quote - 1), maxNameLength);
    rest.remove_prefix(quote + 1);
  }
  penalty.reason = bounded(rest, Penalties::maxReason);
  return Outcome::done();
}

}  // namespace

std::string_view wordFor(PenaltyKind kind) { return kind == PenaltyKind::ban ? "ban" : "mute"; }

std::vector<std::string> Penalties::read(std::string_view text, Seconds now) {
  penalties_.clear();
  remarks_.clear();
  text = withoutByteOrderMark(text);
  std::vector<std::string> complaints;
  std::size_t others = 0;
  std::size_t remarks = 0;  // bytes
  for (int number = 1; !text.empty(); ++number) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = trimmedLine(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.empty()) continue;
    const bool isComment = line.starts_with('#');
    Penalty penalty;
    Outcome outcome = isComment ? Outcome::done() : readLine(std::string(line), penalty);
    if (!isComment && !outcome.isRefused()) {
      outcome = add(std::move(penalty), now);
      if (!outcome.isRefused()) continue;
    }
    if (remarks + line.size() < maxRemarks) {
      remarks_.emplace_back(line);
      remarks += line.size() + 1;
    } else {
      outcome = Outcome::refused("no room for this line, which will be lost");
    }
    if (!outcome.isRefused()) continue;
    if (complaints.size() < maxComplaints) {
      complaints.push_back(std::to_string(number) + ": " + outcome.reason());
    } else {
      ++others;
    }
  }
  if (others > 0) complaints.push_back("and " + std::to_string(others) + " more invalid lines");
  return complaints;
}

std::string Penalties::text() const {
  std::string text;
  for (const std::string& remark : remarks_) text += remark + "\n";
  for (const Penalty& penalty : penalties_) {
    std::string line = std::string(wordFor(penalty.kind)) + " " + penalty.network + " " + timeText(penalty.end);
    if (!penalty.name.empty() || penalty.reason.starts_with('"')) line += " \"" + penalty.name + "\"";
    if (!penalty.reason.empty()) line += " " + penalty.reason;
    text += utf8FromCodePage(line) + "\n";
  }
  return text;
}

const Penalty* Penalties::find(PenaltyKind kind, std::string_view network, Seconds now) const {
  return findIf(penalties_, [&](const Penalty& penalty) {
    return penalty.kind == kind && penalty.network == network && penalty.end > now;
  });
}

Outcome Penalties::add(Penalty penalty, Seconds now) {
  forgetOver(now);
  if (penalty.end <= now) return Outcome::done();
  penalty.name = bounded(penalty.name, maxNameLength);
  std::replace(penalty.name.begin(), penalty.name.end(), '"', '\'');
  penalty.reason = bounded(penalty.reason, maxReason);
  lift(penalty.kind, penalty.network);
  if (penalties_.size() >= maxCount) {
    return Outcome::refused("there are " + std::to_string(maxCount) + " bans and mutes already");
  }
  penalties_.push_back(std::move(penalty));
  return Outcome::done();
}

std::vector<Penalty> Penalties::remove(PenaltyKind kind, std::string_view networkOrName) {
  const std::string network = readNetwork(std::string(networkOrName)).value_or("");
  const std::string skeleton = skeletonOf(networkOrName);
  const auto isMeant = [&](const Penalty& penalty) {
    return penalty.kind == kind && (penalty.network == network || (!penalty.name.empty() && !skeleton.empty() &&
                                                                   skeletonOf(penalty.name) == skeleton));
  };
  std::vector<Penalty> removed;
  std::copy_if(penalties_.begin(), penalties_.end(), std::back_inserter(removed), isMeant);
  std::erase_if(penalties_, isMeant);
  return removed;
}

void Penalties::lift(PenaltyKind kind, std::string_view network) {
  std::erase_if(penalties_, [&](const Penalty& penalty) { return penalty.kind == kind && penalty.network == network; });
}

void Penalties::forgetOver(Seconds now) {
  std::erase_if(penalties_, [&](const Penalty& penalty) { return penalty.end <= now; });
}

}  // namespace kelvora::server
