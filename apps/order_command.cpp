#include "apps/requote_answer.h"
#include "apps/split_run.h"

namespace tutti {
namespace {

class OrderRun final : public SplitRun {
 public:
  OrderRun(CommandContext& context, const OrderArguments& arguments, frmorder& form)
      : SplitRun(context, arguments,
                 {form.lvwConClients, form.cbsymbols, form.CBdis, form.txtammount, form.chkAllClients,
                  form.cmddis}),
        form_(form),
        order_(arguments) {}

 private:
  Shares shares() const override { return form_.shares(); }
  ShareFault share_fault(const Row& row) const override { return form_.share_fault(row); }
  const SentOrder& sent_by(const CClientAPIManager& session) const override { return session.last_order(); }
  std::string title() const override { return (order_.buy ? "Buy " : "Sell ") + order_.symbol; }
  NamedAct named() const override { return {context_, order_.id, order_.buy ? "order buy" : "order sell"}; }
  RequoteReply requote() const override { return order_.requote; }
  bool send() override {
    Button& button = order_.buy ? form_.cmdbuy : form_.cmdsell;
    // Not available unless shares were written.
    if (!button.enabled()) return false;
    button.click();
    context_.refuse_held();
    run_answering(context_, order_.requote, [this] { return form_.answers().waiting == 0; });
    return true;
  }

  frmorder& form_;
  const OrderArguments& order_;
};

}  // namespace

int order_command(CommandContext& context, const OrderArguments& arguments) {
  return OrderRun{context, arguments, context.main().market_order()}.run();
}

}  // namespace tutti
