#pragma once

#include <memory>

#include "desktop/cloud/cloud_works.h"
#include "desktop/tools/checked_list.h"

namespace vellumark::desktop {

/// Files of a folder at the host, each with a box before it: name, date, size and what else is known.
class FileRows : public CheckedSource {
 public:
  /// `files` have changed.
  void Take() { ResetChecks(files->size()); }
  static std::vector<GridColumn> Columns(const QString& note);

  int Rows() const override { return static_cast<int>(files->size()); }
  std::string Text(int row, int column) const override;
  double Number(int row, int column) const override;
  std::vector<CloudFile> CheckedFiles() const;

  CloudFiles files = std::make_shared<std::vector<CloudFile>>();
};

/// The same to choose one from.
class FileChoiceRows : public GridSource {
 public:
  int Rows() const override { return static_cast<int>(files->size()); }
  std::string Text(int row, int column) const override;
  double Number(int row, int column) const override;

  CloudFiles files = std::make_shared<std::vector<CloudFile>>();
};

}  // namespace vellumark::desktop
