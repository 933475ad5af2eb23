#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "app/player/pack.h"
#include "platform/form.h"

namespace kelvora::player {

/// Describes forms for another process, which shows them: first everything, then what has changed.
class FormReport {
 public:
  /// Packs the visible forms and the texts of the open message boxes. Forms are known by their index.
  void pack(Pack& pack, const std::vector<Form*>& forms, const std::vector<std::string>& boxes);

 private:
  struct Told {
    std::string structure;
    std::vector<std::string> controls;
  };
  std::map<std::uint64_t, Told> told_;
};

/// Shows what a FormReport has packed, as forms without handlers. Nothing that the user does there has an effect.
class FormMirror {
 public:
  FormMirror();
  ~FormMirror();

  /// Shows the next report.
  void show(Unpack& unpack);
  /// The visible forms by their number, and the boxes.
  std::vector<Form*> forms() const;

 private:
  class Copy;
  class Box;

  static void open(Form& form);

  std::map<std::uint64_t, std::unique_ptr<Copy>> copies_;
  std::vector<std::unique_ptr<Box>> boxes_;
};

}  // namespace kelvora::player
