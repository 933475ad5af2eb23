#include <QApplication>
#include <QMainWindow>

// The least that a program of Qt Widgets costs: one empty window of the game's size. What the game is measured against.
int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  QMainWindow window;
  window.setWindowTitle("Empty window");
  window.resize(894, 690);
  window.show();
  return QApplication::exec();
}
