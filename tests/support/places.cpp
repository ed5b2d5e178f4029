#include "support/places.h"

namespace vellumark::test {

const std::filesystem::path& SourceFolder() {
  static const std::filesystem::path folder = VELLUMARK_SOURCE_DIR;
  return folder;
}

const std::filesystem::path& CommandLineProgram() {
  static const std::filesystem::path program = VELLUMARK_CLI;
  return program;
}

const std::filesystem::path& ScreensFolder() {
  static const std::filesystem::path folder = [] {
    std::filesystem::create_directories(VELLUMARK_SCREENS);
    return std::filesystem::path(VELLUMARK_SCREENS);
  }();
  return folder;
}

}  // namespace vellumark::test
