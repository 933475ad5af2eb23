#include "app/film.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <utility>
#include <vector>

#include "app/clockText.h"
#include "frontend/frmMain.h"
#include "platform/desktop/soundModule.h"
#include "platform/pictures/writePng.h"
#include "platform/sound/mix.h"
#include "platform/sound/soundtrack.h"

namespace kelvora {

namespace {

/// The text as one word for the shell.
std::string quoted(const std::string& text) {
  std::string word = "'";
  for (const char letter : text) word += letter == '\'' ? std::string("'\\''") : std::string(1, letter);
  return word + "'";
}

}  // namespace

void Film::cut(Millis now) {
  constexpr Millis maxPause = 1000;
  next_ = std::max(next_, now - maxPause);
}

void Film::startTrack() {
  if (error_.empty() && !track_.empty()) play({.file = std::exchange(track_, {}), .isMusic = true, .starts = true}, 0);
}

bool Film::add(Millis now) {
  if (now >= range_.to) return false;
  cut(now);
  if (now < next_) return true;
  startTrack();
  const PictureBox& canvas = frmMain->canvas;
  const Picture picture{canvas.pixelWidth(), canvas.pixelHeight(), {canvas.pixels().begin(), canvas.pixels().end()}};
  for (; error_.empty() && next_ <= now; next_ += interval) {
    ++pictures_;
    take(picture);
  }
  return error_.empty();
}

void Film::hear(const recording::Sounding& sounding, Millis now) {
  if (now < range_.from) {
    if (sounding.isMusic) track_ = sounding.starts ? sounding.file : "";
    return;
  }
  cut(now);
  startTrack();
  if (error_.empty()) play(sounding, pictures_ * interval + now - next_);
}

bool Film::finish() {
  if (error_.empty() && pictures_ == 0) fail("there is no picture to write");
  if (error_.empty()) conclude();
  return error_.empty();
}

FrameFolder::FrameFolder(std::string folder, FilmRange range) : Film(range), folder_(std::move(folder)) {}

std::string FrameFolder::result() const { return folder_ + ": " + std::to_string(pictures()) + " pictures"; }

void FrameFolder::take(const Picture& picture) {
  std::error_code ignored;  // a file that can't be written tells it
  std::filesystem::create_directories(folder_, ignored);
  std::array<char, 32> name{};
  std::snprintf(name.data(), name.size(), "/%06lld.png", static_cast<long long>(pictures()));
  if (!writePng(folder_ + name.data(), picture)) fail(folder_ + name.data() + " can't be written");
}

Video::Video(std::string file, FilmRange range) : Film(range), file_(std::move(file)) { prepare(); }

void Video::prepare() {
  if (std::system("command -v ffmpeg >/dev/null") != 0) return fail("ffmpeg is not installed");
  std::unique_ptr<Soundtrack> track = openSoundtrack(soundModulePath());
  if (!track) return fail("the sound module kelvora-sound.so is missing");
  std::string folder = file_ + "-XXXXXX";
  if (::mkdtemp(folder.data()) == nullptr) return fail(file_ + " can't be written");
  folder_ = folder;
  sound_ = std::make_unique<FilmSound>(soundFile(), std::move(track));
}

Video::~Video() {
  if (pipe_ != nullptr) ::pclose(pipe_);
  std::error_code ignored;
  if (!folder_.empty()) std::filesystem::remove_all(folder_, ignored);
}

std::string Video::result() const { return file_ + ": a film of " + clockText(pictures() * interval); }

std::string Video::part(const std::string& name) const {
  return folder_ + "/" + name + std::filesystem::path(file_).extension().string();
}

/// Runs in a session of its own, so that Ctrl+C only reaches this program, which then ends in order.
std::string Video::ffmpeg(const std::string& arguments) const {
  return "exec setsid ffmpeg -loglevel error -y " + arguments + " 2>" + quoted(messagesFile());
}

void Video::failWithFfmpegsReason() {
  std::ifstream words(messagesFile());
  std::string last;
  for (std::string line; std::getline(words, line);) {
    if (line.find("suitable output format") != line.npos) {
      return fail("ffmpeg knows no kind of film by the name of " + file_ + ". Try one that ends in .mp4");
    }
    if (!line.empty()) last = line;
  }
  fail("ffmpeg has failed" + (last.empty() ? "" : ": " + last));
}

void Video::open() {
  std::signal(SIGPIPE, SIG_IGN);
  const std::string size = std::to_string(width_) + "x" + std::to_string(height_);
  const std::string command =
      ffmpeg("-f rawvideo -pix_fmt bgr0 -video_size " + size + " -framerate " + std::to_string(picturesPerSecond) +
             " -i - -vf 'pad=ceil(iw/2)*2:ceil(ih/2)*2' -pix_fmt yuv420p " + quoted("file:" + part("pictures")));
  pipe_ = ::popen(command.c_str(), "w");
  if (pipe_ == nullptr) fail("ffmpeg can't be started");
}

void Video::take(const Picture& picture) {
  if (pipe_ == nullptr) {
    width_ = picture.width;
    height_ = picture.height;
    open();
  }
  if (pipe_ == nullptr) return;
  // A window may change its size, but a video can't.
  std::vector<Pixel> frame(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_));
  const auto columns = static_cast<std::ptrdiff_t>(std::min(width_, picture.width));
  for (int row = 0; row < std::min(height_, picture.height); ++row) {
    const auto from = picture.pixels.begin() + std::ptrdiff_t{row} * picture.width;
    std::copy(from, from + columns, frame.begin() + std::ptrdiff_t{row} * width_);
  }
  if (std::fwrite(frame.data(), sizeof(Pixel), frame.size(), pipe_) == frame.size()) return;
  ::pclose(std::exchange(pipe_, nullptr));  // so that its messages are complete
  failWithFfmpegsReason();
}

void Video::play(const recording::Sounding& sounding, Millis at) {
  if (!sound_->play(sounding, at)) fail(soundFile() + " can't be written");
}

void Video::conclude() {
  if (::pclose(std::exchange(pipe_, nullptr)) != 0) return failWithFfmpegsReason();
  if (!sound_->finish(pictures() * interval)) return fail(soundFile() + " can't be written");
  const std::string command =
      ffmpeg("-nostdin -i " + quoted("file:" + part("pictures")) + " -f s16le -ar " + std::to_string(sampleRate) +
             " -ac 2 -i " + quoted("file:" + soundFile()) + " -c:v copy " + quoted("file:" + part("film")));
  if (std::system(command.c_str()) != 0) return failWithFfmpegsReason();
  std::error_code error;
  std::filesystem::rename(part("film"), file_, error);
  if (error) fail(file_ + " can't be written");
}

}  // namespace kelvora
