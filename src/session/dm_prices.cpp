// Prices, discounts and rates: the server decides them, the session routes the question and takes the answers.
#include <span>

#include "session/dm.h"
#include "session/error_log.h"
#include "session/remembered_reads.h"

namespace kalvor {
namespace {

// Positions of the request array.
enum RequestPosition : int { What = 0, Side = 1 };
enum WantedValue : int { PriceAndDiscount = 0, PriceOnly = 1, DiscountOnly = 2 };
enum TradeSide : int { Purchase = 0, Sale = 1 };

// Which positions of the request a question sends, in order.
constexpr int pricePositions[] = {2, 3, 4, 9, 10, 11, 6, 12, 7, 13, 14};
constexpr int purchaseDiscountPositions[] = {2, 3, 4, 9, 8, 10, 11, 14};
constexpr int saleDiscountPositions[] = {2, 3, 4, 9, 8, 10, 11, 7, 6, 14};

struct Answer {
  int status;
  VariantArray values;
};

VariantArray questionOf(const VariantArray& request, std::span<const int> positions, int outputs)
{
  VariantArray sent;
  for (const int position : positions)
    sent.append(request.value(position));
  VariantArray arguments{Variant(sent)};
  for (int i = 0; i < outputs; ++i)
    arguments.append(0.0);
  return arguments;
}

class PriceQuestions {
 public:
  PriceQuestions(RemoteCalls& calls, const VariantArray& request, TItemParams& params)
      : calls_(calls), request_(request), params_(params)
  {
  }

  void purchasePrice() const
  {
    const Answer answer = ask("GetPurchLinePrice", pricePositions, 1);
    if (answer.status >= 0)
      takePrice(answer);
  }
  void purchaseDiscount() const
  {
    const Answer answer = ask("GetPurchLineDiscount", purchaseDiscountPositions, 1);
    if (answer.status > 0)
      takeDiscount(answer.values[0].toDouble());
  }
  void salePrice() const
  {
    const Answer answer = ask("GetSaleLinePrice", pricePositions, 2);
    if (answer.status < 0)
      return;
    takePrice(answer);
    params_.allowInvoiceDisc = quint8(answer.values[1].toInt());
  }
  // Beside a price: any answer not below 0 is taken; above 0 the special price replaces the price.
  void saleDiscountOfPrice() const
  {
    const Answer answer = ask("GetSaleLineDiscount", saleDiscountPositions, 2);
    if (answer.status < 0)
      return;
    const double discount = answer.values[0].toDouble();
    takeDiscount(answer.status > 0 ? 0 - discount : discount);
    if (answer.status > 0)
      takeSpecialPrice(answer);
  }
  void saleDiscountAlone() const
  {
    const Answer answer = ask("GetSaleLineDiscount", saleDiscountPositions, 2);
    if (answer.status > 0)
      takeDiscount(0 - answer.values[0].toDouble());
    if (answer.values[1].toDouble() > 0)
      takeSpecialPrice(answer);
  }

 private:
  template <size_t count>
  Answer ask(const char* operation, const int (&positions)[count], int outputs) const
  {
    VariantArray arguments = questionOf(request_, positions, outputs);
    const int status = calls_.Call(QString::fromLatin1(operation), arguments).toInt();
    return {status, arguments.mid(1)};
  }
  void takePrice(const Answer& answer) const
  {
    params_.price = answer.values[0].toDouble();
    params_.priceAnswered = true;
  }
  void takeSpecialPrice(const Answer& answer) const
  {
    params_.price = answer.values[1].toDouble();
    params_.priceAnswered = true;
  }
  void takeDiscount(double percent) const
  {
    params_.discount = percent;
    params_.discountAnswered = true;
  }

  RemoteCalls& calls_;
  const VariantArray& request_;
  TItemParams& params_;
};

void lookUpPurchase(const PriceQuestions& questions, int what)
{
  if (what == PriceAndDiscount || what == DiscountOnly)
    questions.purchaseDiscount();
  if (what == PriceAndDiscount || what == PriceOnly)
    questions.purchasePrice();
}

void lookUpSale(const PriceQuestions& questions, const TItemParams& params, int what)
{
  if (what == PriceAndDiscount || what == PriceOnly)
    questions.salePrice();
  if (what == PriceAndDiscount && params.allowInvoiceDisc == 1)
    questions.saleDiscountOfPrice();
  if (what == DiscountOnly)
    questions.saleDiscountAlone();
}

}  // namespace

int TDM::GetItemPriceAndDiscount(const Variant& request, TItemParams& params)
{
  params.price = params.discount = 0;
  params.priceAnswered = params.discountAnswered = false;
  const bool done = loggingErrors(QStringLiteral("DM.GetItemPriceAndDiscount"), [&] {
    if (request.typeId() != QMetaType::QVariantList)
      return;
    const VariantArray positions = request.toList();
    if (positions.isEmpty())
      return;
    const PriceQuestions questions(*ConBroker, positions, params);
    const int what = positions.value(What).toInt();
    switch (positions.value(Side).toInt()) {
      case Purchase: lookUpPurchase(questions, what); break;
      case Sale: lookUpSale(questions, params, what); break;
      default: break;
    }
  });
  return done ? 0 : -1;
}

void TDM::AskSalePricesAhead(const QList<VariantArray>& requests)
{
  QList<ReadQuestion> questions;
  for (const VariantArray& request : requests) {
    questions.append({QStringLiteral("GetSaleLinePrice"), questionOf(request, pricePositions, 2)});
    questions.append({QStringLiteral("GetSaleLineDiscount"), questionOf(request, saleDiscountPositions, 2)});
  }
  loggingErrors(QStringLiteral("DM.AskSalePricesAhead"), [&] { RememberedReadsScope::askAhead(*this, questions); });
}

double TDM::GetCurrencyRate(const QString& currency, QDate date, int kind)
{
  double rate = 0;
  loggingErrors(QStringLiteral("DM.GetCurrencyRate"), [&] {
    VariantArray arguments{currency, date, kind, 0.0};
    if (ConBroker->Call(QStringLiteral("GetCurrencyRate"), arguments).toInt() == 0)
      rate = arguments[3].toDouble();
  });
  return rate;
}

}  // namespace kalvor
