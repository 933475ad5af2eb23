#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "frontend/frmConnect.h"
#include "tests/support/gameTest.h"

namespace kelvora {
namespace {

/// A control and another one that covers it.
using Cover = std::pair<const Control*, const Control*>;
using Covers = std::vector<Cover>;

bool isOpaque(const Control& control) {
  const auto* label = dynamic_cast<const Label*>(&control);
  return !label || !label->design.transparent;
}

/// True if they overlap by more than the one pixel by which neighbours may touch.
bool overlap(const Control& a, const Control& b) {
  constexpr float pixel = 15;
  return a.Left + pixel < b.Left + b.Width && b.Left + pixel < a.Left + a.Width && a.Top + pixel < b.Top + b.Height &&
         b.Top + pixel < a.Top + a.Height;
}

/// Every control on a container, at any depth, that an opaque control covers at least partly. Controls declared later
/// are on top of earlier ones.
Covers covers(const Control& container) {
  Covers found;
  const std::vector<Control*>& controls = container.children();
  for (std::size_t upper = 0; upper < controls.size(); ++upper) {
    for (std::size_t lower = 0; lower < upper; ++lower) {
      if (isOpaque(*controls[upper]) && overlap(*controls[lower], *controls[upper])) {
        found.emplace_back(controls[lower], controls[upper]);
      }
    }
    const Covers inside = covers(*controls[upper]);
    found.insert(found.end(), inside.begin(), inside.end());
  }
  return found;
}

class Stacking : public GameTest {};

TEST_F(Stacking, OnlyTheRadarOverlapsAnotherControlInTheMainWindow) {
  FrmMain& f = *frmMain;
  const Covers radarOnItsBox{{&f.Label3, &f.picRadar}};
  EXPECT_EQ(covers(f), radarOnItsBox);
  EXPECT_GE(f.picRadar.Top - f.Label3.Top, 300) << "the heading of its box stays free";
  f.clientResized(20'000, 15'000);
  EXPECT_EQ(covers(f), radarOnItsBox);
}

TEST_F(Stacking, BalanceIsInsideItsBox) {
  FrmMain& f = *frmMain;
  EXPECT_TRUE(overlap(f.Label2, f.lblCredits));
  EXPECT_GE(f.lblCredits.Top - f.Label2.Top, 300) << "below the heading";
}

TEST_F(Stacking, OnlyTheCirclesOverlapAnotherControlInTheConnectDialog) {
  FrmConnect& f = *frmConnect;
  Covers circlesOnTheirGround;
  for (Shape& circle : f.shpUserColor) circlesOnTheirGround.emplace_back(&f.colourGround, &circle);
  EXPECT_EQ(covers(f), circlesOnTheirGround);
}

}  // namespace
}  // namespace kelvora
