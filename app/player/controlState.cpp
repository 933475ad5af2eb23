#include "app/player/controlState.h"

#include <cstdint>
#include <utility>
#include <vector>

#include "platform/form.h"
#include "platform/grid.h"
#include "platform/menuItem.h"
#include "platform/pictureBox.h"
#include "platform/widgets.h"

namespace kelvora::player {

namespace {

enum class Kind : std::uint8_t {
  Label,
  TextBox,
  Button,
  CheckBox,
  Frame,
  Image,
  Shape,
  Slider,
  Picture,
  Grid,
  Menu,
  Timer
};

// A kind's design.

template <class Archive>
void fields(Archive& archive, LabelDesign& design) {
  archive.field(design.fore);
  archive.field(design.back);
  archive.field(design.transparent);
  archive.field(design.border);
  archive.field(design.alignment);
  archive.field(design.font);
  archive.field(design.autoSize);
  archive.field(design.systemColours);
}

template <class Archive>
void fields(Archive& archive, TextBox::Design& design) {
  archive.field(design.fore);
  archive.field(design.back);
  archive.field(design.font);
  archive.field(design.systemColours);
}

// A kind's properties.

template <class Archive>
void fields(Archive& archive, Label& label) {
  archive.field(label.Caption);
  archive.field(label.ForeColor);
  archive.field(label.BackColor);
  archive.field(label.BorderStyle);
  archive.field(label.FontSize);
}

template <class Archive>
void fields(Archive& archive, Shape& shape) {
  archive.field(shape.BorderColor);
  archive.field(shape.BorderStyle);
  archive.field(shape.BorderWidth);
}

template <class Archive>
void fields(Archive& archive, CheckBox& box) {
  archive.field(box.Caption);
  archive.field(box.Value);
}

template <class Archive>
void fields(Archive& archive, MenuItem& item) {
  archive.field(item.Caption);
  archive.field(item.Checked);
  archive.field(item.Enabled);
}

void fields(Pack& pack, PictureBox& box) {
  pack.field(PicturePointer(std::make_shared<Picture>(
      Picture{box.pixelWidth(), box.pixelHeight(), {box.pixels().begin(), box.pixels().end()}})));
}

void fields(Unpack& unpack, PictureBox& box) {
  box.fitImage();
  box.setPicture(unpack.value<PicturePointer>());
}

void fields(Pack& pack, Grid& grid) {
  const int rows = grid.Rows;
  const int columns = grid.Cols;
  pack.field(rows);
  pack.field(columns);
  pack.field(int{grid.FixedRows});
  pack.field(int{grid.FixedCols});
  for (int column = 0; column < columns; ++column) {
    pack.field(grid.ColWidth(column));
    pack.field(grid.ColAlignment(column));
  }
  for (int row = 0; row < rows; ++row) {
    for (int column = 0; column < columns; ++column) pack.field(grid.TextMatrix(row, column));
  }
  pack.field(int{grid.Row});
  pack.field(int{grid.Col});
}

void fields(Unpack& unpack, Grid& grid) {
  const int rows = unpack.value<int>();
  const int columns = unpack.value<int>();
  grid.Rows = 0;
  grid.Cols = columns;
  const int fixedRows = unpack.value<int>();
  const int fixedColumns = unpack.value<int>();
  for (int column = 0; column < columns; ++column) {
    grid.ColWidth(column, unpack.value<float>());
    grid.ColAlignment(column, unpack.value<int>());
  }
  for (int row = 0; row < rows; ++row) {
    std::string line;
    for (int column = 0; column < columns; ++column) {
      line += (column > 0 ? "\t" : "") + unpack.value<std::string>();
    }
    grid.AddItem(line);
  }
  if (fixedRows < grid.Rows) grid.FixedRows = fixedRows;
  if (fixedColumns < grid.Cols) grid.FixedCols = fixedColumns;
  const int row = unpack.value<int>();
  grid.adoptCell(row, unpack.value<int>());
}

template <class Archive>
void fieldsByKind(Archive& archive, Control& control) {
  if (auto* form = dynamic_cast<Form*>(&control)) {
    archive.field(form->Caption);
    archive.field(static_cast<Property<float>&>(form->Width));
    archive.field(static_cast<Property<float>&>(form->Height));
    return;
  }
  archive.field(control.Left);
  archive.field(control.Top);
  archive.field(static_cast<Property<float>&>(control.Width));
  archive.field(static_cast<Property<float>&>(control.Height));
  archive.field(control.Visible);
  archive.field(control.ToolTipText);
  if (auto* label = dynamic_cast<Label*>(&control)) return fields(archive, *label);
  if (auto* textBox = dynamic_cast<TextBox*>(&control)) return archive.field(textBox->Text);
  if (auto* button = dynamic_cast<Button*>(&control)) return archive.field(button->Caption);
  if (auto* box = dynamic_cast<CheckBox*>(&control)) return fields(archive, *box);
  if (auto* image = dynamic_cast<Image*>(&control)) return archive.field(image->Picture);
  if (auto* shape = dynamic_cast<Shape*>(&control)) return fields(archive, *shape);
  if (auto* slider = dynamic_cast<Slider*>(&control)) return archive.field(static_cast<Property<int>&>(slider->Value));
  if (auto* picture = dynamic_cast<PictureBox*>(&control)) return fields(archive, *picture);
  if (auto* grid = dynamic_cast<Grid*>(&control)) return fields(archive, *grid);
  if (auto* item = dynamic_cast<MenuItem*>(&control)) return fields(archive, *item);
}

}  // namespace

void packKind(Pack& pack, const Control& control) {
  const auto kind = [&](Kind value) { pack.field(value); };
  if (const auto* label = dynamic_cast<const Label*>(&control)) {
    kind(Kind::Label);
    LabelDesign design = label->design;
    fields(pack, design);
  } else if (const auto* textBox = dynamic_cast<const TextBox*>(&control)) {
    kind(Kind::TextBox);
    TextBox::Design design = textBox->design;
    fields(pack, design);
  } else if (dynamic_cast<const Button*>(&control)) {
    kind(Kind::Button);
  } else if (dynamic_cast<const CheckBox*>(&control)) {
    kind(Kind::CheckBox);
  } else if (const auto* frame = dynamic_cast<const Frame*>(&control)) {
    kind(Kind::Frame);
    pack.field(frame->Caption);
    pack.field(frame->ForeColor);
    pack.field(frame->BackColor);
    pack.field(frame->border);
  } else if (dynamic_cast<const Image*>(&control)) {
    kind(Kind::Image);
  } else if (const auto* shape = dynamic_cast<const Shape*>(&control)) {
    kind(Kind::Shape);
    pack.field(shape->FillColor);
  } else if (const auto* slider = dynamic_cast<const Slider*>(&control)) {
    kind(Kind::Slider);
    pack.field(slider->Min);
    pack.field(slider->Max);
  } else if (dynamic_cast<const PictureBox*>(&control)) {
    kind(Kind::Picture);
  } else if (dynamic_cast<const Grid*>(&control)) {
    kind(Kind::Grid);
  } else if (dynamic_cast<const MenuItem*>(&control)) {
    kind(Kind::Menu);
  } else {
    kind(Kind::Timer);
  }
}

std::unique_ptr<Control> makeControl(Unpack& unpack, Control* container) {
  switch (unpack.value<Kind>()) {
    case Kind::Label: {
      LabelDesign design;
      fields(unpack, design);
      return std::make_unique<Label>(container, Place{}, "", design);
    }
    case Kind::TextBox: {
      TextBox::Design design;
      fields(unpack, design);
      return std::make_unique<TextBox>(container, Place{}, "", design);
    }
    case Kind::Button:
      return std::make_unique<Button>(container, Place{}, "");
    case Kind::CheckBox:
      return std::make_unique<CheckBox>(container, Place{}, "", 0);
    case Kind::Frame: {
      const auto caption = unpack.value<std::string>();
      const auto fore = unpack.value<Colour>();
      const auto back = unpack.value<Colour>();
      return std::make_unique<Frame>(container, Place{}, caption, fore, back, unpack.value<bool>());
    }
    case Kind::Image:
      return std::make_unique<Image>(container, Place{});
    case Kind::Shape:
      return std::make_unique<Shape>(container, Place{}, unpack.value<Colour>());
    case Kind::Slider: {
      const int minimum = unpack.value<int>();
      return std::make_unique<Slider>(container, Place{}, minimum, unpack.value<int>());
    }
    case Kind::Picture:
      return std::make_unique<PictureBox>(container, Place{});
    case Kind::Grid:
      return std::make_unique<Grid>(container, Place{});
    case Kind::Menu:
      return std::make_unique<MenuItem>(container, "");
    case Kind::Timer:
      break;
  }
  auto timer = std::make_unique<IntervalTimer>(container, 0);
  timer->Enabled = false;
  return timer;
}

std::string packProperties(Control& control) {
  Pack pack;
  fieldsByKind(pack, control);
  return std::move(pack.bytes);
}

void assignProperties(Control& control, const std::string& packed) {
  Unpack unpack(packed);
  fieldsByKind(unpack, control);
}

}  // namespace kelvora::player
