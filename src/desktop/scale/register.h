#pragma once

#include <filesystem>

namespace vellumark::desktop {

class BenchScale;
class WindowList;

/// The desktop of the user, or the home folder where there is none.
std::filesystem::path DesktopFolder();

/// ScaleSettings, which writes its report of the ports into `logFolder`, and WaitForm_ScaleBoot.
void RegisterScaleWindows(WindowList& windows, BenchScale& scale, const std::filesystem::path& logFolder = DesktopFolder());

}  // namespace vellumark::desktop
