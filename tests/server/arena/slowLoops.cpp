#include "tests/server/arena/slowLoops.h"

namespace kelvora::server {

namespace {

__extension__ using Wide = __int128;

Wide absolute(Wide value) { return value < 0 ? -value : value; }

Wide greatestDivisor(Wide a, Wide b) { return b == 0 ? absolute(a) : greatestDivisor(b, a % b); }

/// Reduced, with a positive denominator. Tests keep the numbers small.
struct Fraction {
  Wide upper = 0;
  Wide lower = 1;

  Fraction(Wide value = 0) : upper(value) {}  // NOLINT(google-explicit-constructor): a number is a fraction
  Fraction(Wide up, Wide low) {
    const Wide divisor = greatestDivisor(up, low) * (low < 0 ? -1 : 1);
    upper = up / divisor;
    lower = low / divisor;
  }
  friend Fraction operator+(Fraction a, Fraction b) {
    return {a.upper * b.lower + b.upper * a.lower, a.lower * b.lower};
  }
  friend Fraction operator-(Fraction a, Fraction b) {
    return {a.upper * b.lower - b.upper * a.lower, a.lower * b.lower};
  }
  friend Fraction operator*(Fraction a, Fraction b) { return {a.upper * b.upper, a.lower * b.lower}; }
  friend Fraction operator/(Fraction a, Fraction b) { return {a.upper * b.lower, a.lower * b.upper}; }
  friend bool operator==(Fraction a, Fraction b) { return a.upper == b.upper && a.lower == b.lower; }
  int sign() const { return (upper > 0) - (upper < 0); }
};

struct ExactPoint {
  Fraction x;
  Fraction y;
  friend bool operator==(const ExactPoint&, const ExactPoint&) = default;
};

ExactPoint exact(GridPoint point) { return {point.x, point.y}; }

int side(ExactPoint a, ExactPoint b, ExactPoint c) {
  return ((b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x)).sign();
}

bool isOn(ExactPoint a, ExactPoint b, ExactPoint c) {
  if (side(a, b, c) != 0) return false;
  return ((c.x - a.x) * (c.x - b.x)).sign() <= 0 && ((c.y - a.y) * (c.y - b.y)).sign() <= 0;
}

Fraction squaredDistance(ExactPoint a, ExactPoint b) { return (a.x - b.x) * (a.x - b.x) + (a.y - b.y) * (a.y - b.y); }

/// The point shared by a-b and c-d that is nearest to c.
std::optional<ExactPoint> meeting(ExactPoint a, ExactPoint b, ExactPoint c, ExactPoint d) {
  const Fraction across = (b.x - a.x) * (d.y - c.y) - (b.y - a.y) * (d.x - c.x);
  if (across.sign() == 0) {
    std::optional<ExactPoint> nearest;
    for (const ExactPoint end : {a, b, c, d}) {
      if (!isOn(a, b, end) || !isOn(c, d, end)) continue;
      if (!nearest || (squaredDistance(end, c) - squaredDistance(*nearest, c)).sign() < 0) nearest = end;
    }
    return nearest;
  }
  const Fraction part = ((c.x - a.x) * (d.y - c.y) - (c.y - a.y) * (d.x - c.x)) / across;
  const ExactPoint point{a.x + part * (b.x - a.x), a.y + part * (b.y - a.y)};
  if (!isOn(a, b, point) || !isOn(c, d, point)) return std::nullopt;
  return point;
}

/// The quadrant around the point, 0 to 3. Each includes its first half axis.
int quarter(ExactPoint place, ExactPoint point) {
  const int x = (point.x - place.x).sign();
  const int y = (point.y - place.y).sign();
  if (x > 0 && y >= 0) return 0;
  if (x <= 0 && y > 0) return 1;
  if (x < 0 && y <= 0) return 2;
  return 3;
}

bool isInside(const std::vector<ExactPoint>& polygon, ExactPoint place) {
  int quarters = 0;
  for (std::size_t i = 0; i < polygon.size(); ++i) {
    const ExactPoint a = polygon[i];
    const ExactPoint b = polygon[(i + 1) % polygon.size()];
    if (isOn(a, b, place)) return false;
    const int step = (quarter(place, b) - quarter(place, a) + 4) % 4;
    if (step == 1) quarters += 1;
    if (step == 3) quarters -= 1;
    if (step == 2) quarters += 2 * side(a, b, place);
  }
  return quarters != 0;
}

}  // namespace

std::vector<std::optional<std::size_t>> slowEnclosingLoops(std::span<const GridPoint> tail,
                                                           std::span<const GridPoint> places) {
  std::vector<std::optional<std::size_t>> loops(places.size());
  for (std::size_t i = 0; i + 3 < tail.size(); ++i) {
    const std::size_t last = tail.size() - 1;
    if (tail[last] == tail[last - 1]) continue;
    const auto point = meeting(exact(tail[last - 1]), exact(tail[last]), exact(tail[i]), exact(tail[i + 1]));
    if (!point) continue;
    std::vector<ExactPoint> polygon{*point};
    for (std::size_t k = i + 1; k < last; ++k) polygon.push_back(exact(tail[k]));
    for (std::size_t k = 0; k < places.size(); ++k) {
      if (!loops[k] && isInside(polygon, exact(places[k]))) loops[k] = i + 1;
    }
  }
  return loops;
}

}  // namespace kelvora::server
