#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>

#include "server/http/histogram.h"
#include "server/http/http.h"

namespace kelvora::server {

/// Writes figures in the text format of Prometheus. The samples of a family follow its beginning.
class MetricsText {
 public:
  /// Begins a family. `help` is one line without backslashes.
  void begin(std::string_view name, std::string_view type, std::string_view help);
  /// Adds a sample to the family. `labels` are as `label` returns them, with commas between them.
  void add(std::integral auto value, std::string_view labels = {}) { addLine("", std::to_string(value), labels); }
  void add(double value, std::string_view labels = {});
  /// Adds a family with a single sample, a gauge.
  void addGauge(std::string_view name, std::string_view help, auto value) {
    begin(name, "gauge", help);
    add(value);
  }
  /// Adds a family of durations in seconds.
  void addHistogram(std::string_view name, std::string_view help, const Histogram& histogram);

  /// `name="value"`. Other bytes than ASCII text become question marks.
  static std::string label(std::string_view name, std::string_view value);

  /// The answer with everything added so far.
  HttpAnswer answer() const;

 private:
  void addLine(std::string_view suffix, std::string_view value, std::string_view labels);

  std::string text_;
  std::string name_;
};

}  // namespace kelvora::server
