// The least program of the toolkit: a main window of the same size with nothing in it.

#include <QApplication>
#include <QMainWindow>

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QMainWindow window;
  window.setWindowTitle("Empty");
  window.resize(1280, 720);
  window.show();
  return QApplication::exec();
}
