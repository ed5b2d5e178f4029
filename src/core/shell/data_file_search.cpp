#include "core/shell/data_file_search.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <system_error>

#include "core/base/platform.h"
#include "core/base/progress_run.h"
#include "core/base/text.h"

namespace vellumark {
namespace fs = std::filesystem;

namespace {

std::optional<std::uint64_t> DeviceOf(const fs::path& path) {
  std::error_code gone;
  const platform::FileState state = platform::StateOfEntry(path, gone);
  return gone ? std::nullopt : std::optional(state.device);
}

bool IsDataFile(const fs::path& path) {
  return EqualNoCase(path.extension().string(), ".vkd") &&
         FindNoCase(path.filename().string(), "archive") == std::string::npos;
}

// A folder still to be looked into, and its part of the whole in percent: a parent's part is shared by its folders.
struct Pending {
  fs::path folder;
  double share;
};

class Search {
 public:
  Search(const fs::path& root, Progress& progress) : progress_(progress), device_(DeviceOf(root)) {
    pending_.push_back({root, 100.0});
  }

  FoundDataFiles Run() {
    while (!pending_.empty()) {
      if (progress_.Cancelled()) {
        found_.cancelled = true;
        break;
      }
      const Pending next = std::move(pending_.back());
      pending_.pop_back();
      Look(next);
      progress_.Percent(done_);
    }
    std::ranges::sort(found_.files);
    return std::move(found_);
  }

 private:
  void Look(const Pending& place) {
    std::vector<fs::path> folders;
    std::error_code error;
    fs::directory_iterator entry(place.folder, error);
    // A folder can change, or be taken away, under the search.
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
      std::error_code gone;
      const platform::FileState state = platform::StateOfEntry(entry->path(), gone);
      if (state.kind == platform::Kind::Folder) {
        if (state.device == device_) folders.push_back(entry->path());
      } else if (state.kind == platform::Kind::File && IsDataFile(entry->path())) {
        found_.files.push_back(entry->path());
      }
    }
    if (error) ++found_.unreadable;
    if (folders.empty()) done_ += place.share;
    const double share = place.share / static_cast<double>(std::max<std::size_t>(folders.size(), 1));
    for (fs::path& folder : folders) pending_.push_back({std::move(folder), share});
  }

  Progress& progress_;
  std::optional<std::uint64_t> device_;
  std::vector<Pending> pending_;
  FoundDataFiles found_;
  double done_ = 0;
};

}  // namespace

fs::path DriveRoot(const fs::path& path) {
  fs::path root = fs::absolute(path).lexically_normal();
  while (!DeviceOf(root) && root.has_relative_path()) root = root.parent_path();
  const auto device = DeviceOf(root);
  while (root.has_relative_path() && DeviceOf(root.parent_path()) == device) root = root.parent_path();
  return root;
}

FoundDataFiles SearchDataFiles(const fs::path& root, Progress& progress) {
  const ProgressRun run(progress, "Searching for Data Files ...");
  return Search(root, progress).Run();
}

}  // namespace vellumark
