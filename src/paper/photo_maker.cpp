#include "paper/photo_maker.h"

#include <fmt/format.h>

#include <QBuffer>
#include <QImage>
#include <QImageReader>
#include <QImageWriter>
#include <QPainter>

#include "core/base/text.h"

namespace vellumark::paper {
namespace {

constexpr int kMostMegabytes = 1024;  // of a decoded picture
constexpr double kMostPixels = 200e6;
constexpr int kQuality = 90;

std::unexpected<Refusal> NoPhoto(const std::string& name, std::string_view why) {
  return Refuse(std::string(kPhotoTitle), fmt::format("{} cannot be used as a photo: {}.", name, why), "PhotoName");
}

QImage OnWhite(const QImage& image) {
  if (!image.hasAlphaChannel()) return image;
  QImage paper(image.size(), QImage::Format_RGB32);
  paper.fill(Qt::white);
  QPainter(&paper).drawImage(0, 0, image);
  return paper;
}

}  // namespace

// The end of the picture stands behind the first scan: a smaller picture inside the headers has an end of its own.
bool IsWholeJpeg(std::string_view bytes) {
  std::size_t at = 2;
  while (at + 4 <= bytes.size() && bytes[at] == '\xFF') {
    const auto marker = static_cast<unsigned char>(bytes[at + 1]);
    const std::size_t length =
        static_cast<unsigned char>(bytes[at + 2]) * 256U + static_cast<unsigned char>(bytes[at + 3]);
    at += 2 + length;
    if (marker == 0xDA) return bytes.find("\xFF\xD9", at) != std::string_view::npos;
  }
  return false;
}

Result<std::string> JpegMaker::Jpeg(const std::string& bytes, const std::string& name) const {
  QByteArray data = QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size()));
  QBuffer buffer(&data);
  buffer.open(QIODevice::ReadOnly);
  QImageReader reader(&buffer);
  reader.setDecideFormatFromContent(true);
  const bool jpeg = bytes.starts_with("\xFF\xD8\xFF");
  const bool png = bytes.starts_with("\x89PNG\r\n\x1A\n");
  if (!jpeg && !png) return NoPhoto(name, "it is no JPEG and no PNG picture");
  if (jpeg && !IsWholeJpeg(bytes)) return NoPhoto(name, "the picture is cut off or damaged");
  const QSize size = reader.size();
  if (!size.isValid()) return NoPhoto(name, "the picture is cut off or damaged");
  if (double{size.width() * 1.0} * size.height() > kMostPixels)
    return NoPhoto(name, fmt::format("{} x {} pixels are too many", size.width(), size.height()));
  const bool fits = size.width() <= kMostPhotoPixels && size.height() <= kMostPhotoPixels;
  const bool turned = reader.transformation() != QImageIOHandler::TransformationNone;
  QImageReader::setAllocationLimit(kMostMegabytes);
  reader.setAutoTransform(true);
  if (!fits) reader.setScaledSize(size.scaled(kMostPhotoPixels, kMostPhotoPixels, Qt::KeepAspectRatio));
  const QImage image = reader.read();
  if (image.isNull()) return NoPhoto(name, "the picture is cut off or damaged");
  if (jpeg && fits && !turned) return bytes;
  QByteArray made;
  QBuffer out(&made);
  out.open(QIODevice::WriteOnly);
  QImageWriter writer(&out, "jpeg");
  writer.setQuality(kQuality);
  if (!writer.write(OnWhite(image))) return NoPhoto(name, writer.errorString().toStdString());
  return made.toStdString();
}

}  // namespace vellumark::paper
