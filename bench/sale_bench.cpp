// A sale document of 1,000 lines after a change of its header, against the same arithmetic on plain numbers.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

#include "business/sale_header_changes.h"
#include "business/sale_line_changes.h"
#include "business/sale_document.h"
#include "common/rounding.h"
#include "session/local_data.h"
#include "timing.h"

using namespace kalvor;
using namespace kalvor::bench;

namespace {

constexpr int lineCount = 1000;
constexpr int runs = 15;

struct PlainLine {
  double quantity, price, percent;
  bool includes = false;
  double total = 0, value = 0, vat = 0, totalVat = 0, local = 0, localVat = 0, totalLocal = 0, cost = 0;
};

void recalculate(PlainLine& line, bool includes)
{
  using Real = long double;
  const Real f = 1 + Real(line.percent) / 100;
  if (line.includes != includes)
    line.price = double(RoundUp(5, includes ? line.price * f : line.price / f));
  line.includes = includes;
  const Real net = includes ? RoundUp(5, line.price / f) : Real(line.price);
  const Real amount = RoundUp(2, line.quantity * net);
  line.cost = double(RoundUp(5, net));
  line.total = double(includes ? RoundUp(2, f * amount) : amount);
  const Real value = RoundUp(2, includes ? line.total / f : Real(line.total));
  const Real vat = RoundUp(2, line.percent * value / 100);
  line.value = double(value);
  line.vat = double(vat);
  line.totalVat = double(value + vat);
  line.local = double(RoundUp(2, value));
  line.localVat = double(RoundUp(2, line.percent / 100 * line.local));
  line.totalLocal = line.local + line.localVat;
}

}  // namespace

int main()
{
  LocalData.PrecisionAmount = 2;
  LocalData.PrecisionPrice = 5;
  testing::SaleDocument document;
  std::vector<PlainLine> plain;
  for (int i = 0; i < lineCount; ++i) {
    plain.push_back({1.0 + i % 17, 0.37 + i % 101, i % 5 ? 20.0 : 9.0});
    document.addLine({{"Quantity", plain.back().quantity}, {"UnitPrice", plain.back().price},
                      {"VATPercent", plain.back().percent}, {"LineDiscount", 0}});
  }
  document.lines.FieldByName(u"UnitPrice")->OnChange = [&](TField*) {
    SrvSaleLineDiscOnChange(&document.header, &document.lines, document.guard);
  };
  bool includes = false;
  const double rules = medianMs(runs, [&] {
    includes = !includes;
    document.header.FieldByName(u"PriceIncludingVAT")->SetAsInteger(includes);
    SrvSalePriceIncudingVATOnChange(&document.header, &document.lines, document.guard);
  });
  const double arithmetic = medianMs(runs, [&] {
    includes = !includes;
    for (PlainLine& line : plain)
      recalculate(line, includes);
  });
  std::printf("prices with or without VAT, %d lines: %.2f ms, plain arithmetic %.3f ms: %.0fx, %.1f us a line\n",
              lineCount, rules, arithmetic, rules / arithmetic, rules * 1000 / lineCount);
  return 0;
}
