// What the tests of datasets share: sample records, an event journal, a provider that serves packets.
#pragma once

#include <QtTest>

#include "data/client_dataset.h"

namespace kalvor::test {

inline FieldDef fieldDef(const char* name, DataType type, int size = 0, bool required = false)
{
  FieldDef definition;
  definition.name = QString::fromUtf8(name);
  definition.type = type;
  definition.size = size;
  definition.required = required;
  return definition;
}

inline QList<FieldDef> itemFields()
{
  return {fieldDef("Id", DataType::LargeInt), fieldDef("Name", DataType::WideString, 40),
          fieldDef("Amount", DataType::Float), fieldDef("Day", DataType::Date)};
}

inline RecordSet itemRecords(int count)
{
  RecordSet records(itemFields());
  for (int i = 1; i <= count; ++i)
    records.appendRow({i, QStringLiteral("Артикул %1").arg(i), i * 1.5, QDate(2024, 1, 1).addDays(i)});
  return records;
}

// Names, numbers and days with nulls, cases and quotes among them.
inline RecordSet people()
{
  RecordSet records({fieldDef("Id", DataType::Integer), fieldDef("Име", DataType::WideString, 30),
                     fieldDef("Full Name", DataType::WideString, 60), fieldDef("Amount", DataType::Float),
                     fieldDef("Day", DataType::Date), fieldDef("At", DataType::DateTime),
                     fieldDef("Active", DataType::Boolean), fieldDef("Limit", DataType::Float)});
  const auto add = [&](int id, const char* name, const char* full, const Variant& amount, const Variant& day,
                       bool active, const Variant& limit) {
    const Variant at = isNull(day) ? Variant() : Variant(QDateTime(day.toDate(), QTime(10, 0)));
    records.appendRow({id, QString::fromUtf8(name), QString::fromUtf8(full), amount, day, at, active, limit});
  };
  add(1, "Иван", "Иван Петров О'Нийл", 10.5, QDate(2024, 1, 15), true, 5.0);
  add(2, "анна", "Анна 100% Стоева", {}, QDate(2024, 2, 1), false, 5.0);
  add(3, "ЩЕРЬО", "Щерьо_Щ", -3.0, {}, true, {});
  add(4, "Zoran", "Zoran абв", 10.5, QDate(2023, 12, 31), false, 20.0);
  records.appendRow({5});
  return records;
}

// Serves the records in packets; the continuation is the number of the next one.
class FakeBroker : public DataBroker {
 public:
  RecordSet records;
  int openings = 0;
  int packets = 0;
  QString failure;

  DataPacketPtr openProvider(const QString&, qsizetype count) override
  {
    ++openings;
    return packet(0, count);
  }

  DataPacketPtr fetchRecords(const QString&, const Variant& continuation, qsizetype count) override
  {
    ++packets;
    return packet(continuation.toLongLong(), count);
  }

 private:
  DataPacketPtr packet(qsizetype from, qsizetype count) const
  {
    if (!failure.isEmpty())
      throw DataError(failure);
    auto answer = std::make_shared<DataPacket>();
    answer->records = RecordSet(records.fields);
    const qsizetype to = count < 0 ? records.rows : qMin(records.rows, from + count);
    for (size_t i = 0; i < records.columns.size(); ++i)
      for (qsizetype row = from; row < to; ++row)
        answer->records.columns[i].appendFrom(records.columns[i], row);
    answer->records.rows = to - from;
    if (to < records.rows)
      answer->continuation = qlonglong(to);
    return answer;
  }
};

// Texts of a field over the view, joined by "|".
inline QString column(const TClientDataSet& dataSet, const char* field)
{
  const TField* found = dataSet.FieldByName(QString::fromUtf8(field));
  QStringList values;
  for (qsizetype row = 0; row < dataSet.RecordCount(); ++row)
    values.append(variantText(found->ValueAt(row)));
  return values.join(u'|');
}

inline TField* field(TClientDataSet& dataSet, const char* name)
{
  return dataSet.FieldByName(QString::fromUtf8(name));
}

inline QString messageOf(const std::function<void()>& action)
{
  try {
    action();
  } catch (const DataError& error) {
    return error.message();
  }
  return QStringLiteral("no error");
}

}  // namespace kalvor::test
