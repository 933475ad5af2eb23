#pragma once

#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "platform/recording/stream.h"

namespace kelvora::recording {

/// A recording's file, compressed by zlib.
class RecordingFile : public Sink {
 public:
  /// Creates the file, or empties it.
  explicit RecordingFile(const std::string& path);
  ~RecordingFile() override;
  RecordingFile(const RecordingFile&) = delete;
  RecordingFile& operator=(const RecordingFile&) = delete;

  bool isGood() const override { return isGood_; }
  void put(std::string_view contents) override;
  void flush() override;
  void finish() override;

 private:
  struct Compressor;
  void deflate(std::string_view contents, int mode);
  void putOut(std::string_view bytes);
  void fail();

  std::FILE* file_;
  std::unique_ptr<Compressor> compressor_;  ///< null after an error or the end
  bool isGood_ = false;
};

/// Called with the share of the file that has been read, from 0 to 1.
using OnProgress = std::function<void(double share)>;
/// The uncompressed contents of a recording's file. Throws Damaged if it is no recording or has a newer format.
Reader::Source openRecording(const std::string& path, OnProgress onProgress = {});

}  // namespace kelvora::recording
