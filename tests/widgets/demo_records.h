// Records for the tests and the gallery of the widgets.
#pragma once

#include <QDateTime>

#include "data/client_dataset.h"

namespace kalvor::demo {

inline QList<FieldDef> itemFields()
{
  const auto field = [](const char* name, DataType type, int size = 0) {
    FieldDef definition;
    definition.name = QString::fromLatin1(name);
    definition.type = type;
    definition.size = size;
    return definition;
  };
  return {field("Id", DataType::Integer),         field("Code", DataType::WideString, 10),
          field("Name", DataType::WideString, 60), field("Kind", DataType::Integer),
          field("Quantity", DataType::Float),     field("Price", DataType::Float),
          field("Amount", DataType::Float),       field("DocDate", DataType::Date),
          field("IsActive", DataType::Integer),   field("Note", DataType::WideMemo)};
}

inline void describeItemFields(TClientDataSet& dataSet)
{
  const auto label = [&dataSet](const char* name, const char16_t* text) {
    dataSet.FieldByName(QString::fromLatin1(name))->DisplayLabel = QString::fromUtf16(text);
  };
  label("Code", u"Код");
  label("Name", u"Наименование");
  label("Kind", u"Вид");
  label("Quantity", u"Количество");
  label("Price", u"Ед. цена");
  label("Amount", u"Сума");
  label("DocDate", u"Дата");
  label("IsActive", u"Активен");
  label("Note", u"Забележка");
  dataSet.FieldByName(u"Id")->Visible = false;
  dataSet.FieldByName(u"Note")->Visible = false;
  dataSet.FieldByName(u"Quantity")->DisplayFormat = QStringLiteral("#,##0.000");
  dataSet.FieldByName(u"Price")->DisplayFormat = QStringLiteral("#,##0.00");
  dataSet.FieldByName(u"Amount")->DisplayFormat = QStringLiteral("#,##0.00");
  const QStringList kinds{QStringLiteral("Стока"), QStringLiteral("Материал"), QStringLiteral("Услуга")};
  TField* kind = dataSet.FieldByName(u"Kind");
  kind->OnGetText = [kinds](TField* field, QString& text, bool) { text = kinds.value(int(field->AsInteger())); };
  kind->OnSetText = [kinds](TField* field, const QString& text) { field->SetAsInteger(kinds.indexOf(text)); };
}

inline RecordSet itemRecords(qsizetype count)
{
  static const QStringList names{QStringLiteral("Хартия копирна А4, 80 г/м², 500 листа"),
                                 QStringLiteral("Тонер касета HP 26A"),
                                 QStringLiteral("Консултантски услуги, месечен абонамент"),
                                 QStringLiteral("Стол офис „Комфорт“"),
                                 QStringLiteral("Папка-класьор 8 см, синя"),
                                 QStringLiteral("Транспорт София – Пловдив"),
                                 QStringLiteral("Химикал „Бик“, син"),
                                 QStringLiteral("Лаптоп Lenovo ThinkPad E16")};
  RecordSet records(itemFields());
  for (qsizetype i = 0; i < count; ++i) {
    const double quantity = double((i * 7) % 40 + 1) * (i % 9 == 4 ? -1 : 1);
    const double price = double((i * 7919) % 250000 + 99) / 100;
    records.appendRow({int(i + 1), QStringLiteral("%1").arg(1001 + i), names[i % names.size()], int(i % 3), quantity,
                       price, quantity * price, QDate(2024, 1, 1).addDays(i % 360), int(i % 4 != 1), Variant()});
  }
  return records;
}

inline void openItems(TClientDataSet& dataSet, qsizetype count)
{
  dataSet.setObjectName(QStringLiteral("cdsMaster"));
  dataSet.SetRecords(itemRecords(count));
  describeItemFields(dataSet);
  dataSet.UpdateLayout();
}

}  // namespace kalvor::demo
