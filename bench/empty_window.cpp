#include <QApplication>
#include <QLineEdit>
#include <QMainWindow>
#include <memory>

// The least that a program of Qt Widgets costs: one empty window of the game's size. What the game is measured against.
// With the word "field" there is a field for text in it, which has the focus and thus a caret that blinks.
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
