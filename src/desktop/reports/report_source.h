#pragma once

#include <functional>
#include <memory>

#include "core/reports/build.h"
#include "desktop/kit/grid.h"
#include "desktop/kit/row_menu.h"

namespace vellumark::desktop {

/// How the grid shows a column: each but the first can be hidden.
GridColumn ShownColumn(const TableColumn& column, bool first);

/// The rows of a built report, as it stands.
class ReportSource : public GridSource, public RowTargets {
 public:
  struct Editing {
    std::function<bool(int row, int column)> may;
    std::function<Result<void>(int row, int column, const std::string& typed)> take;
  };
  explicit ReportSource(Editing editing) : editing_(std::move(editing)) {}

  void Show(std::shared_ptr<BuiltReport> report) { report_ = std::move(report); }
  int Rows() const override { return report_ ? static_cast<int>(report_->Rows()) : 0; }
  std::vector<RowTarget> Targets(int row) const override {
    return {report_->targets.at(static_cast<std::size_t>(row))};
  }
  std::string Text(int row, int column) const override;
  double Number(int row, int column) const override;
  bool IsEditable(int row, int column) const override;
  Result<void> Edit(int row, int column, const std::string& typed) override;

 private:
  const TableValue& At(int row, int column) const {
    return report_->Cell(static_cast<std::size_t>(row), static_cast<std::size_t>(column));
  }

  Editing editing_;
  std::shared_ptr<BuiltReport> report_;
};

}  // namespace vellumark::desktop
