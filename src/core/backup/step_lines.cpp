#include "core/backup/step_lines.h"

namespace vellumark {

const TableOf<StepLineOf>& StepColumns() {
  using L = StepLineOf;
  static const TableOf<L> columns = TableOf<L>()
                                        .Add("Outcome", &L::Outcome, "Outcome")
                                        .Width(1200)
                                        .Add("Step", &L::Step, "Step")
                                        .Width(3000)
                                        .Add("Table", &L::Table, "Table")
                                        .Width(2400)
                                        .Add("Count", &L::Count, "Rows")
                                        .Width(900)
                                        .Add("What", &L::What, "What")
                                        .Width(6000);
  return columns;
}

}  // namespace vellumark
