#include "server/system/files.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "server/system/process.h"

namespace kelvora::server {

FileText readFile(const std::string& path, std::size_t maxSize, bool mayBePipe) {
  namespace fs = std::filesystem;
  std::error_code error;
  const fs::path file = pathFromUtf8(path);
  const fs::file_status status = fs::status(file, error);
  if (status.type() == fs::file_type::not_found) return {};
  if (error) return {.error = error.message()};
  const bool isFile = mayBePipe ? !fs::is_directory(status) : fs::is_regular_file(status);
  if (!isFile) return {.error = "not a file"};
  errno = 0;
  std::ifstream stream(file, std::ios::binary);
  std::string text(maxSize + 1, '\0');
  stream.read(text.data(), static_cast<std::streamsize>(text.size()));
  if (!stream.eof() && stream.gcount() == 0) return {.error = errno == 0 ? "unreadable" : std::strerror(errno)};
  text.resize(static_cast<std::size_t>(stream.gcount()));
  if (text.size() > maxSize) return {.error = "longer than " + std::to_string(maxSize >> 10U) + " KiB"};
  return {.text = std::move(text)};
}

std::string_view withoutByteOrderMark(std::string_view text) {
  constexpr std::string_view mark = "\xEF\xBB\xBF";
  if (text.starts_with(mark)) text.remove_prefix(mark.size());
  return text;
}

std::string_view trimmedLine(std::string_view line) {
  constexpr std::string_view blanks = " \t\r";
  const std::size_t first = line.find_first_not_of(blanks);
  return first == line.npos ? std::string_view() : line.substr(first, line.find_last_not_of(blanks) - first + 1);
}

void requireFolderOf(const std::string& path) {
  const std::filesystem::path folder = pathFromUtf8(path).parent_path();
  if (folder.empty() || std::filesystem::is_directory(folder)) return;
  throw std::runtime_error("cannot write " + path + ": there is no folder " + utf8FromPath(folder));
}

}  // namespace kelvora::server
