// Runs a fuzz target without a fuzzer: replays files and, with --seconds or --runs, mutates them, optionally with the
// words of a --dictionary. If a run crashes, its input is left in crash-<program> in the current folder.

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
// The sanitizers' callback, if they are linked.
extern "C" __attribute__((weak)) void __sanitizer_set_death_callback(void (*callback)());

namespace {

namespace fs = std::filesystem;

constexpr std::size_t maxInputSize = 4096;

std::string current;
std::string crashFile;

// Called on a crash, so it must not rely on anything but the existing text.
void leaveInput() {
  std::ofstream(crashFile, std::ios::binary) << current;
  std::cerr << "The input is left in " << fs::absolute(crashFile).string() << "\n";
}

void die(int signal) {
  leaveInput();
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

void run(std::string input) {
  current = std::move(input);
  std::vector<std::uint8_t> bytes(current.begin(), current.end());
  LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
}

/// The words of a dictionary as libFuzzer reads it: one per line, each byte as \xNN.
std::vector<std::string> readDictionary(std::istream& lines) {
  std::vector<std::string> words;
  for (std::string line; std::getline(lines, line);) {
    std::string& word = words.emplace_back();
    for (std::size_t at = 0; (at = line.find("\\x", at)) != std::string::npos; at += 4) {
      word += static_cast<char>(std::stoi(line.substr(at + 2, 2), nullptr, 16));
    }
  }
  return words;
}

class Mutator {
 public:
  Mutator(const std::vector<std::string>& corpus, const std::vector<std::string>& words, std::uint32_t seed)
      : corpus_(corpus), words_(words), random_(seed) {}

  std::string next() {
    std::string input = any();
    for (std::size_t i = below(6) + 1; i > 0; --i) mutate(input);
    input.resize(std::min(input.size(), maxInputSize));
    return input;
  }

 private:
  std::size_t below(std::size_t end) { return std::uniform_int_distribution<std::size_t>(0, end - 1)(random_); }
  const std::string& any() { return corpus_[below(corpus_.size())]; }
  char byte() {
    // Bytes with a meaning in the protocols are more likely.
    static constexpr std::string_view liked = "\x80\x81\x82\xFF\n|[]:~019.-eE ";
    return below(2) == 0 ? liked[below(liked.size())] : static_cast<char>(below(256));
  }
  void mutate(std::string& input) {
    const std::size_t at = below(input.size() + 1);
    const std::size_t length = std::min(below(16) + 1, input.size() - at);
    switch (below(words_.empty() ? 6 : 7)) {
      case 0:
        input.insert(at, 1, byte());
        break;
      case 1:
        input.erase(at, length);
        break;
      case 2:
        if (length > 0) input[at] = byte();
        break;
      case 3:
        input.insert(at, std::string(input, at, length));
        break;
      case 4: {  // the end of another input
        const std::string& other = any();
        input.replace(at, std::string::npos, other, below(other.size() + 1));
        break;
      }
      case 5: {  // a piece of another input
        const std::string& other = any();
        input.insert(at, other, below(other.size() + 1), below(64));
        break;
      }
      default:
        input.insert(at, words_[below(words_.size())]);
    }
  }

  const std::vector<std::string>& corpus_;
  const std::vector<std::string>& words_;
  std::mt19937 random_;
};

std::vector<fs::path> filesOf(const fs::path& path) {
  if (!fs::is_directory(path)) return {path};
  std::vector<fs::path> files;
  for (const auto& entry : fs::directory_iterator(path)) files.push_back(entry.path());
  std::ranges::sort(files);
  return files;
}

}  // namespace

int main(int argc, char** argv) {
  double seconds = 0;
  std::uint64_t runs = 0;
  std::uint32_t seed = 1;
  std::vector<std::string> corpus;
  std::vector<std::string> words;
  crashFile = "crash-" + fs::path(argv[0]).filename().string();
  for (int i = 1; i < argc; ++i) {
    const std::string_view argument = argv[i];
    const bool isOption = argument.starts_with("--");
    if (isOption && ++i == argc) {
      std::cerr << "Usage: " << argv[0] << " [--seconds S | --runs N] [--seed N] [--dictionary FILE] FILE|FOLDER...\n";
      return 2;
    }
    if (argument == "--seconds") seconds = std::atof(argv[i]);
    if (argument == "--runs") runs = std::strtoull(argv[i], nullptr, 10);
    if (argument == "--seed") seed = static_cast<std::uint32_t>(std::strtoul(argv[i], nullptr, 10));
    if (argument == "--dictionary") {
      std::ifstream lines(argv[i]);
      words = readDictionary(lines);
      if (words.empty()) {
        std::cerr << "no words in " << argv[i] << "\n";
        return 2;
      }
    }
    if (isOption) continue;
    for (const fs::path& file : filesOf(argument)) {
      std::ifstream stream(file, std::ios::binary);
      if (!stream) {
        std::cerr << "cannot read " << file << "\n";
        return 2;
      }
      corpus.emplace_back(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
    }
  }
  if (corpus.empty()) {
    std::cerr << "There is nothing to replay.\n";
    return 2;
  }
  if (__sanitizer_set_death_callback != nullptr) __sanitizer_set_death_callback(leaveInput);
  for (const int signal : {SIGILL, SIGABRT, SIGTRAP}) std::signal(signal, die);
  if (__sanitizer_set_death_callback == nullptr) std::signal(SIGSEGV, die);

  for (const std::string& input : corpus) run(input);
  std::cout << corpus.size() << " inputs replayed\n";
  if (seconds == 0 && runs == 0) return 0;
  Mutator mutator(corpus, words, seed);
  const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
  std::uint64_t done = 0;
  for (; runs != 0 ? done < runs : std::chrono::steady_clock::now() < end; ++done) run(mutator.next());
  std::cout << done << " mutations, seed " << seed << "\n";
}
