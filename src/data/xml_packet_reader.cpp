#include <QDateTime>
#include <QXmlStreamReader>
#include <algorithm>
#include <cmath>

#include "data/data_error.h"
#include "data/value_conversion.h"
#include "data/xml_packet.h"

namespace kalvor {

namespace {

constexpr qsizetype mostFields = 4096;

class PacketReader {
 public:
  explicit PacketReader(const QByteArray& data) : xml_(data) { xml_.setEntityExpansionLimit(0); }

  PacketFile read()
  {
    expectStart(u"dataset");
    if (xml_.attributes().value(QStringLiteral("version")) != u"1")
      fail(QStringLiteral("непозната версия"));
    expectStart(u"fields");
    readFields();
    expectStart(u"rows");
    while (nextElement())
      readRow();
    if (nextElement())
      fail(QStringLiteral("неочакван елемент '%1'").arg(xml_.name()));
    readToEnd();
    orderChanges();
    return std::move(packet_);
  }

 private:
  [[noreturn]] void fail(const QString& what) const
  {
    throw DataError(QStringLiteral("Файлът с данни е невалиден: %1 (ред %2)").arg(what).arg(xml_.lineNumber()));
  }

  // To the next start tag (true) or end tag (false); only blanks may stand before it.
  bool nextElement()
  {
    for (;;) {
      switch (xml_.readNext()) {
        case QXmlStreamReader::StartElement: return true;
        case QXmlStreamReader::EndElement: return false;
        case QXmlStreamReader::StartDocument:
        case QXmlStreamReader::Comment:
        case QXmlStreamReader::ProcessingInstruction: break;
        case QXmlStreamReader::Characters:
          if (!xml_.isWhitespace())
            fail(QStringLiteral("неочакван текст"));
          break;
        case QXmlStreamReader::DTD: fail(QStringLiteral("не се допуска DOCTYPE"));
        default: fail(xml_.hasError() ? xml_.errorString() : QStringLiteral("неочакван край"));
      }
    }
  }

  void expectStart(const char16_t* name)
  {
    if (!nextElement() || xml_.name() != QStringView(name))
      fail(QStringLiteral("очаква се '%1'").arg(QStringView(name)));
  }

  void expectEnd()
  {
    if (nextElement())
      fail(QStringLiteral("неочакван елемент '%1'").arg(xml_.name()));
  }

  void readToEnd()
  {
    while (!xml_.atEnd())
      if (xml_.readNext() == QXmlStreamReader::Characters && !xml_.isWhitespace())
        fail(QStringLiteral("неочакван текст"));
    if (xml_.hasError())
      fail(xml_.errorString());
  }

  void readFields()
  {
    QList<FieldDef> fields;
    while (nextElement()) {
      if (xml_.name() != u"field" || fields.size() == mostFields)
        fail(QStringLiteral("неочаквано поле"));
      fields.append(readField());
      for (qsizetype i = 0; i + 1 < fields.size(); ++i)
        if (fields[i].name.compare(fields.last().name, Qt::CaseInsensitive) == 0)
          fail(QStringLiteral("поле '%1' се повтаря").arg(fields[i].name));
      expectEnd();
    }
    if (fields.isEmpty())
      fail(QStringLiteral("няма полета"));
    packet_.records = RecordSet(fields);
    packet_.originals = RecordSet(fields);
  }

  FieldDef readField() const
  {
    const QXmlStreamAttributes attributes = xml_.attributes();
    FieldDef field;
    field.name = attributes.value(QStringLiteral("name")).toString();
    if (field.name.isEmpty())
      fail(QStringLiteral("поле без име"));
    const QStringView type = attributes.value(QStringLiteral("type"));
    const auto& names = dataTypeNames();
    const auto row = std::ranges::find_if(names, [type](const DataTypeName& n) { return type == QStringView(n.name); });
    if (row == names.end())
      fail(QStringLiteral("непознат тип '%1'").arg(type));
    field.type = row->type;
    if (attributes.hasAttribute(QStringLiteral("size"))) {
      bool ok = false;
      field.size = attributes.value(QStringLiteral("size")).toInt(&ok);
      if (!ok || field.size < 0)
        fail(QStringLiteral("невалиден размер на поле '%1'").arg(field.name));
    }
    field.required = flag(attributes, u"required");
    field.readOnly = flag(attributes, u"readonly");
    field.updatable = !flag(attributes, u"fixed");
    field.origin = attributes.value(QStringLiteral("origin")).toString();
    return field;
  }

  bool flag(const QXmlStreamAttributes& attributes, const char16_t* name) const
  {
    const QStringView value = attributes.value(QString::fromUtf16(name));
    if (!value.isEmpty() && value != u"1" && value != u"0")
      fail(QStringLiteral("невалидна стойност на '%1'").arg(QStringView(name)));
    return value == u"1";
  }

  // A row's cells, all of them, and perhaps the values it had before.
  void readRow()
  {
    if (xml_.name() != u"r")
      fail(QStringLiteral("неочакван елемент '%1'").arg(xml_.name()));
    const RowState state = readState();
    const qint64 number = state == RowState::Unmodified ? -1 : readChangeNumber();
    qsizetype original = -1;
    readCells(packet_.records);
    if (nextElement()) {
      if (xml_.name() != u"o" || (state != RowState::Modified && state != RowState::Deleted))
        fail(QStringLiteral("неочакван елемент '%1'").arg(xml_.name()));
      original = packet_.originals.rows;
      readCells(packet_.originals);
      expectEnd();
      expectEnd();
      ++packet_.originals.rows;
    }
    if (state == RowState::Modified && original < 0)
      fail(QStringLiteral("променен запис без първоначалните стойности"));
    if (state != RowState::Unmodified) {
      packet_.changes.push_back({RowId(packet_.records.rows), state, original});
      numbers_.push_back(number);
    }
    ++packet_.records.rows;
  }

  RowState readState() const
  {
    const QStringView status = xml_.attributes().value(QStringLiteral("status"));
    if (status.isEmpty())
      return RowState::Unmodified;
    for (RowState state : {RowState::Modified, RowState::Inserted, RowState::Deleted})
      if (status == QStringView(rowStateName(state)))
        return state;
    fail(QStringLiteral("непознато състояние '%1'").arg(status));
  }

  qint64 readChangeNumber() const
  {
    bool ok = false;
    const qint64 number = xml_.attributes().value(QStringLiteral("change")).toLongLong(&ok);
    if (!ok || number < 0)
      fail(QStringLiteral("невалиден номер на промяна"));
    return number;
  }

  void orderChanges()
  {
    std::vector<size_t> places(packet_.changes.size());
    for (size_t i = 0; i < places.size(); ++i)
      places[i] = i;
    std::ranges::stable_sort(places, {}, [this](size_t i) { return numbers_[i]; });
    std::vector<RecordChange> ordered;
    ordered.reserve(places.size());
    for (size_t place : places)
      ordered.push_back(packet_.changes[place]);
    packet_.changes = std::move(ordered);
  }

  void readCells(RecordSet& records)
  {
    for (qsizetype i = 0; i < records.fields.size(); ++i) {
      if (!nextElement())
        fail(QStringLiteral("липсват стойности"));
      Column& column = records.columns[size_t(i)];
      if (xml_.name() == u"n") {
        column.appendNull();
        expectEnd();
      } else if (xml_.name() == u"c") {
        readValue(column, records.fields[i]);
      } else {
        fail(QStringLiteral("неочакван елемент '%1'").arg(xml_.name()));
      }
    }
  }

  void readValue(Column& column, const FieldDef& field)
  {
    const bool base64 = flag(xml_.attributes(), u"base64");
    const QString text = xml_.readElementText(QXmlStreamReader::ErrorOnUnexpectedElement);
    if (xml_.hasError())
      fail(xml_.errorString());
    if (!(base64 ? appendBase64(column, text) : appendPlain(column, field.type, text)))
      fail(QStringLiteral("невалидна стойност на поле '%1'").arg(field.name));
  }

  static bool appendBase64(Column& column, const QString& text)
  {
    const auto result = QByteArray::fromBase64Encoding(text.toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
    if (!result)
      return false;
    const QByteArray& decoded = result.decoded;
    if (column.kind() == StorageKind::Blob) {
      column.appendBlob(decoded);
      return true;
    }
    if (column.kind() != StorageKind::Text || decoded.size() % 2 != 0)
      return false;
    QString value(decoded.size() / 2, Qt::Uninitialized);
    std::copy_n(decoded.constData(), decoded.size(), reinterpret_cast<char*>(value.data()));
    column.appendText(value);
    return true;
  }

  static bool appendPlain(Column& column, DataType type, const QString& text)
  {
    switch (column.kind()) {
      case StorageKind::Text: column.appendText(text); return true;
      case StorageKind::Blob: return false;
      case StorageKind::Real: {
        bool ok = false;
        const double value = text.toDouble(&ok);
        if (ok && std::isfinite(value))
          column.appendReal(value);
        return ok && std::isfinite(value);
      }
      case StorageKind::Integer: {
        const std::optional<qint64> value = storedNumber(type, text);
        if (value)
          column.appendInteger(*value);
        return value.has_value();
      }
    }
    return false;
  }

  static std::optional<qint64> storedNumber(DataType type, const QString& text)
  {
    bool ok = false;
    if (isDateType(type) && text.startsWith(u'#')) {
      const qint64 raw = text.mid(1).toLongLong(&ok);
      return ok ? std::optional(raw) : std::nullopt;
    }
    const auto day = [](const QString& s) { return QDate::fromString(s, QStringLiteral("yyyyMMdd")); };
    const auto time = [](const QString& s) { return QTime::fromString(s, QStringLiteral("hh:mm:ss.zzz")); };
    if (type == DataType::Date)
      return day(text).isValid() ? std::optional(storedDate(day(text))) : std::nullopt;
    if (type == DataType::Time)
      return time(text).isValid() ? std::optional(storedTime(time(text))) : std::nullopt;
    if (isDateType(type)) {
      const DayAndTime parts{day(text.section(u'T', 0, 0)), time(text.section(u'T', 1))};
      return parts.date.isValid() && parts.time.isValid() ? std::optional(storedDateTime(parts)) : std::nullopt;
    }
    const qint64 value = text.toLongLong(&ok);
    return ok && convertedValue(type, value, TextForm::Invariant) ? std::optional(value) : std::nullopt;
  }

  QXmlStreamReader xml_;
  PacketFile packet_;
  std::vector<qint64> numbers_;
};

}  // namespace

PacketFile readPacket(const QByteArray& data)
{
  return PacketReader(data).read();
}

}  // namespace kalvor
