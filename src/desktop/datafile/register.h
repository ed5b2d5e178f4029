#pragma once

#include <filesystem>
#include <functional>

#include "core/shell/startup.h"
#include "desktop/datafile/file_choice.h"

namespace vellumark::desktop {

class WindowList;

/// What the windows of Data Files ask of the machine. Tests put their own.
struct DataFilePlatform {
  FileChooser choose = ChooseFile;
  /// Where a search for Data Files begins, for the path of the current one.
  std::function<std::filesystem::path(const std::filesystem::path&)> searchRoot;
};

/// The windows of Data Files and Databases; each opened by its name carries out its command and needs no arguments but
/// those told here. `startup` is asked for whatever opening a file needs.
///
/// NewDataFileForm {"StartupMessage", text}: gives back {"exit", true} when the operator ends the program.
/// FileExplorerForm (Open Data File), NewFileExplorerForm (New Data File), VKD_File_ListingForm (Search for Data Files;
/// with {"Pick", true} it only gives back {"Path", text}), RenameDataFileForm: accepted when a file was opened, with
/// {"exit", true} when the operator ended the program at its login.
/// UpdateDataFileForm {"Path", text}, {"FileVersion", number}: gives back {"Path", text}, the file that was brought up to
/// date.
/// NewDBForm, RenameDBForm: give back {"Database", name}; DeleteDBForm.
/// OtherDatabasesForm {"Color_Name", text}, {"Kind", ColorKind}: gives back {"Database", name} after a change to it.
void RegisterDatafileWindows(WindowList& windows, StartupWindows& startup, DataFilePlatform platform = {});

}  // namespace vellumark::desktop
