// Many small reads in one call, so that whoever asks about a whole document does not wait for each answer.
#include "rpc/rpc_error.h"
#include "server/operations/handlers.h"
#include "server/operations/refusal_log.h"

namespace kalvor::server {

namespace {

constexpr qsizetype mostQuestions = 1000;
constexpr const char16_t* answerable[] = {u"RequestValue",      u"GetSaleLinePrice",     u"GetSaleLineDiscount",
                                          u"GetPurchLinePrice", u"GetPurchLineDiscount", u"GetCurrencyRate"};

const Operation* readOperation(const QString& name)
{
  const bool known = std::any_of(std::begin(answerable), std::end(answerable), [&](const char16_t* one) {
    return name.compare(QStringView(one), Qt::CaseInsensitive) == 0;
  });
  return known ? findOperation(name) : nullptr;
}

Variant answerOf(CallContext& call, const Variant& question)
{
  const VariantArray parts = question.toList();
  const Operation* operation = readOperation(variantText(parts.value(0)));
  if (!operation) {
    return {};
  }
  VariantArray arguments = parts.value(1).toList();
  try {
    checkArguments(*operation, arguments);
    CallContext one{call.core, call.session, call.db, call.metadata, arguments};
    const Variant result = operation->handler(one);
    return Variant(VariantArray{result, Variant(arguments)});
  } catch (const RpcError& error) {
    logRefusal(call.session, *operation, arguments, error);
    return {};  // asked alone it says why
  }
}

}  // namespace

Variant callReadMany(CallContext& call)
{
  const VariantArray questions = call.arguments.at(0).toList();
  if (questions.size() > mostQuestions) {
    throw RpcError(RpcError::BadArguments, QStringLiteral("Най-много %1 въпроса в едно обръщение.").arg(mostQuestions));
  }
  const Transaction snapshot(call.db, false);
  VariantArray answers;
  for (const Variant& question : questions) {
    answers.append(answerOf(call, question));
  }
  call.arguments[1] = answers;
  return int(answers.size());
}

}  // namespace kalvor::server
