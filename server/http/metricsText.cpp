#include "server/http/metricsText.h"

#include <array>
#include <charconv>
#include <chrono>
#include <cstddef>

namespace kelvora::server {

namespace {

std::string numberText(double value) {
  std::array<char, 32> text{};
  return {text.data(), std::to_chars(text.data(), text.data() + text.size(), value).ptr};
}

std::string inSeconds(std::chrono::nanoseconds time) { return numberText(std::chrono::duration<double>(time).count()); }

}  // namespace

void MetricsText::begin(std::string_view name, std::string_view type, std::string_view help) {
  name_ = name;
  text_ += "# HELP " + name_ + " " + std::string(help) + "\n# TYPE " + name_ + " " + std::string(type) + "\n";
}

void MetricsText::add(double value, std::string_view labels) { addLine("", numberText(value), labels); }

void MetricsText::addHistogram(std::string_view name, std::string_view help, const Histogram& histogram) {
  begin(name, "histogram", help);
  std::uint64_t count = 0;
  for (std::size_t i = 0; i < Histogram::bounds.size(); ++i) {
    count += histogram.counts()[i];
    addLine("_bucket", std::to_string(count), label("le", inSeconds(Histogram::bounds[i])));
  }
  count += histogram.counts().back();
  addLine("_bucket", std::to_string(count), label("le", "+Inf"));
  addLine("_sum", inSeconds(histogram.sum()), {});
  addLine("_count", std::to_string(count), {});
}

std::string MetricsText::label(std::string_view name, std::string_view value) {
  std::string text = std::string(name) + "=\"";
  for (const char c : value) {
    if (c == '"' || c == '\\') text += '\\';
    text += c < ' ' || c > '~' ? '?' : c;
  }
  return text + "\"";
}

HttpAnswer MetricsText::answer() const {
  return {.body = text_, .type = "text/plain; version=0.0.4; charset=utf-8", .mayKeepAlive = true};
}

void MetricsText::addLine(std::string_view suffix, std::string_view value, std::string_view labels) {
  text_ += name_;
  text_ += suffix;
  if (!labels.empty()) (text_ += '{').append(labels) += '}';
  (text_ += ' ').append(value) += '\n';
}

}  // namespace kelvora::server
