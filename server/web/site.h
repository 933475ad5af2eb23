#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <string_view>

#include "server/web/http.h"

namespace kelvora::server {

/// The files of a folder, served over HTTP. The folder is scanned once: files added later aren't served, nor are
/// targets of links that lead outside. Files that change are served as they are then. A file `name.gz` is the
/// compressed copy of `name`.
class Site {
 public:
  /// Without a folder nothing is served. Throws std::filesystem::filesystem_error if the folder can't be read.
  explicit Site(const std::filesystem::path& folder = {});

  bool isEmpty() const { return files_.empty(); }
  /// True if the path is served; "/" is `index.html`.
  bool has(std::string_view path) const { return find(path) != nullptr; }
  /// The file at the request's path, which `has` must accept. Status 304 if the client's copy is current.
  HttpAnswer answer(const HttpRequest& request) const;

 private:
  struct File {
    std::string type;
    std::filesystem::path plain;
    std::filesystem::path gzip;  ///< empty if there is none
  };

  const File* find(std::string_view path) const;

  std::map<std::string, File, std::less<>> files_;  // by path, "/index.html"
};

}  // namespace kelvora::server
