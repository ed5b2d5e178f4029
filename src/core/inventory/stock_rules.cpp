#include "core/inventory/stock_rules.h"

#include <algorithm>

#include "core/base/number.h"
#include "core/base/units.h"
#include "core/settings/settings_keys.h"

namespace vellumark {

float DefaultInvCutoff(int unit) {
  return RoundSingle(0.5 * static_cast<double>(UnitFactor(UnitPound, unit)), 3);
}

StockRules ReadStockRules(const Session& session) {
  StockRules rules;
  const auto cutoff = ParseNumber(GetSupportValue(session, keys::InvCutoff));
  rules.InvCutoff = cutoff ? static_cast<float>(std::max(*cutoff, 0.0)) : DefaultInvCutoff(session.UMI);
  rules.AllowNegInv = LeadingInteger(GetSupportValue(session, keys::AllowNegInv)) == 1;
  return rules;
}

}  // namespace vellumark
