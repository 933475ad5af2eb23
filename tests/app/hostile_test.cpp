// Recordings that nobody's game has made.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "platform/recording/format.h"
#include "platform/recording/replay.h"
#include "platform/recording/stream.h"
#include "tests/app/memorySink.h"

namespace kelvora {
namespace {

using namespace recording;

/// How the replay of these records ends in the first call of DoEvents.
std::string endOf(const std::function<void(Writer&)>& records) {
  std::string contents;
  {
    Writer writer(std::make_unique<MemorySink>(contents));
    writer.text("1.0");
    writer.whole(1000);
    writer.whole(0);
    records(writer);
  }
  Replay replay(sourceOf(contents), "", nullptr);
  try {
    replay.doEvents(false);
  } catch (const Damaged& damage) {
    return damage.what();
  } catch (const ReplayEnd& end) {
    return "ended" + end.text;
  }
  return "returned";
}

void kind(Writer& writer, Kind kind) { writer.byte(static_cast<std::uint8_t>(kind)); }

void putFont(Writer& writer, const std::string& family) {
  writer.text(family);
  writer.real(8);
  writer.byte(0);
}

void putLineHeight(Writer& writer, const std::string& family) {
  kind(writer, Kind::LineHeight);
  putFont(writer, family);
  writer.whole(10);
}

void putLetter(Writer& writer, const std::string& family) {
  kind(writer, Kind::Glyph);
  putFont(writer, family);
  writer.byte('k');
  for (const int value : {0, 0, 1, 1, 2}) writer.whole(value);
  writer.byte(255);
}

void putReturn(Writer& writer) {
  kind(writer, Kind::Return);
  writer.number(0, Plane::Times);
}

void putComparison(Writer& writer, std::size_t parts, const std::string& name) {
  kind(writer, Kind::Check);
  writer.number(parts);
  for (std::size_t i = 0; i < parts; ++i) writer.text(name);
  for (std::size_t i = 0; i < 2 * parts; ++i) writer.byte(0);
}

TEST(HostileRecording, NamesAreShort) {
  for (const std::size_t size : {maxName, maxName + 1}) {
    const std::string end = size > maxName ? "a text is too long" : "returned";
    const std::string name(size, 'x');
    EXPECT_EQ(endOf([&](Writer& writer) {
                putLineHeight(writer, name);
                putReturn(writer);
              }),
              end);
    EXPECT_EQ(endOf([&](Writer& writer) {
                putLetter(writer, name);
                putReturn(writer);
              }),
              end);
    EXPECT_EQ(endOf([&](Writer& writer) {
                putComparison(writer, 1, name);
                putReturn(writer);
              }),
              end);
  }
}

TEST(HostileRecording, FontsAreBounded) {
  for (const auto& put : {putLineHeight, putLetter}) {
    for (const std::size_t count : {maxFonts, maxFonts + 1}) {
      EXPECT_EQ(endOf([&](Writer& writer) {
                  for (std::size_t i = 0; i < count; ++i) put(writer, std::to_string(i));
                  put(writer, "7");  // once more
                  putReturn(writer);
                }),
                count > maxFonts ? "it has too many fonts" : "returned");
    }
  }
}

TEST(HostileRecording, PartsOfAComparisonAreBounded) {
  for (const std::size_t count : {maxParts, maxParts + 1}) {
    EXPECT_EQ(endOf([&](Writer& writer) {
                putComparison(writer, count, "a");
                putReturn(writer);
              }),
              count > maxParts ? "a comparison has too many parts" : "returned");
  }
}

TEST(HostileRecording, TheClockIsBounded) {
  const auto after = [](std::uint64_t ms) {
    return endOf([ms](Writer& writer) {
      kind(writer, Kind::Return);
      writer.number(ms, Plane::Times);
    });
  };
  EXPECT_EQ(after(999'999'999'999'000), "returned");
  EXPECT_EQ(after(999'999'999'999'001), "its time is out of range");
  EXPECT_EQ(after(~std::uint64_t{0}), "its time is out of range");
}

TEST(HostileRecording, KindsAreKnown) {
  for (const int byte : {0, 21, 255}) {
    EXPECT_EQ(endOf([byte](Writer& writer) { writer.byte(static_cast<std::uint8_t>(byte)); }),
              "a record is of an unknown kind");
  }
  EXPECT_EQ(endOf([](Writer& writer) { kind(writer, Kind::End); }),
            "endedthe game comes to events, the recorded one to the end");
}

TEST(HostileRecording, WindowsAndSocketsExist) {
  EXPECT_EQ(endOf([](Writer& writer) {
              kind(writer, Kind::Adopted);
              writer.number(0);
              writer.number(0);
            }),
            "a window doesn't exist");
  EXPECT_EQ(endOf([](Writer& writer) {
              kind(writer, Kind::SocketState);
              writer.number(0);
              writer.byte(7);
            }),
            "a socket doesn't exist");
  EXPECT_EQ(endOf([](Writer& writer) {
              kind(writer, Kind::SocketEvent);
              writer.number(0, Plane::Times);
              writer.number(0);
              writer.byte(1);
            }),
            "a socket doesn't exist");
}

}  // namespace
}  // namespace kelvora
