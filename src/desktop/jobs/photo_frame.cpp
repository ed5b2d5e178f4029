#include "desktop/jobs/photo_frame.h"

#include <QBuffer>
#include <QDragEnterEvent>
#include <QImageReader>
#include <QMimeData>
#include <QPainter>
#include <QPointer>
#include <QThreadPool>

#include "core/base/refusal.h"
#include "desktop/kit/look.h"

namespace vellumark::desktop {
namespace {

QImage Fitted(const std::string& bytes, QSize size) {
  QByteArray data = QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size()));
  QBuffer buffer(&data);
  QImageReader reader(&buffer);
  reader.setAutoTransform(true);
  const QSize own = reader.size();
  if (own.isValid() && (own.width() > size.width() || own.height() > size.height()))
    reader.setScaledSize(own.scaled(size, Qt::KeepAspectRatio));
  return reader.read();
}

QString FileOf(const QMimeData& data) {
  const QList<QUrl> urls = data.urls();
  return urls.size() == 1 && urls.front().isLocalFile() ? urls.front().toLocalFile() : QString();
}

}  // namespace

PictureLoader::PictureLoader(QObject* parent) : QObject(parent) {}

void PictureLoader::Load(std::function<std::string()> read, QSize size, std::function<void(const QImage&)> shown) {
  const QPointer<PictureLoader> self(this);
  QThreadPool::globalInstance()->start(
      [self, wanted = wanted_, read = std::move(read), size, shown = std::move(shown)] {
        QImage image;
        try {
          image = Fitted(read(), size);
        } catch (const Failure&) {
          image = {};  // a file that went meanwhile is a picture that is missing
        }
        QMetaObject::invokeMethod(
            qApp,
            [self, wanted, image, shown] {
              if (self != nullptr && self->wanted_ == wanted) shown(image);
            },
            Qt::QueuedConnection);
      });
}

PhotoFrame::PhotoFrame(const QString& name) {
  setObjectName(name);
  setAcceptDrops(true);
  setMinimumSize(200, 120);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
  setAccessibleName(tr("Photo"));
}

void PhotoFrame::Show(const QImage& image, const QString& text) {
  image_ = image;
  text_ = text;
  update();
}

void PhotoFrame::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const Colors& colors = Look::Now();
  painter.fillRect(rect(), colors.surface);
  painter.setPen(colors.line);
  painter.drawRect(rect().adjusted(0, 0, -1, -1));
  if (image_.isNull()) {
    painter.setPen(colors.quiet);
    painter.drawText(rect().adjusted(space::kUnit, space::kUnit, -space::kUnit, -space::kUnit),
                     Qt::AlignCenter | Qt::TextWordWrap, text_);
    return;
  }
  const QRect room = rect().adjusted(space::kTight, space::kTight, -space::kTight, -space::kTight);
  QRect place(QPoint(), image_.size().scaled(room.size(), Qt::KeepAspectRatio));
  place.moveCenter(room.center());
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  painter.drawImage(place, image_);
}

void PhotoFrame::dragEnterEvent(QDragEnterEvent* event) {
  if (!FileOf(*event->mimeData()).isEmpty()) event->acceptProposedAction();
}

void PhotoFrame::dropEvent(QDropEvent* event) {
  const QString path = FileOf(*event->mimeData());
  if (path.isEmpty()) return;
  event->acceptProposedAction();
  Q_EMIT Dropped(path);
}

}  // namespace vellumark::desktop
