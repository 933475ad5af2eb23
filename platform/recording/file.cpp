#include <zlib.h>

#include <array>
#include <memory>
#include <string>

#include "platform/recording/format.h"
#include "platform/recording/stream.h"

namespace kelvora::recording {

namespace {

constexpr std::size_t chunkSize = 64 * 1024;

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

/// The file's contents, without what precedes the compressed part.
class Inflater {
 public:
  explicit Inflater(File file) : file_(std::move(file)) {
    if (inflateInit(&state_) != Z_OK) throw Damaged("out of memory");
  }
  ~Inflater() { inflateEnd(&state_); }
  Inflater(const Inflater&) = delete;
  Inflater& operator=(const Inflater&) = delete;

  std::string next() {
    std::string out(chunkSize, '\0');
    while (!isOver_) {
      if (state_.avail_in == 0) {
        state_.avail_in = static_cast<uInt>(std::fread(in_.data(), 1, in_.size(), file_.get()));
        state_.next_in = in_.data();
        if (state_.avail_in == 0) break;
      }
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
  File file_;
  z_stream state_{};
  std::array<Bytef, chunkSize> in_;
  bool isOver_ = false;
};

}  // namespace

struct Writer::Compressor {
  z_stream state{};
};

Writer::Writer(const std::string& path)
    : file_(std::fopen(path.c_str(), "wb")), compressor_(std::make_unique<Compressor>()) {
  if (file_ == nullptr || deflateInit(&compressor_->state, Z_BEST_COMPRESSION) != Z_OK) {
    compressor_.reset();
    return;
  }
  putOut(std::string(magic) + static_cast<char>(formatVersion));
}

Writer::~Writer() {
  finish();
  if (file_ != nullptr) std::fclose(file_);
}

bool Writer::isBroken() const { return !compressor_; }

void Writer::putOut(std::string_view bytes) {
  if (std::fwrite(bytes.data(), 1, bytes.size(), file_) != bytes.size()) {
    deflateEnd(&compressor_->state);
    compressor_.reset();
    return;
  }
  size_ += bytes.size();
}

void Writer::deflate(int mode) {
  if (compressor_) {
    z_stream& state = compressor_->state;
    state.next_in = reinterpret_cast<Bytef*>(pending_.data());
    state.avail_in = static_cast<uInt>(pending_.size());
    std::array<Bytef, chunkSize> out;
    do {
      state.next_out = out.data();
      state.avail_out = static_cast<uInt>(out.size());
      ::deflate(&state, mode);
      putOut({reinterpret_cast<const char*>(out.data()), out.size() - state.avail_out});
    } while (compressor_ && state.avail_out == 0);
  }
  pending_.clear();
}

void Writer::compress() {
  if (!pending_.empty()) deflate(Z_NO_FLUSH);
}

void Writer::flush() {
  deflate(Z_SYNC_FLUSH);
  if (compressor_ && std::fflush(file_) != 0) {
    deflateEnd(&compressor_->state);
    compressor_.reset();
  }
}

void Writer::finish() {
  if (!compressor_) return;
  deflate(Z_FINISH);
  if (!compressor_) return;
  std::fflush(file_);
  deflateEnd(&compressor_->state);
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
