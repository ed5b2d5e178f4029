#include "desktop/datafile/register.h"

#include "core/shell/data_file_search.h"
#include "desktop/datafile/data_file_listing_form.h"
#include "desktop/datafile/delete_db_form.h"
#include "desktop/datafile/file_explorer_form.h"
#include "desktop/datafile/new_data_file_form.h"
#include "desktop/datafile/new_db_form.h"
#include "desktop/datafile/other_databases_form.h"
#include "desktop/datafile/rename_data_file_form.h"
#include "desktop/datafile/rename_db_form.h"
#include "desktop/datafile/update_data_file_form.h"
#include "desktop/kit/window_list.h"

namespace vellumark::desktop {

void RegisterDatafileWindows(WindowList& windows, StartupWindows& startup, DataFilePlatform platform) {
  const FileChooser choose = std::move(platform.choose);
  const auto searchRoot = platform.searchRoot ? platform.searchRoot : DriveRoot;
  windows.RegisterDialog("NewDataFileForm", [&startup, choose](WindowList& list, QWidget* owner) -> Dialog* {
    return new NewDataFileForm(list, owner, startup, choose);
  });
  windows.RegisterDialog("FileExplorerForm", [&startup, choose](WindowList& list, QWidget* owner) -> Dialog* {
    return new FileExplorerForm(list, owner, startup, choose);
  });
  windows.RegisterDialog("NewFileExplorerForm", [&startup, choose](WindowList& list, QWidget* owner) -> Dialog* {
    return new NewFileExplorerForm(list, owner, startup, choose);
  });
  windows.RegisterDialog("VKD_File_ListingForm", [&startup, searchRoot](WindowList& list, QWidget* owner) -> Dialog* {
    return new VKD_File_ListingForm(list, owner, startup, searchRoot);
  });
  windows.RegisterDialog("RenameDataFileForm", [&startup](WindowList& list, QWidget* owner) -> Dialog* {
    return new RenameDataFileForm(list, owner, startup);
  });
  windows.RegisterAll<UpdateDataFileForm, NewDBForm, RenameDBForm, DeleteDBForm, OtherDatabasesForm>();
}

}  // namespace vellumark::desktop
