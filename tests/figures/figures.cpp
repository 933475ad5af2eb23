#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <random>
#include <string>
#include <string_view>

#include "base/bitCast.h"
#include "base/fault.h"
#include "base/numberFromText.h"
#include "base/randomGenerator.h"
#include "base/text.h"
#include "platform/pictures/pictureFile.h"

// Prints checksums of results that must be the same in every build: figures COUNT PICTURE... converts COUNT numbers of
// each kind with the functions of base, and loads the pictures. tests/figures/compare.sh compares two builds.
namespace {

using namespace kelvora;

/// The FNV-1a hash of everything added.
class Checksum {
 public:
  void add(std::string_view text) {
    for (const char letter : text) addByte(static_cast<unsigned char>(letter));
    addByte(0);
  }
  void add(std::uint64_t value) {
    for (int shift = 0; shift < 64; shift += 8) addByte(static_cast<unsigned char>(value >> shift & 255));
  }
  void print(const char* what) const { std::printf("%s %016" PRIx64 "\n", what, value_); }

 private:
  void addByte(unsigned char byte) { value_ = (value_ ^ byte) * 0x100000001B3; }
  std::uint64_t value_ = 0xCBF29CE484222325;
};

template <class Call>
std::string orFault(Call&& call) {
  try {
    return call();
  } catch (const RuntimeFault& fault) {
    return fault.what();
  }
}

/// A number text as a server may send it: signs, points and exponents anywhere, up to 40 digits, occasionally far more.
std::string randomNumberText(std::mt19937_64& draws) {
  constexpr std::string_view letters = "0123456789012345678901234567890123456789.-+eE ";
  const std::uint64_t kind = draws() % 8;
  std::string text;
  const std::uint64_t length = kind == 0 ? draws() % 1200 : 1 + draws() % 40;
  for (std::uint64_t i = 0; i < length; ++i) text += letters[draws() % (kind < 3 ? 10 : letters.size())];
  if (kind < 5 && !text.empty()) text.insert(draws() % text.size(), ".");
  if (kind != 5) text += "E" + std::to_string(static_cast<int>(draws() % 700) - 350);
  return text;
}

/// All digits of the exact middle between two neighbouring doubles, or of a number slightly above it.
std::string halfwayText(std::mt19937_64& draws) {
  // From 2^52 on, neighbouring doubles differ by one.
  const std::uint64_t twice = (draws() >> 11 | std::uint64_t{1} << 52) * 2 + 1;
  return std::to_string(twice / 2) + ".5" + (draws() % 2 == 0 ? "000000000000000000000001" : "");
}

void printNumbers(int count) {
  std::mt19937_64 draws(20261122);
  Checksum singles;
  Checksum doubles;
  Checksum thousands;
  Checksum reads;
  Checksum wholes;
  Checksum halfway;
  for (int i = 0; i < count; ++i) {
    const auto single = bitCast<float>(static_cast<std::uint32_t>(draws()));
    const auto real = bitCast<double>(draws());
    // As large as times and credits, with more ties among the decimals than by chance.
    const double amount = static_cast<double>(static_cast<std::int64_t>(draws() >> 24)) / (i % 2 == 0 ? 65536.0 : 1e5);
    singles.add(orFault([&] { return numberText(single); }));
    doubles.add(orFault([&] { return numberText(real); }));
    doubles.add(orFault([&] { return numberText(amount); }));
    thousands.add(orFault([&] { return formatThousands(i % 8 == 0 ? real : -amount); }));
    const std::string text = randomNumberText(draws);
    reads.add(orFault([&] { return std::to_string(bitCast<std::uint64_t>(readNumber(text))); }));
    const auto whole = numberFromText<double>(i % 2 == 0 ? text.substr(0, 1 + draws() % 8) : text);
    wholes.add(whole ? bitCast<std::uint64_t>(*whole) : 0);
    if (i % 4 == 0) halfway.add(bitCast<std::uint64_t>(readNumber(halfwayText(draws))));
  }
  singles.print("numberText(float)");
  doubles.print("numberText(double)");
  thousands.print("formatThousands");
  reads.print("readNumber");
  wholes.print("numberFromText<double>");
  halfway.print("readNumber, half-way");

  RandomGenerator generator;
  generator.randomize(43200.5F);
  Checksum chances;
  for (int i = 0; i < count; ++i) chances.add(bitCast<std::uint32_t>(generator.next()));
  chances.print("RandomGenerator");
}

void printPicture(const std::string& path) {
  const PicturePointer picture = loadPictureFile(path);
  Checksum sum;
  for (const Pixel pixel : picture->pixels) sum.add(std::uint64_t{pixel});
  std::printf("%s %d by %d ", path.c_str(), picture->width, picture->height);
  sum.print("");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) return 2;
  printNumbers(std::stoi(argv[1]));
  for (int i = 2; i < argc; ++i) printPicture(argv[i]);
}
