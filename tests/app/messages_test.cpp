#include "platform/recording/messages.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "platform/recording/file.h"
#include "protocol/wireFormat.h"
#include "tests/app/memorySink.h"
#include "tests/support/temporaryFolder.h"

namespace kelvora {
namespace {

using namespace recording;

/// Writes the messages to a file one by one, and returns those read from it.
std::vector<std::string> throughAFile(const std::vector<std::string>& all) {
  const TemporaryFolder folder;
  const std::string path = (folder.path() / "messages.recording").string();
  {
    Writer writer(std::make_unique<RecordingFile>(path));
    Messages messages;
    for (const std::string& bytes : all) messages.write(writer, bytes);
  }
  Reader reader(openRecording(path));
  Messages messages;
  std::vector<std::string> result;
  while (!reader.isAtEnd()) result.push_back(messages.read(reader));
  return result;
}

TEST(Messages, AnyBytesComeBack) {
  const std::vector<std::string> all = {
      "",
      "\x80",
      "\x81\x82\x80\x80\x81",
      "\x80\x86\x31\x82"
      "26329.41\x82"
      "40809.36\x81",
      "\x80\x86\x31\x82"
      "26122.8\x82"
      "39815\x81\x80\x86\x32\x82"
      "1234.567\x82"
      "0\x81tail",
      "head\x80\x86\x31\x82"
      "999999.999\x82"
      "0.001\x81",
      // Texts that no number of this kind has.
      "\x80\x86\x31\x82"
      "01\x82"
      "2\x81",
      "\x80\x86\x31\x82"
      "1.50\x82"
      "2\x81",
      "\x80\x86\x31\x82"
      ".5\x82"
      "2\x81",
      "\x80\x86\x31\x82"
      "-7\x82"
      "2\x81",
      "\x80\x86\x31\x82"
      "1E+07\x82"
      "2\x81",
      "\x80\x86\x31\x82"
      "1234567\x82"
      "2\x81",
      "\x80\x86\x31\x82"
      "1.2345\x82"
      "2\x81",
      "\x80\x86\x82"
      "1\x82"
      "2\x81",
      "\x80\x86\x31\x82"
      "1\x82"
      "2\x82"
      "3\x81",
      "\x80\x86\x31\x82"
      "1.\x82"
      "2\x81",
  };
  EXPECT_EQ(throughAFile(all), all);
}

TEST(Messages, APointOfSteadySpeedTakesLittle) {
  // Both axes together move 300 in each step, which is steered a little each time.
  const auto message = [](int x, int y) {
    return std::string("\x80\x86\x31\x82") + std::to_string(x) + "\x82" + std::to_string(y) + "\x81";
  };
  std::string contents;
  {
    Writer writer(std::make_unique<MemorySink>(contents));
    Messages messages;
    messages.write(writer, message(20'000, 30'000));
    messages.write(writer, message(20'100, 30'200));
    writer.flush();
    contents.clear();
    messages.write(writer, message(20'201, 30'399));
    messages.write(writer, message(20'303, 30'597));
  }
  // For each message its piece, id and end, the node, two bytes across for the bend of 1.00, and one down for none.
  constexpr std::size_t sizes = planeCount;
  EXPECT_EQ(contents.size(), sizes + 2 * (3 + 1 + 2 + 1));
}

TEST(Messages, AreThoseOfTheProtocol) {
  const std::string message =
      std::string{wire::frameStart, 'a', '1', wire::fieldSeparator, '2', wire::fieldSeparator, '3', wire::frameEnd};
  std::string contents;
  {
    Writer writer(std::make_unique<MemorySink>(contents));
    Messages messages;
    messages.write(writer, message);
  }
  EXPECT_EQ(contents.find(message), std::string::npos) << "as a point, not as it is";
}

}  // namespace
}  // namespace kelvora
