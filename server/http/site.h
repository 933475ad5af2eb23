#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

#include "server/http/http.h"

namespace kelvora::server {

/// The files of a folder, served over HTTP as they are when asked for. Hidden files and targets of links that lead
/// outside aren't served. A file `name.gz` is the compressed copy of `name`.
class Site {
 public:
  /// Without a folder nothing is served. Throws std::runtime_error if the folder can't be read.
  explicit Site(std::filesystem::path folder = {});

  /// The file at the path; "/" is `index.html`. Status 304 if the client's copy is current. Nothing if there is no such
  /// file.
  std::optional<HttpAnswer> answer(const HttpRequest& request, std::string_view path) const;
  std::optional<HttpAnswer> answer(const HttpRequest& request) const { return answer(request, request.path()); }
  /// True if there is an `index.html`.
  bool hasPage() const { return find("/").has_value(); }

 private:
  std::optional<std::filesystem::path> find(std::string_view path) const;

  std::filesystem::path folder_;
};

/// The folder of the browser's page that belongs to a program in this folder: beside it, in its build tree or in its
/// installation. Empty if there is none.
std::filesystem::path usualSite(const std::filesystem::path& programFolder);

}  // namespace kelvora::server
