#include "server/web/site.h"

#include <array>
#include <fstream>
#include <memory>
#include <utility>

namespace kelvora::server {

namespace fs = std::filesystem;

namespace {

constexpr std::array<std::pair<std::string_view, std::string_view>, 15> types{{
    {".html", "text/html; charset=utf-8"},
    {".js", "text/javascript; charset=utf-8"},
    {".css", "text/css; charset=utf-8"},
    {".wasm", "application/wasm"},
    {".json", "application/json"},
    {".webmanifest", "application/manifest+json"},
    {".png", "image/png"},
    {".jpg", "image/jpeg"},
    {".svg", "image/svg+xml"},
    {".ico", "image/x-icon"},
    {".woff2", "font/woff2"},
    {".ttf", "font/ttf"},
    {".wav", "audio/wav"},
    {".mp3", "audio/mpeg"},
    {".txt", "text/plain; charset=utf-8"},
}};

std::string typeOf(const fs::path& file) {
  for (const auto& [ending, type] : types) {
    if (file.extension() == ending) return std::string(type);
  }
  return "application/octet-stream";
}

/// Pads the body with zeros if the file has become shorter, because its length has already been sent.
BodySource contents(const fs::path& file, std::size_t size) {
  return [stream = std::make_shared<std::ifstream>(file, std::ios::binary), left = size](std::size_t most) mutable {
    std::string piece(std::min(most, left), '\0');
    stream->read(piece.data(), static_cast<std::streamsize>(piece.size()));
    left -= piece.size();
    return piece;
  };
}

}  // namespace

Site::Copy Site::copyOf(const fs::path& file) {
  const auto changed = fs::last_write_time(file).time_since_epoch().count();
  const std::size_t size = fs::file_size(file);
  return {file, size, '"' + std::to_string(size) + "-" + std::to_string(changed) + '"'};
}

Site::Site(const fs::path& folder) {
  if (folder.empty()) return;
  const fs::path root = fs::canonical(folder);
  for (const auto& entry : fs::recursive_directory_iterator(root)) {
    if (!entry.is_regular_file() || entry.path().extension() == ".gz") continue;
    const auto real = fs::canonical(entry.path());
    if (std::mismatch(root.begin(), root.end(), real.begin(), real.end()).first != root.end()) continue;
    File file{.type = typeOf(entry.path()), .plain = copyOf(real), .gzip = {}};
    fs::path compressed = real;
    compressed += ".gz";
    if (fs::is_regular_file(fs::symlink_status(compressed))) file.gzip = copyOf(compressed);
    files_.emplace("/" + entry.path().lexically_relative(root).generic_string(), std::move(file));
  }
}

const Site::File* Site::find(std::string_view path) const {
  const auto found = files_.find(path == "/" ? std::string_view("/index.html") : path);
  return found == files_.end() ? nullptr : &found->second;
}

HttpAnswer Site::answer(const HttpRequest& request) const {
  const File& file = *find(request.path());
  const bool isCompressed = request.acceptsGzip && !file.gzip.file.empty();
  const Copy& copy = isCompressed ? file.gzip : file.plain;
  HttpAnswer answer{.type = file.type, .mayKeepAlive = true};
  // The client asks each time whether the file has changed, so that updates are seen at once.
  answer.headers = {"Cache-Control: no-cache", "ETag: " + copy.tag, "Vary: Accept-Encoding",
                    "X-Content-Type-Options: nosniff"};
  if (request.ifNoneMatch == copy.tag) {
    answer.status = 304;
    return answer;
  }
  if (isCompressed) answer.headers.emplace_back("Content-Encoding: gzip");
  answer.moreSize = copy.size;
  answer.more = contents(copy.file, copy.size);
  return answer;
}

}  // namespace kelvora::server
