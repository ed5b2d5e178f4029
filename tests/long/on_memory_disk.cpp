// All of it on a disk of memory, where there is one: what is struck is what the program asks of the system, and a real
// disk would only take its time for each sync.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

namespace vellumark {
namespace {

class OnMemoryDisk final : public testing::Environment {
 public:
  void SetUp() override {
    const char* disk = "/dev/shm";
    std::error_code none;
    if (std::filesystem::is_directory(disk, none)) ::setenv("TMPDIR", disk, 0);
  }
};

[[maybe_unused]] const testing::Environment* const kDisk = testing::AddGlobalTestEnvironment(new OnMemoryDisk);

}  // namespace
}  // namespace vellumark
