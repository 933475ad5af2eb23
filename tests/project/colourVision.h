#pragma once

#include <array>
#include <cmath>
#include <cstddef>

/// The difference between two colours for four kinds of eyes. A colour is converted to light, to the light that looks
/// the same to an eye lacking one of its three kinds of cones (the linear model of Machado, Oliveira and Fernandes,
/// 2009, at full strength), and to L*, a*, b* (CIE 1976, daylight D65). A distance of 2.3 in that space is just
/// noticeable.
namespace colourVision {

enum class Eye { ordinary, withoutLong, withoutMiddle, withoutShort };
inline constexpr std::array eyes = {Eye::ordinary, Eye::withoutLong, Eye::withoutMiddle, Eye::withoutShort};
inline constexpr double justNoticed = 2.3;

using Triple = std::array<double, 3>;
using Matrix = std::array<Triple, 3>;

inline constexpr std::array<Matrix, 4> seenBy = {
    {{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}},
     {{{0.152286, 1.052583, -0.204868}, {0.114503, 0.786281, 0.099216}, {-0.003882, -0.048116, 1.051998}}},
     {{{0.367322, 0.860646, -0.227968}, {0.280085, 0.672501, 0.047413}, {-0.011820, 0.042940, 0.968881}}},
     {{{1.255528, -0.076749, -0.178779}, {-0.078411, 0.930809, 0.147602}, {0.004733, 0.691367, 0.303900}}}}};

inline Triple times(const Matrix& matrix, const Triple& v) {
  Triple result{};
  for (std::size_t i = 0; i < 3; ++i) result[i] = matrix[i][0] * v[0] + matrix[i][1] * v[1] + matrix[i][2] * v[2];
  return result;
}

inline double lightOf(double channel) {
  const double c = channel / 255;
  return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
}

/// L*, a* and b* of a screen colour (channels 0 to 255) as this eye sees it.
inline Triple labOf(double red, double green, double blue, Eye eye) {
  constexpr Matrix toXyz = {{{0.4124, 0.3576, 0.1805}, {0.2126, 0.7152, 0.0722}, {0.0193, 0.1192, 0.9505}}};
  constexpr Triple daylight = {0.9505, 1.0, 1.089};
  Triple light = times(seenBy.at(static_cast<std::size_t>(eye)), {lightOf(red), lightOf(green), lightOf(blue)});
  for (double& channel : light) channel = std::fmin(std::fmax(channel, 0), 1);
  Triple f = times(toXyz, light);
  for (std::size_t i = 0; i < 3; ++i) {
    const double t = f[i] / daylight[i];
    f[i] = t > 216.0 / 24389 ? std::cbrt(t) : (24389.0 / 27 * t + 16) / 116;
  }
  return {116 * f[1] - 16, 500 * (f[0] - f[1]), 200 * (f[1] - f[2])};
}

inline double distance(const Triple& a, const Triple& b) { return std::hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]); }

}  // namespace colourVision
