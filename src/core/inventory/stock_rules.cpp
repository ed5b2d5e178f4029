#include "core/inventory/stock_rules.h"

#include "core/session/settings.h"

namespace vellumark {

StockRules ReadStockRules(const Session& session) {
  return {InvCutoffInForce(session), GetSetting(session, setting::AllowNegInv)};
}

}  // namespace vellumark
