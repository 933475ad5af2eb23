#include "platform/recording/messages.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "platform/recording/file.h"

namespace kelvora {
namespace {

using namespace recording;

/// What comes out of a file that these were written to, one by one.
std::vector<std::string> throughAFile(const std::vector<std::string>& all) {
  const std::string path = (std::filesystem::temp_directory_path() / "kelvora-messages.recording").string();
  {
    Writer writer(std::make_unique<RecordingFile>(path));
    Messages messages;
    for (const std::string& bytes : all) messages.write(writer, bytes);
  }
  Reader reader(openRecording(path));
  Messages messages;
  std::vector<std::string> result;
  while (!reader.isAtEnd()) result.push_back(messages.read(reader));
  std::filesystem::remove(path);
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

}  // namespace
}  // namespace kelvora
