#include "server/config/configFile.h"

#include <algorithm>
#include <map>

#include "server/system/files.h"

namespace kelvora::server {

namespace {

constexpr std::size_t maxFileSize = std::size_t{64} << 10;

}  // namespace

Outcome readConfig(std::string_view text, const std::string& fileName, const TakeSetting& take) {
  text = withoutByteOrderMark(text);
  std::map<std::string_view, int> lines;  // by name
  for (int number = 1; !text.empty(); ++number) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = trimmedLine(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.empty() || line.starts_with('#')) continue;
    const std::string where = fileName + ":" + std::to_string(number) + ": ";
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos) return Outcome::refused(where + "expected \"name = value\"");
    const std::string_view name = trimmedLine(line.substr(0, equals));
    const auto [first, isNew] = lines.emplace(name, number);
    if (!isNew) {
      return Outcome::refused(where + std::string(name) + " is already set on line " + std::to_string(first->second));
    }
    const Outcome outcome = take(name, std::string(trimmedLine(line.substr(equals + 1))));
    if (outcome.isRefused()) return Outcome::refused(where + outcome.reason());
  }
  return Outcome::done();
}

Outcome readConfigFile(const std::string& fileName, const TakeSetting& take) {
  const FileText file = readFile(fileName, maxFileSize, true);
  if (file.text) return readConfig(*file.text, fileName, take);
  return Outcome::refused("cannot read " + fileName + ": " +
                          (file.error.empty() ? "there is no such file" : file.error));
}

}  // namespace kelvora::server
