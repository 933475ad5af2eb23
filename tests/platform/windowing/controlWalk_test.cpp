#include "platform/windowing/controlWalk.h"

#include <gtest/gtest.h>

#include "platform/form.h"

namespace kelvora {
namespace {

using Controls = std::vector<Control*>;

struct NestedForm : Form {
  NestedForm() : Form("", {}) {}

  Control first{this, {}};
  Control inFirst{&first, {}};
  Control deepInFirst{&inFirst, {}};
  Control second{this, {}};
  Control inSecond{&second, {}};
};

TEST(ControlWalk, VisitsEveryControlBeforeTheOnesItContains) {
  NestedForm form;
  Controls visited;
  visitControls(form, [&visited](Control& control) { visited.push_back(&control); });
  EXPECT_EQ(visited, (Controls{&form.first, &form.inFirst, &form.deepInFirst, &form.second, &form.inSecond}));
}

TEST(ControlWalk, TabOrderFollowsTheIndexWhereverTheControlIs) {
  NestedForm form;
  form.first.TabIndex = 7;
  form.deepInFirst.TabIndex = 0;
  form.inSecond.TabIndex = 3;
  EXPECT_EQ(controlsInTabOrder(form), (Controls{&form.deepInFirst, &form.inSecond, &form.first}));
}

TEST(ControlWalk, TabOrderOfEqualIndexesIsThatOfDeclaration) {
  NestedForm form;
  for (Control* control : {&form.second, &form.inFirst, &form.first}) control->TabIndex = 2;
  EXPECT_EQ(controlsInTabOrder(form), (Controls{&form.first, &form.inFirst, &form.second}));
}

}  // namespace
}  // namespace kelvora
