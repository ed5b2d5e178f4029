#include "paper/photo_maker.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QColor>
#include <QImage>

namespace vellumark::test {
namespace {

std::string Encoded(const QImage& image, const char* format) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  image.save(&buffer, format, 95);
  return bytes.toStdString();
}

QImage Decoded(const std::string& bytes) {
  return QImage::fromData(QByteArray::fromStdString(bytes), "jpeg");
}

// Red on its left half, blue on its right.
QImage TwoHalves(int width, int height) {
  QImage image(width, height, QImage::Format_RGB32);
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x) image.setPixelColor(x, y, x < width / 2 ? Qt::red : Qt::blue);
  return image;
}

// The header that says how the camera was held.
std::string WithOrientation(const std::string& jpeg, char orientation) {
  const std::string tiff = std::string("MM\0\x2A\0\0\0\x08\0\x01\x01\x12\0\x03\0\0\0\x01\0", 19) + orientation +
                           std::string("\0\0\0\0\0\0", 6);
  const std::string exif = std::string("Exif\0\0", 6) + tiff;
  const auto length = static_cast<char>(exif.size() + 2);
  return jpeg.substr(0, 2) + std::string("\xFF\xE1\0", 3) + length + exif + jpeg.substr(2);
}

TEST(PhotoMaker, KeepsWhatFitsAndMakesTheRestFit) {
  const paper::JpegMaker maker;
  const std::string small = Encoded(TwoHalves(400, 200), "jpeg");
  EXPECT_EQ(*maker.Jpeg(small, "a.jpg"), small);
  const QImage large = Decoded(*maker.Jpeg(Encoded(TwoHalves(2400, 1200), "png"), "a.png"));
  EXPECT_EQ(large.size(), QSize(2000, 1000));
  QImage glass(10, 10, QImage::Format_ARGB32);
  glass.fill(Qt::transparent);
  EXPECT_EQ(Decoded(*maker.Jpeg(Encoded(glass, "png"), "a.png")).pixelColor(5, 5), QColor(Qt::white));
}

TEST(PhotoMaker, TurnsAsTheCameraWasHeld) {
  const paper::JpegMaker maker;
  // 6: the row that is first stands at the right; the red left half comes to the top.
  const auto turned = maker.Jpeg(WithOrientation(Encoded(TwoHalves(400, 200), "jpeg"), 6), "a.jpg");
  ASSERT_TRUE(turned);
  const QImage image = Decoded(*turned);
  EXPECT_EQ(image.size(), QSize(200, 400));
  EXPECT_GT(image.pixelColor(100, 50).red(), 200);
  EXPECT_GT(image.pixelColor(100, 350).blue(), 200);
}

TEST(PhotoMaker, RefusesWhatIsBrokenOrHuge) {
  const paper::JpegMaker maker;
  const std::string jpeg = WithOrientation(Encoded(TwoHalves(400, 200), "jpeg"), 1);
  const std::string png = Encoded(TwoHalves(400, 200), "png");
  QImage sky(15000, 14000, QImage::Format_Mono);
  sky.fill(1);
  for (const auto& [bytes, why] :
       std::vector<std::pair<std::string, std::string>>{{"", "no JPEG"},
                                                        {"GIF89a", "no JPEG"},
                                                        {jpeg.substr(0, jpeg.size() / 2), "cut off"},
                                                        {jpeg.substr(0, 20), "cut off"},
                                                        {png.substr(0, png.size() / 2), "cut off"},
                                                        {Encoded(sky, "png"), "too many"}}) {
    const auto made = maker.Jpeg(bytes, "x.jpg");
    ASSERT_FALSE(made) << bytes.size();
    EXPECT_NE(made.error().text.find(why), std::string::npos) << made.error().text;
  }
}

}  // namespace
}  // namespace vellumark::test
