#include "platform/recording/file.h"

#include <zlib.h>

#include <array>
#include <cerrno>
#include <memory>
#include <string>
#include <utility>

#include "platform/recording/format.h"

namespace kelvora::recording {

namespace {

constexpr std::size_t chunkSize = 64 * 1024;

/// A file's contents, which are compressed streams, one after another. The file is in memory, so that copies of the
/// process can go on reading.
class Inflater {
 public:
  Inflater(std::string file, std::size_t begin, OnProgress onProgress)
      : file_(std::move(file)), onProgress_(std::move(onProgress)) {
    if (inflateInit(&state_) != Z_OK) throw Damaged("out of memory");
    state_.next_in = reinterpret_cast<Bytef*>(file_.data()) + begin;
    state_.avail_in = static_cast<uInt>(file_.size() - begin);
  }
  ~Inflater() { inflateEnd(&state_); }
  Inflater(const Inflater&) = delete;
  Inflater& operator=(const Inflater&) = delete;

  /// Empty at the end.
  std::string next() {
    std::string out(chunkSize, '\0');
    while (state_.avail_in > 0) {
      if (std::exchange(isOver_, false)) inflateReset(&state_);
      state_.next_out = reinterpret_cast<Bytef*>(out.data());
      state_.avail_out = static_cast<uInt>(out.size());
      const int result = inflate(&state_, Z_SYNC_FLUSH);
      isOver_ = result == Z_STREAM_END;
      if (result != Z_OK && result != Z_STREAM_END && result != Z_BUF_ERROR) throw Damaged("its bytes are damaged");
      out.resize(out.size() - state_.avail_out);
      if (onProgress_) onProgress_(1 - static_cast<double>(state_.avail_in) / static_cast<double>(file_.size()));
      if (!out.empty()) return out;
      out.resize(chunkSize);
    }
    return {};
  }

 private:
  std::string file_;
  OnProgress onProgress_;
  z_stream state_{};
  bool isOver_ = false;  ///< one stream; another may follow
};

/// The whole file. Throws Damaged.
std::string readFile(const std::string& path) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"), std::fclose);
  if (!file) throw Damaged(errno == ENOENT ? "there is no such file" : "it can't be read");
  std::string all;
  std::size_t size = 0;
  do {
    all.resize(size + chunkSize);
    size += std::fread(all.data() + size, 1, chunkSize, file.get());
    if (size > maxFile) throw Damaged("it is too large");
  } while (size == all.size());
  all.resize(size);
  return all;
}

}  // namespace

struct RecordingFile::Compressor {
  Compressor() : isReady(deflateInit(&state, Z_BEST_COMPRESSION) == Z_OK) {}
  ~Compressor() { deflateEnd(&state); }
  Compressor(const Compressor&) = delete;
  Compressor& operator=(const Compressor&) = delete;

  z_stream state{};
  bool isReady;
};

RecordingFile::RecordingFile(const std::string& path) : file_(std::fopen(path.c_str(), "wb")) {
  if (file_ == nullptr) return;
  compressor_ = std::make_unique<Compressor>();
  isGood_ = true;
  if (compressor_->isReady) {
    putOut(std::string(magic) + static_cast<char>(formatVersion));
  } else {
    fail();
  }
}

RecordingFile::~RecordingFile() {
  if (file_ != nullptr) std::fclose(file_);
}

void RecordingFile::fail() {
  isGood_ = false;
  compressor_.reset();
}

void RecordingFile::putOut(std::string_view bytes) {
  if (std::fwrite(bytes.data(), 1, bytes.size(), file_) != bytes.size()) fail();
}

void RecordingFile::deflate(std::string_view contents, int mode) {
  if (!compressor_) return;
  z_stream& state = compressor_->state;
  // zlib doesn't change its input.
  state.next_in = const_cast<Bytef*>(reinterpret_cast<const Bytef*>(contents.data()));
  state.avail_in = static_cast<uInt>(contents.size());
  std::array<Bytef, chunkSize> out;
  bool isFull = true;
  while (isFull && compressor_) {
    state.next_out = out.data();
    state.avail_out = static_cast<uInt>(out.size());
    ::deflate(&state, mode);
    isFull = state.avail_out == 0;
    putOut({reinterpret_cast<const char*>(out.data()), out.size() - state.avail_out});
  }
}

void RecordingFile::put(std::string_view contents) { deflate(contents, Z_NO_FLUSH); }

void RecordingFile::flush() {
  deflate({}, Z_SYNC_FLUSH);
  if (compressor_ && std::fflush(file_) != 0) fail();
}

void RecordingFile::finish() {
  deflate({}, Z_FINISH);
  if (compressor_ && std::fflush(file_) != 0) fail();
  compressor_.reset();
}

Reader::Source openRecording(const std::string& path, OnProgress onProgress) {
  std::string file = readFile(path);
  const std::size_t head = magic.size() + 1;
  if (file.starts_with(roundMagic)) throw Damaged("it is a server's round, which kelvora-server --replay shows");
  if (file.size() < head || !file.starts_with(magic)) throw Damaged("it is no recording");
  if (const auto version = static_cast<std::uint8_t>(file[head - 1]); version > formatVersion) {
    throw Damaged("it has format " + std::to_string(version) + ", which is newer than this program's format " +
                  std::to_string(formatVersion));
  }
  return [inflater = std::make_shared<Inflater>(std::move(file), head, std::move(onProgress))] {
    return inflater->next();
  };
}

}  // namespace kelvora::recording
