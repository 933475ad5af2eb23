#include "app/player/formState.h"

#include <algorithm>
#include <utility>

#include "app/player/controlState.h"
#include "platform/recording/handlers.h"
#include "platform/widgets.h"
#include "raster/twips.h"

namespace kelvora::player {

namespace {

template <class Archive>
void fields(Archive& archive, Form::Design& design) {
  archive.field(design.clientWidth);
  archive.field(design.clientHeight);
  archive.field(design.border);
  archive.field(design.back);
  archive.field(design.systemColours);
}

Form::Design designFrom(Unpack& structure) {
  Form::Design design;
  fields(structure, design);
  return design;
}

std::string structureOf(Form& form) {
  Pack pack;
  Form::Design design = form.design;
  fields(pack, design);
  const std::vector<Control*> controls = recording::controlsOf(form);
  pack.field(controls.size());
  for (std::size_t i = 1; i < controls.size(); ++i) {
    const auto container = std::find(controls.begin(), controls.end(), controls[i]->container()) - controls.begin();
    pack.field(static_cast<std::size_t>(container));
    packKind(pack, *controls[i]);
  }
  return std::move(pack.bytes);
}

}  // namespace

void FormReport::pack(Pack& pack, const std::vector<Form*>& forms, const std::vector<std::string>& boxes) {
  std::map<std::uint64_t, Told> visible;
  for (std::uint64_t number = 0; number < forms.size(); ++number) {
    const Form* form = forms[number];
    if (form != nullptr && form->Visible && !form->isUnloaded()) visible[number] = std::move(told_[number]);
  }
  told_ = std::move(visible);
  pack.field(told_.size());
  for (auto& [number, told] : told_) {
    Form& form = *forms[number];
    if (told.structure.empty()) told.structure = structureOf(form);
    pack.field(number);
    pack.field(told.structure);
    const std::vector<Control*> controls = recording::controlsOf(form);
    told.controls.resize(controls.size());
    for (std::size_t i = 0; i < controls.size(); ++i) {
      std::string properties = packProperties(*controls[i]);
      const bool isNew = properties != told.controls[i];
      pack.field(isNew);
      if (isNew) pack.field(told.controls[i] = std::move(properties));
    }
  }
  pack.field(boxes.size());
  for (const std::string& text : boxes) pack.field(text);
}

/// A form like the reported one.
class FormMirror::Copy : public Form {
 public:
  Copy(std::string packed, Unpack structure)
      : Form("", designFrom(structure)), structure_(std::move(packed)), all_{this} {
    const auto size = structure.value<std::size_t>();
    while (all_.size() < size) {
      Control* const container = all_.at(structure.value<std::size_t>());
      controls_.push_back(makeControl(structure, container));
      all_.push_back(controls_.back().get());
    }
  }
  // Contents before their containers.
  ~Copy() override {
    while (!controls_.empty()) controls_.pop_back();
  }

  const std::string& structure() const { return structure_; }
  void assign(Unpack& unpack) {
    for (Control* control : all_) {
      if (unpack.value<bool>()) assignProperties(*control, unpack.value<std::string>());
    }
  }

 private:
  std::string structure_;
  std::vector<std::unique_ptr<Control>> controls_;
  std::vector<Control*> all_;
};

/// A message box.
class FormMirror::Box : public Form {
 public:
  explicit Box(const std::string& text)
      : Form("Kelvora", {.clientWidth = width, .clientHeight = heightOf(text) + 900, .systemColours = true}),
        text_(this, {150, 150, width - 300, heightOf(text)}, text, {.systemColours = true}),
        ok_(this, {(width - 1200) / 2, heightOf(text) + 375, 1200, 375}, "OK") {}

  const std::string& text() const { return text_.Caption.get(); }

 private:
  static constexpr float width = 6000;

  static float heightOf(const std::string& text) {
    constexpr int lettersInLine = 50;
    constexpr float lineHeight = 255;
    const auto breaks = static_cast<int>(std::count(text.begin(), text.end(), '\n'));
    const int lines = std::min(24, breaks + 1 + static_cast<int>(text.size()) / lettersInLine);
    return static_cast<float>(lines) * lineHeight;
  }

  Label text_;
  Button ok_;
};

FormMirror::FormMirror() = default;
FormMirror::~FormMirror() = default;

void FormMirror::show(Unpack& unpack) {
  std::map<std::uint64_t, std::unique_ptr<Copy>> shown;
  for (auto count = unpack.value<std::size_t>(); count > 0; --count) {
    const auto number = unpack.value<std::uint64_t>();
    const auto structure = unpack.value<std::string>();
    std::unique_ptr<Copy>& copy = shown[number];
    copy = std::move(copies_[number]);
    if (!copy || copy->structure() != structure) copy = std::make_unique<Copy>(structure, Unpack(structure));
    copy->assign(unpack);
    if (!copy->Visible) open(*copy);
  }
  copies_ = std::move(shown);

  std::vector<std::string> texts(unpack.value<std::size_t>());
  for (std::string& text : texts) unpack.field(text);
  std::size_t same = 0;
  while (same < std::min(texts.size(), boxes_.size()) && boxes_[same]->text() == texts[same]) ++same;
  boxes_.resize(same);
  for (; same < texts.size(); ++same) {
    boxes_.push_back(std::make_unique<Box>(texts[same]));
    boxes_.back()->Show();
  }
}

/// Opens the game's main window at the screen's upper left, so that the player's fits beside it, and others above it.
void FormMirror::open(Form& form) {
  constexpr float corner = twipsPerPixel;  // not 0, which would leave the place to the desktop
  if (form.design.border == Form::Border::Sizable) {
    form.Left = corner;
    form.Top = corner;
  }
  form.Show();
}

std::vector<Form*> FormMirror::forms() const {
  std::vector<Form*> all;
  for (const auto& [number, copy] : copies_) all.push_back(copy.get());
  for (const auto& box : boxes_) all.push_back(box.get());
  return all;
}

}  // namespace kelvora::player
