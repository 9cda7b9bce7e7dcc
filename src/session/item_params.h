// What a price look-up gives.
#pragma once

#include <QtGlobal>

namespace kalvor {

struct TItemParams {
  double price = 0;             // document currency, one unit of the line's measure
  double discount = 0;          // percent; negative beside a special price
  quint8 allowInvoiceDisc = 0;  // 1 = the line takes part in a document discount
  // Whether the server had an answer; without one the price (the discount) is 0 and says nothing.
  bool priceAnswered = false;
  bool discountAnswered = false;
};

}  // namespace kalvor
