#include <QDateTime>
#include <QXmlStreamWriter>

#include "data/regional.h"
#include "data/value_conversion.h"
#include "data/variant.h"
#include "data/xml_packet.h"

namespace kalvor {

namespace {

bool isPlainXml(QStringView text)
{
  for (qsizetype i = 0; i < text.size(); ++i) {
    const char16_t c = text[i].unicode();
    if (c < 0x20 ? c != '\t' && c != '\n' : c == 0xFFFE || c == 0xFFFF)
      return false;
    if (!QChar::isSurrogate(c))
      continue;
    if (!QChar::isHighSurrogate(c) || i + 1 == text.size() || !text[i + 1].isLowSurrogate())
      return false;
    ++i;
  }
  return true;
}

QString dayText(QDate date)
{
  return date.year() >= 1000 && date.year() <= 9999 ? date.toString(u"yyyyMMdd") : QString();
}

QString integerText(DataType type, qint64 value)
{
  QString text;
  if (type == DataType::Date) {
    text = dayText(dateFromStored(value));
  } else if (type == DataType::Time && value >= 0 && value < 86400000) {
    text = timeFromStored(value).toString(u"hh:mm:ss.zzz");
  } else if (type == DataType::DateTime || type == DataType::TimeStamp) {
    const DayAndTime parts = dayAndTime(value);
    const QString day = dayText(parts.date);
    if (!day.isEmpty())
      text = day + u'T' + parts.time.toString(u"hh:mm:ss.zzz");
  } else if (!isDateType(type)) {
    return QString::number(value);
  }
  return text.isEmpty() ? u'#' + QString::number(value) : text;
}

void writeBase64(QXmlStreamWriter& xml, const QByteArray& bytes)
{
  xml.writeStartElement(QStringLiteral("c"));
  xml.writeAttribute(QStringLiteral("base64"), QStringLiteral("1"));
  xml.writeCharacters(QString::fromLatin1(bytes.toBase64()));
  xml.writeEndElement();
}

void writeCell(QXmlStreamWriter& xml, const Column& column, DataType type, qsizetype row)
{
  if (column.isNull(row)) {
    xml.writeEmptyElement(QStringLiteral("n"));
    return;
  }
  switch (column.kind()) {
    case StorageKind::Integer:
      xml.writeTextElement(QStringLiteral("c"), integerText(type, column.integerAt(row)));
      break;
    case StorageKind::Real: xml.writeTextElement(QStringLiteral("c"), variantText(column.realAt(row))); break;
    case StorageKind::Blob: writeBase64(xml, column.blobAt(row)); break;
    case StorageKind::Text: {
      const QStringView text = column.textAt(row);
      if (isPlainXml(text))
        xml.writeTextElement(QStringLiteral("c"), text.toString());
      else
        writeBase64(xml, QByteArray(reinterpret_cast<const char*>(text.utf16()), text.size() * 2));
      break;
    }
  }
}

void writeCells(QXmlStreamWriter& xml, const RecordSet& records, qsizetype row)
{
  for (qsizetype i = 0; i < records.fields.size(); ++i)
    writeCell(xml, records.columns[size_t(i)], records.fields[i].type, row);
}

void writeFlag(QXmlStreamWriter& xml, const char16_t* name, bool on)
{
  if (on)
    xml.writeAttribute(QString::fromUtf16(name), QStringLiteral("1"));
}

void writeFields(QXmlStreamWriter& xml, const QList<FieldDef>& fields)
{
  xml.writeStartElement(QStringLiteral("fields"));
  for (const FieldDef& field : fields) {
    xml.writeStartElement(QStringLiteral("field"));
    xml.writeAttribute(QStringLiteral("name"), field.name);
    for (const DataTypeName& row : dataTypeNames())
      if (row.type == field.type)
        xml.writeAttribute(QStringLiteral("type"), QString::fromUtf16(row.name));
    if (field.size > 0)
      xml.writeAttribute(QStringLiteral("size"), QString::number(field.size));
    writeFlag(xml, u"required", field.required);
    writeFlag(xml, u"readonly", field.readOnly);
    writeFlag(xml, u"fixed", !field.updatable);
    if (!field.origin.isEmpty())
      xml.writeAttribute(QStringLiteral("origin"), field.origin);
    xml.writeEndElement();
  }
  xml.writeEndElement();
}

}  // namespace

const std::vector<DataTypeName>& dataTypeNames()
{
  static const std::vector<DataTypeName> names{
      {DataType::Unknown, u"Unknown"},   {DataType::String, u"String"},     {DataType::WideString, u"WideString"},
      {DataType::SmallInt, u"SmallInt"}, {DataType::Integer, u"Integer"},   {DataType::Word, u"Word"},
      {DataType::LargeInt, u"LargeInt"}, {DataType::AutoInc, u"AutoInc"},   {DataType::Boolean, u"Boolean"},
      {DataType::Float, u"Float"},       {DataType::Currency, u"Currency"}, {DataType::Bcd, u"Bcd"},
      {DataType::Date, u"Date"},         {DataType::Time, u"Time"},         {DataType::DateTime, u"DateTime"},
      {DataType::TimeStamp, u"TimeStamp"}, {DataType::Memo, u"Memo"},       {DataType::WideMemo, u"WideMemo"},
      {DataType::Blob, u"Blob"},
  };
  return names;
}

const char16_t* rowStateName(RowState state)
{
  switch (state) {
    case RowState::Modified: return u"Modified";
    case RowState::Inserted: return u"Inserted";
    case RowState::Deleted: return u"Deleted";
    default: return u"";
  }
}

QByteArray writePacket(const PacketFile& packet)
{
  std::vector<qsizetype> changeOf(size_t(packet.records.rows), -1);
  for (size_t i = 0; i < packet.changes.size(); ++i)
    changeOf[packet.changes[i].row] = qsizetype(i);

  QByteArray data;
  QXmlStreamWriter xml(&data);
  xml.writeStartDocument();
  xml.writeStartElement(QStringLiteral("dataset"));
  xml.writeAttribute(QStringLiteral("version"), QStringLiteral("1"));
  writeFields(xml, packet.records.fields);
  xml.writeStartElement(QStringLiteral("rows"));
  for (qsizetype row = 0; row < packet.records.rows; ++row) {
    xml.writeStartElement(QStringLiteral("r"));
    const qsizetype number = changeOf[size_t(row)];
    const RecordChange* const change = number < 0 ? nullptr : &packet.changes[size_t(number)];
    if (change) {
      xml.writeAttribute(QStringLiteral("status"), QString::fromUtf16(rowStateName(change->state)));
      xml.writeAttribute(QStringLiteral("change"), QString::number(number));
    }
    writeCells(xml, packet.records, row);
    if (change && change->original >= 0) {
      xml.writeStartElement(QStringLiteral("o"));
      writeCells(xml, packet.originals, change->original);
      xml.writeEndElement();
    }
    xml.writeEndElement();
  }
  xml.writeEndElement();
  xml.writeEndElement();
  xml.writeEndDocument();
  return data;
}

}  // namespace kalvor
