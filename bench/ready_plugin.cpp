// Loaded by a started program as any plugin of the toolkit's: tells the measurement, with the title of the main window,
// that this is painted and the program waits for its operator.

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QEvent>
#include <QGenericPlugin>
#include <QThread>
#include <QVariant>
#include <cstdio>
#include <cstdlib>

namespace vellumark::bench {

class Ready : public QObject {
  Q_OBJECT

 public:
  Ready() {
    QCoreApplication::instance()->installEventFilter(this);
    connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, this, &Ready::Waits);
  }

  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::Paint && watched->inherits("QMainWindow")) main_ = watched;
    return false;
  }

 private:
  void Waits() {
    // What the program itself lets through on its way is no waiting.
    if (main_ == nullptr || QThread::currentThread()->loopLevel() == 0) return;
    std::puts(main_->property("windowTitle").toString().toUtf8().constData());
    std::fflush(stdout);
    std::_Exit(0);
  }

  QObject* main_ = nullptr;
};

class ReadyPlugin : public QGenericPlugin {
  Q_OBJECT
  Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "ready_plugin.json")

 public:
  QObject* create(const QString&, const QString&) override { return new Ready; }
};

}  // namespace vellumark::bench

#include "ready_plugin.moc"
