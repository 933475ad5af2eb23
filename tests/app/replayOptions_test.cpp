#include "app/replayOptions.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kelvora {
namespace {

using Action = ReplayOptions::Action;
using Arguments = std::vector<std::string>;

ReplayOptions parsed(const Arguments& arguments) {
  ReplayOptions options;
  const Outcome outcome = parseReplayOptions(arguments, options);
  EXPECT_EQ(outcome.reason(), "");
  return options;
}

std::string refusal(const Arguments& arguments) {
  ReplayOptions options;
  return parseReplayOptions(arguments, options).reason();
}

TEST(ReplayOptions, ARecordingAloneIsShown) {
  const ReplayOptions options = parsed({"a.recording"});
  EXPECT_EQ(options.action, Action::Show);
  EXPECT_EQ(options.file, "a.recording");
}

TEST(ReplayOptions, TakeAnyOrder) {
  for (const Arguments& arguments : {Arguments{"--video", "v.mp4", "--from", "1:30", "--to", "2:00", "file"},
                                     Arguments{"file", "--to", "2:00", "--from", "90", "--video", "v.mp4"}}) {
    const ReplayOptions options = parsed(arguments);
    EXPECT_EQ(options.action, Action::Video);
    EXPECT_EQ(options.target, "v.mp4");
    EXPECT_EQ(options.file, "file");
    EXPECT_EQ(options.range.from, 90'000);
    EXPECT_EQ(options.range.to, 120'000);
  }
  EXPECT_EQ(parsed({"file", "--verify"}).action, Action::Verify);
  EXPECT_EQ(parsed({"--frames", "folder", "file"}).action, Action::Frames);
}

TEST(ReplayOptions, HelpAndVersionNeedNoRecording) {
  EXPECT_EQ(parsed({"--help"}).action, Action::Help);
  EXPECT_EQ(parsed({"--version"}).action, Action::Version);
}

TEST(ReplayOptions, RefusalsSayWhatIsWrong) {
  EXPECT_EQ(refusal({"--bogus", "file"}), "unknown option --bogus");
  EXPECT_EQ(refusal({}), "name the recording to play");
  EXPECT_EQ(refusal({"--verify"}), "name the recording to play");
  EXPECT_EQ(refusal({"one", "two"}), "only one recording can be played at a time");
  EXPECT_EQ(refusal({"file", "--video"}), "--video needs a VIDEO");
  EXPECT_EQ(refusal({"--verify", "--video", "v.mp4", "file"}),
            "only one of --verify, --frames and --video can be done at a time");
  EXPECT_EQ(refusal({"--from", "soon", "--video", "v.mp4", "file"}), "\"soon\" is no time such as 1:30");
  EXPECT_EQ(refusal({"--from", "5", "--to", "5", "--video", "v.mp4", "file"}), "--to must be later than --from");
  for (const Arguments& arguments : {Arguments{"--from", "5", "file"}, Arguments{"--from", "0", "file"},
                                     Arguments{"--to", "5", "--verify", "file"}}) {
    EXPECT_EQ(refusal(arguments), "--from and --to need --frames or --video");
  }
}

TEST(ReplayOptions, TheHelpHasEachOption) {
  for (const char* name : {"--verify", "--frames FOLDER", "--video VIDEO", "--from TIME", "--to TIME"}) {
    EXPECT_NE(replayHelp().find(name), std::string::npos) << name;
  }
}

}  // namespace
}  // namespace kelvora
