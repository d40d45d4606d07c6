// PLACEHOLDER until the main window lands.
#include <QApplication>
#include <QMainWindow>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QMainWindow window;
    window.setWindowTitle(QStringLiteral("Velmora"));
    window.show();
    return app.exec();
}
