// A sale document in two local datasets, with every field that the rules touch.
#pragma once

#include <QDate>

#include "data/client_dataset.h"

namespace kalvor::testing {

inline FieldDef fieldOf(const QString& name, DataType type)
{
  FieldDef field;
  field.name = name;
  field.type = type;
  return field;
}

struct SaleDocument {
  SaleDocument()
  {
    QList<FieldDef> headerFields, lineFields;
    for (const char* name : {"PriceIncludingVAT", "CurrencyFactor"})
      headerFields << fieldOf(QLatin1String(name), DataType::Float);
    for (const char* name : {"Currency_Id", "DocSubType_Id", "PostingSerie_Id", "Series_Id", "InvToContragent_ID",
                             "VATBusPostGroup_Id", "GenBusPostGroup_Id", "N_SubDocument_Code", "BusinessGroup_Id",
                             "PayTerm_Id"})
      headerFields << fieldOf(QLatin1String(name), DataType::WideString);
    for (const char* name : {"DocumentDate", "DueDate"})
      headerFields << fieldOf(QLatin1String(name), DataType::Date);
    for (const char* name :
         {"QtyPerUnitOfMeasure", "Quantity", "Quantity_Base", "UnitPrice", "OriginalPrice", "OriginalDiscount",
          "LineDiscount", "LineDiscountAmount", "InvDiscAmount", "AllowInvoiceDisc", "TotalPrice", "VATPercent",
          "UnitCost_ACY", "UnitCost_LCY", "TotalValue", "VATBaseAmount", "VATValue", "TotalVAT", "TotalValue_LCY",
          "VatValue_LCY", "TotalVAT_LCY", "QtyToShip", "ShippedQty", "QtyToInvoice", "InvoicedQty"})
      lineFields << fieldOf(QLatin1String(name), DataType::Float);
    for (const char* name : {"Type", "VATCalculationType", "VATLedger", "PriceIncludingVAT"})
      lineFields << fieldOf(QLatin1String(name), DataType::Integer);
    for (const char* name : {"Id", "Code", "Measure_Id", "VATProdPostGroup_Id", "VATBusPostGroup_Id",
                             "GenBusPostGroup_Id", "Currency_Id", "BusinessGroup_Id"})
      lineFields << fieldOf(QLatin1String(name), DataType::WideString);
    for (FieldDef& field : headerFields)
      field.size = 50;
    for (FieldDef& field : lineFields)
      field.size = 50;
    header.CreateDataSet(headerFields);
    header.Append();
    set(header, {{"CurrencyFactor", 1}, {"PriceIncludingVAT", 0}, {"DocumentDate", QDate(2026, 1, 31)}});
    lines.CreateDataSet(lineFields);
  }

  using Values = QList<std::pair<const char*, Variant>>;
  static void set(TClientDataSet& dataSet, const Values& values)
  {
    for (const auto& [name, value] : values)
      dataSet.FieldByName(QString::fromLatin1(name))->SetValue(value);
  }
  void addLine(const Values& values)
  {
    lines.Append();
    set(lines, {{"Id", QString::number(++added)}, {"Type", 1}, {"QtyPerUnitOfMeasure", 1}});
    set(lines, values);
    lines.Post();
  }
  void editLine(const Values& values = {})
  {
    lines.Edit();
    set(lines, values);
  }
  double number(const char* name) const { return lines.FieldByName(QString::fromLatin1(name))->AsFloat(); }
  QString text(const char* name) const { return lines.FieldByName(QString::fromLatin1(name))->AsString(); }

  TClientDataSet header, lines;
  bool guard = false;
  int added = 0;
};

}  // namespace kalvor::testing
