#pragma once

#include <QMainWindow>
#include <QPalette>

#include "platform/form.h"

namespace kelvora {

/// Fills the window's menu bar with the form's menu items, if any. `colours` are the form's own.
void realizeMenu(Form& form, QMainWindow& window, QPalette colours);

}  // namespace kelvora
