#pragma once

#include <string>

namespace vellumark::test {

/// A picture of one black pixel, as a PNG file.
inline std::string PixelPng() {
  static constexpr unsigned char kBytes[] = {
      0x89, 'P',  'N', 'G', 0x0D, 0x0A, 0x1A, 0x0A, 0,    0,    0,    0x0D, 'I',  'H',  'D',  'R',  0,
      0,    0,    1,   0,   0,    0,    1,    8,    0,    0,    0,    0,    0x3A, 0x7E, 0x9B, 0x55, 0,
      0,    0,    0x0A, 'I', 'D', 'A',  'T',  0x78, 0x9C, 0x63, 0x60, 0,    0,    0,    0x02, 0,    0x01,
      0x48, 0xAF, 0xA4, 0x71, 0,  0,    0,    0,    'I',  'E',  'N',  'D',  0xAE, 0x42, 0x60, 0x82};
  return {reinterpret_cast<const char*>(kBytes), sizeof kBytes};
}

}  // namespace vellumark::test
