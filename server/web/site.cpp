#include "server/web/site.h"

#include <array>
#include <fstream>
#include <memory>
#include <optional>
#include <system_error>
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

struct Copy {
  std::size_t size = 0;
  std::string tag;  // including its quotes
};

/// The file as it is now, which may have been replaced or removed since the start.
std::optional<Copy> copyOf(const fs::path& file) {
  std::error_code error;
  if (!fs::is_regular_file(fs::symlink_status(file, error))) return std::nullopt;
  const std::size_t size = fs::file_size(file, error);
  if (error) return std::nullopt;
  const auto changed = fs::last_write_time(file, error).time_since_epoch().count();
  if (error) return std::nullopt;
  return Copy{size, '"' + std::to_string(size) + "-" + std::to_string(changed) + '"'};
}

/// True if an If-None-Match names the tag, by itself or in a list, as "W/..." too, or is "*".
bool names(std::string_view condition, std::string_view tag) {
  if (condition == "*") return true;
  for (std::size_t start; (start = condition.find('"')) != std::string_view::npos;) {
    const std::size_t end = condition.find('"', start + 1);
    if (end == std::string_view::npos) return false;
    if (condition.substr(start, end + 1 - start) == tag) return true;
    condition.remove_prefix(end + 1);
  }
  return false;
}

}  // namespace

Site::Site(const fs::path& folder) {
  if (folder.empty()) return;
  const fs::path root = fs::canonical(folder);
  for (const auto& entry : fs::recursive_directory_iterator(root)) {
    if (!entry.is_regular_file() || entry.path().extension() == ".gz") continue;
    const auto real = fs::canonical(entry.path());
    if (std::mismatch(root.begin(), root.end(), real.begin(), real.end()).first != root.end()) continue;
    File file{.type = typeOf(entry.path()), .plain = real, .gzip = {}};
    fs::path compressed = real;
    compressed += ".gz";
    if (fs::is_regular_file(fs::symlink_status(compressed))) file.gzip = compressed;
    files_.emplace("/" + entry.path().lexically_relative(root).generic_string(), std::move(file));
  }
}

const Site::File* Site::find(std::string_view path) const {
  const auto found = files_.find(path == "/" ? std::string_view("/index.html") : path);
  return found == files_.end() ? nullptr : &found->second;
}

HttpAnswer Site::answer(const HttpRequest& request) const {
  const File& file = *find(request.path());
  const bool isCompressed = request.acceptsGzip && !file.gzip.empty();
  const fs::path& path = isCompressed ? file.gzip : file.plain;
  const auto copy = copyOf(path);
  if (!copy) return {.status = 404, .body = "This page does not exist.\n"};
  HttpAnswer answer{.type = file.type, .mayKeepAlive = true};
  // The client asks each time whether the file has changed, so that updates are seen at once.
  answer.headers = {"Cache-Control: no-cache", "ETag: " + copy->tag, "Vary: Accept-Encoding",
                    "X-Content-Type-Options: nosniff"};
  if (names(request.ifNoneMatch, copy->tag)) {
    answer.status = 304;
    return answer;
  }
  if (isCompressed) answer.headers.emplace_back("Content-Encoding: gzip");
  answer.moreSize = copy->size;
  answer.more = contents(path, copy->size);
  return answer;
}

}  // namespace kelvora::server
