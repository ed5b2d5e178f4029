#pragma once

#include "core/cloud/cloud_names.h"
#include "core/cloud/cloud_run.h"
#include "core/cloud/cloud_settings.h"
#include "core/datafile/databases.h"
#include "core/shell/data_files.h"
#include "desktop/cloud/register.h"
#include "desktop/kit/window_list.h"
#include "devices/ftp_connection.h"
#include "support/data_files.h"
#include "support/desktop.h"
#include "support/cloud_tasks.h"
#include "support/shop_settings.h"

namespace vellumark::test {

/// A shop with a Data File, its windows, and a real host that it reaches through a proxy.
struct CloudShop : DataFileRoom {
  explicit CloudShop(const FtpServer& itsServer, const std::string& account = "1001") : server(itsServer) {
    desktop::RegisterCloudWindows(list, windows,
                                  {.connect =
                                       [](const Clock& time) {
                                         return devices::FtpConnection(time, {.connect = 3000, .stall = 1500});
                                       },
                                   .choose =
                                       [this](const desktop::FileChoice& choice, QWidget*) {
                                         asked = choice;
                                         return desktop::Q(answer.string());
                                       },
                                   .logPlace = [this] { return desktop::LogPlace{folder.Path(), "the Desktop"}; }});
    settings = SettingsOf(server, "North Shop", account);
    settings.CloudHost = "127.0.0.1";  // where a proxy stands that does harm
  }
  /// With a Data File that has these Basic Colors, and its settings stored.
  void Open(const std::vector<std::string>& colors) {
    file = folder / (settings.AcctNum + ".vkd");
    MakeFile(file);
    if (!OpenOtherDataFile(session, file, windows)) throw std::runtime_error("not open");
    for (const std::string& color : colors) AddColor(color);
    WriteCloudSettings(session, settings);
  }
  void AddColor(const std::string& name) {
    session.File().Prepare("INSERT INTO INK_Basic (Color_Name) VALUES (?)").Bind(1, name).Run();
  }
  std::int64_t Colors() { return CountRows(session.File(), "INK").basics; }
  void BackUp() {
    Run("CloudBackup", {}, [&](QWidget& form) {
      Click(form, "cmdStart");
      EndsWith(form, "Cloud Backup Complete");
    });
  }
  void Run(const char* name, const desktop::Arguments& arguments, const std::function<void(QWidget&)>& inside) {
    WithDialog(name, [&] { list.RunDialog(name, arguments); }, inside);
  }

  const FtpServer& server;
  desktop::WindowList list{session};
  CloudSettings settings;
  std::filesystem::path file;
  std::filesystem::path answer;
  desktop::FileChoice asked;
};

}  // namespace vellumark::test
