#include "server/bots/skill.h"

namespace kelvora::server {

namespace {

constexpr Skill easySkill{.throttle = 0.6,
                          .reaction = 600,
                          .turnRate = 6,
                          .wobble = 0.3,
                          .minLoopRadius = 3'200,
                          .maxLoopRadius = 4'000,
                          .foresight = 0.2,
                          .aimError = 0.3,
                          .foreseesTurns = false,
                          .alertness = 0,
                          .minRest = 2'500,
                          .maxRest = 6'000,
                          .triumph = 3'000,
                          .restThrottle = 0.2,
                          .uses = {false, true, false, false, false, false}};

constexpr Skill normalSkill{.throttle = 0.7,
                            .reaction = 360,
                            .turnRate = 9,
                            .wobble = 0.15,
                            .minLoopRadius = 2'800,
                            .maxLoopRadius = 3'800,
                            .foresight = 0.5,
                            .aimError = 0.55,
                            .foreseesTurns = false,
                            .alertness = 0.35,
                            .minRest = 3'000,
                            .maxRest = 8'000,
                            .triumph = 4'000,
                            .restThrottle = 0.45,
                            .uses = {true, true, true, false, true, false}};

constexpr Skill hardSkill{.throttle = 1,
                          .reaction = 120,
                          .turnRate = 24,
                          .wobble = 0.03,
                          .minLoopRadius = 1'800,
                          .maxLoopRadius = 3'000,
                          .foresight = 1,
                          .aimError = 0.2,
                          .foreseesTurns = true,
                          .alertness = 0.95,
                          .minRest = 500,
                          .maxRest = 2'000,
                          .triumph = 3'000,
                          .restThrottle = 0.85,
                          .uses = {true, true, true, true, true, true}};

}  // namespace

std::optional<SkillLevel> skillLevel(std::string_view word) {
  if (word == "easy") return SkillLevel::easy;
  if (word == "normal") return SkillLevel::normal;
  if (word == "hard") return SkillLevel::hard;
  if (word == "mixed") return SkillLevel::mixed;
  return std::nullopt;
}

const Skill& skillOf(SkillLevel level) {
  switch (level) {
    case SkillLevel::easy:
      return easySkill;
    case SkillLevel::hard:
      return hardSkill;
    default:
      return normalSkill;
  }
}

}  // namespace kelvora::server
