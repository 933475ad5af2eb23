#include <QApplication>
#include <QLineEdit>
#include <QMainWindow>
#include <memory>

// The minimum cost of a program with Qt Widgets: one empty window of the game's size, as a baseline. With the argument
// "field" it has a focused text field with a blinking caret.
int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  QMainWindow window;
  std::unique_ptr<QLineEdit> field;
  if (QApplication::arguments().contains("field")) {
    field = std::make_unique<QLineEdit>(&window);
    field->setFocus();
  }
  window.setWindowTitle("Empty window");
  window.resize(894, 690);
  window.show();
  return QApplication::exec();
}
