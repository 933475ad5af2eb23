#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <string_view>

#include "server/web/http.h"

namespace kelvora::server {

/// The files of a folder, served over HTTP. The folder is looked through once: what appears later isn't served, nor is
/// anything that a link leads to outside of it. A file `name.gz` is the compressed copy of `name`.
class Site {
 public:
  /// Without a folder nothing is served. A folder that can't be read throws std::filesystem::filesystem_error.
  explicit Site(const std::filesystem::path& folder = {});

  bool isEmpty() const { return files_.empty(); }
  /// True for a path that is answered here; "/" is `index.html`.
  bool has(std::string_view path) const { return find(path) != nullptr; }
  HttpAnswer answer(const HttpRequest& request) const;

 private:
  struct Copy {
    std::filesystem::path file;
    std::size_t size = 0;
    std::string tag;  ///< with its quotes
  };
  struct File {
    std::string type;
    Copy plain;
    Copy gzip;  ///< without a file if there is none
  };

  static Copy copyOf(const std::filesystem::path& file);
  const File* find(std::string_view path) const;

  std::map<std::string, File, std::less<>> files_;  // by their paths, "/index.html"
};

}  // namespace kelvora::server
