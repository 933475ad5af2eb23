#include "platform/recording/file.h"

#include <zlib.h>

#include <array>
#include <memory>
#include <string>
#include <utility>

#include "platform/recording/format.h"

namespace kelvora::recording {

namespace {

constexpr std::size_t chunkSize = 64 * 1024;

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

/// The file's contents, which are compressed streams, one after another.
class Inflater {
 public:
  explicit Inflater(File file) : file_(std::move(file)) {
    if (inflateInit(&state_) != Z_OK) throw Damaged("out of memory");
  }
  ~Inflater() { inflateEnd(&state_); }
  Inflater(const Inflater&) = delete;
  Inflater& operator=(const Inflater&) = delete;

  /// Empty at the end.
  std::string next() {
    std::string out(chunkSize, '\0');
    while (state_.avail_in > 0 || read()) {
      if (std::exchange(isOver_, false)) inflateReset(&state_);
      state_.next_out = reinterpret_cast<Bytef*>(out.data());
      state_.avail_out = static_cast<uInt>(out.size());
      const int result = inflate(&state_, Z_SYNC_FLUSH);
      isOver_ = result == Z_STREAM_END;
      if (result != Z_OK && result != Z_STREAM_END && result != Z_BUF_ERROR) throw Damaged("its bytes are damaged");
      out.resize(out.size() - state_.avail_out);
      if (!out.empty()) return out;
      out.resize(chunkSize);
    }
    return {};
  }

 private:
  bool read() {
    state_.avail_in = static_cast<uInt>(std::fread(in_.data(), 1, in_.size(), file_.get()));
    state_.next_in = in_.data();
    return state_.avail_in > 0;
  }

  File file_;
  z_stream state_{};
  std::array<Bytef, chunkSize> in_;
  bool isOver_ = false;  ///< one stream; another may follow
};

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
  if (compressor_->isReady) {
    putOut(std::string(magic) + static_cast<char>(formatVersion));
  } else {
    compressor_.reset();
  }
}

RecordingFile::~RecordingFile() {
  if (file_ != nullptr) std::fclose(file_);
}

void RecordingFile::putOut(std::string_view bytes) {
  if (std::fwrite(bytes.data(), 1, bytes.size(), file_) != bytes.size()) compressor_.reset();
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
  if (std::fflush(file_) != 0) compressor_.reset();
}

void RecordingFile::finish() {
  deflate({}, Z_FINISH);
  std::fflush(file_);
  compressor_.reset();
}

Reader::Source openRecording(const std::string& path) {
  File file(std::fopen(path.c_str(), "rb"));
  if (!file) throw Damaged("it can't be read");
  std::string head(magic.size() + 1, '\0');
  if (std::fread(head.data(), 1, head.size(), file.get()) != head.size() || !head.starts_with(magic)) {
    throw Damaged("it is no recording");
  }
  if (const auto version = static_cast<std::uint8_t>(head.back()); version > formatVersion) {
    throw Damaged("it has format " + std::to_string(version) + ", which is newer than this program's format " +
                  std::to_string(formatVersion));
  }
  return [inflater = std::make_shared<Inflater>(std::move(file))] { return inflater->next(); };
}

}  // namespace kelvora::recording
