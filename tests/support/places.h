#pragma once

#include <filesystem>

namespace vellumark::test {

/// Where this build and its sources lie. Told to one file alone: what is compiled without such a path is the same in
/// every clone, and the compiler cache finds it.
const std::filesystem::path& SourceFolder();
const std::filesystem::path& CommandLineProgram();
/// For the pictures that tests take; made when it is missing.
const std::filesystem::path& ScreensFolder();

}  // namespace vellumark::test
