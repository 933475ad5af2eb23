#include "server/http/site.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

#include "base/numberFromText.h"
#include "server/system/process.h"

namespace kelvora::server {

namespace fs = std::filesystem;

namespace {

constexpr std::array<std::pair<std::string_view, std::string_view>, 16> types{{
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
    {".otf", "font/otf"},
    {".flac", "audio/flac"},
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
BodySource contents(std::shared_ptr<std::ifstream> stream, std::size_t size) {
  return [stream = std::move(stream), left = size](std::size_t maxSize) mutable {
    std::string piece(std::min(maxSize, left), '\0');
    stream->read(piece.data(), static_cast<std::streamsize>(piece.size()));
    left -= piece.size();
    return piece;
  };
}

struct Copy {
  std::shared_ptr<std::ifstream> stream;
  std::size_t size = 0;
  std::string tag;  // including its quotes
};

/// The file as it is now. It may be replaced at any time, so its size is that of the opened file. The tag comes first:
/// a file that is replaced in between is sent again, and not taken for the newer one.
std::optional<Copy> openCopy(const fs::path& file) {
  std::error_code error;
  if (!fs::is_regular_file(fs::symlink_status(file, error))) return std::nullopt;
  const auto changed = fs::last_write_time(file, error).time_since_epoch().count();
  if (error) return std::nullopt;
  auto stream = std::make_shared<std::ifstream>(file, std::ios::binary | std::ios::ate);
  const auto size = static_cast<std::int64_t>(stream->tellg());
  if (size < 0) return std::nullopt;
  stream->seekg(0);
  return Copy{.stream = std::move(stream),
              .size = static_cast<std::size_t>(size),
              .tag = '"' + std::to_string(size) + "-" + std::to_string(changed) + '"'};
}

/// True for names like "game.wasm", but not for "..", ".hidden" or an empty one. Windows has drives, streams and
/// another separator in names.
bool isPlainName(std::string_view name) {
  const auto isOdd = [](char c) { return static_cast<unsigned char>(c) < ' ' || c == ':' || c == '\\'; };
  return !name.empty() && name.front() != '.' && std::none_of(name.begin(), name.end(), isOdd);
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

struct Part {
  std::size_t first = 0;
  std::size_t size = 0;
};

/// The part of a file that "bytes=FIRST-LAST" or "bytes=FIRST-" names. The whole file may answer any other range.
std::optional<Part> partOf(std::size_t fileSize, std::string_view range) {
  constexpr std::string_view unit = "bytes=";
  const std::size_t dash = range.find('-');
  if (!range.starts_with(unit) || dash == std::string_view::npos) return std::nullopt;
  const auto first = numberFromText<std::size_t>(range.substr(unit.size(), dash - unit.size()));
  const std::string_view end = range.substr(dash + 1);
  const auto last = end.empty() ? std::optional(fileSize) : numberFromText<std::size_t>(end);
  if (!first || !last || *first > *last || *first >= fileSize) return std::nullopt;
  return Part{.first = *first, .size = std::min(*last, fileSize - 1) - *first + 1};
}

}  // namespace

Site::Site(fs::path folder) : folder_(std::move(folder)) {
  if (folder_.empty()) return;
  std::error_code error;
  const fs::directory_iterator probe(folder_, error);
  if (error)
    throw std::runtime_error("the site's folder " + utf8FromPath(folder_) + " can't be read: " + error.message());
}

std::optional<fs::path> Site::find(std::string_view path) const {
  if (folder_.empty() || !path.starts_with('/')) return std::nullopt;
  const std::string relative(path == "/" ? "index.html" : path.substr(1));
  for (std::string_view rest = relative;;) {
    const std::size_t slash = rest.find('/');
    if (!isPlainName(rest.substr(0, slash))) return std::nullopt;
    if (slash == std::string_view::npos) break;
    rest.remove_prefix(slash + 1);
  }
  std::error_code error;
  const fs::path root = fs::canonical(folder_, error);
  if (error) return std::nullopt;
  const fs::path file = fs::canonical(root / pathFromUtf8(relative), error);
  if (error || file.extension() == ".gz") return std::nullopt;
  const bool isInside = std::mismatch(root.begin(), root.end(), file.begin(), file.end()).first == root.end();
  return isInside && fs::is_regular_file(file, error) ? std::optional(file) : std::nullopt;
}

std::optional<HttpAnswer> Site::answer(const HttpRequest& request, std::string_view path) const {
  const auto file = find(path);
  if (!file) return std::nullopt;
  std::optional<Copy> copy;
  if (request.acceptsGzip) copy = openCopy(fs::path(*file) += ".gz");
  const bool isCompressed = copy.has_value();
  if (!copy) copy = openCopy(*file);
  if (!copy) return std::nullopt;
  HttpAnswer answer{.type = typeOf(*file), .mayKeepAlive = true};
  // The client asks each time whether the file has changed, so that updates are seen at once.
  answer.headers = {"Cache-Control: no-cache", "ETag: " + copy->tag, "Vary: Accept-Encoding",
                    "X-Content-Type-Options: nosniff"};
  if (names(request.ifNoneMatch, copy->tag)) {
    answer.status = 304;
    return answer;
  }
  answer.headers.emplace_back(isCompressed ? "Content-Encoding: gzip" : "Accept-Ranges: bytes");
  answer.moreSize = copy->size;
  const bool mayBePart = request.method == "GET" && !isCompressed;
  if (const auto part = mayBePart ? partOf(copy->size, request.range) : std::nullopt) {
    answer.status = 206;
    answer.moreSize = part->size;
    answer.headers.push_back("Content-Range: bytes " + std::to_string(part->first) + "-" +
                             std::to_string(part->first + part->size - 1) + "/" + std::to_string(copy->size));
    copy->stream->seekg(static_cast<std::streamoff>(part->first));
  }
  answer.more = contents(std::move(copy->stream), answer.moreSize);
  return answer;
}

fs::path usualSite(const fs::path& programFolder) {
  std::error_code ignored;
  for (const char* place : {"site", "../web/site", "../share/kelvora-server/site"}) {
    if (fs::is_directory(programFolder / place, ignored)) return fs::canonical(programFolder / place, ignored);
  }
  return {};
}

}  // namespace kelvora::server
