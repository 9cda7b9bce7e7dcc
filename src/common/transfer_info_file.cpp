#include <QFile>
#include <QHash>
#include <QSaveFile>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>
#include <limits>

#include "common/text_tools.h"
#include "common/transfer_info.h"
#include "common/transfer_paths.h"
#include "platform/system.h"
#include "session/error_log.h"

namespace kalvor {
namespace {

constexpr qint64 largestInfoFile = 64 * 1024 * 1024;

using RecordTexts = QHash<QString, QString>;  // by element name; of elements that repeat, the first

// All character data of the element. Without recursion, so that no depth of elements is too deep.
QString allTextOf(QXmlStreamReader& xml)
{
  QString text;
  for (qsizetype depth = 1; depth > 0 && !xml.atEnd();) {
    const QXmlStreamReader::TokenType token = xml.readNext();
    if (token == QXmlStreamReader::StartElement)
      ++depth;
    else if (token == QXmlStreamReader::EndElement)
      --depth;
    else if (token == QXmlStreamReader::Characters)
      text += xml.text();
  }
  return text;
}

RecordTexts readRecordTexts(QXmlStreamReader& xml)
{
  RecordTexts texts;
  while (xml.readNextStartElement()) {
    const QString name = xml.name().toString();
    const QString text = allTextOf(xml);
    if (!texts.contains(name))
      texts.insert(name, text);
  }
  return texts;
}

// False: there is no root element.
bool readDocument(QIODevice& device, QList<RecordTexts>& records)
{
  QXmlStreamReader xml(&device);
  xml.setEntityExpansionLimit(0);
  bool root = false;
  while (!xml.atEnd()) {
    xml.readNext();
    if (xml.isDTD())
      throw DataError(QStringLiteral("не се допуска DOCTYPE"));
    if (!xml.isStartElement())
      continue;
    root = true;
    while (xml.readNextStartElement())
      records.append(readRecordTexts(xml));
  }
  if (!root && (xml.error() == QXmlStreamReader::NoError ||
                xml.error() == QXmlStreamReader::PrematureEndOfDocumentError))
    return false;
  if (xml.hasError())
    throw DataError(QStringLiteral("ред %1: %2").arg(xml.lineNumber()).arg(xml.errorString()));
  return true;
}

template <class Integer>
Integer integerOf(const RecordTexts& texts, const QString& name)
{
  bool ok = false;
  const qlonglong value = texts.value(name).trimmed().toLongLong(&ok);
  if (!ok || value < std::numeric_limits<Integer>::min() || value > std::numeric_limits<Integer>::max())
    throw DataError(QStringLiteral("Невалидно число в %1: \"%2\"").arg(name, texts.value(name)));
  return Integer(value);
}

TTransferRecord recordOf(const RecordTexts& texts)
{
  TTransferRecord record;
  record.Id = texts.value(QStringLiteral("Id"));
  record.FileName = texts.value(QStringLiteral("FileName"));
  record.Status = integerOf<qint8>(texts, QStringLiteral("Status"));
  record.CheckSum = integerOf<qint32>(texts, QStringLiteral("CheckSum"));
  record.Error = texts.value(QStringLiteral("Error"));
  return record;
}

bool isXmlControl(QChar c) { return c.unicode() < 0x20 && c != u'\t' && c != u'\n' && c != u'\r'; }

// What XML 1.0 cannot hold replaced, by U+FFFD.
QString infoFileText(const QString& text)
{
  QString result = text;
  for (qsizetype i = 0; i < result.size(); ++i) {
    const QChar c = result.at(i);
    const bool pair = c.isHighSurrogate() && i + 1 < result.size() && result.at(i + 1).isLowSurrogate();
    if (pair)
      ++i;
    else if (c.isSurrogate() || c.unicode() >= 0xFFFE || isXmlControl(c))
      result[i] = QChar::ReplacementCharacter;
  }
  return result;
}

// A reader would make LF of CR LF and of CR, so a CR is written by its number.
void writeInfoElement(QXmlStreamWriter& xml, const QString& name, const QString& text)
{
  xml.writeStartElement(name);
  const QStringList parts = infoFileText(text).split(u'\r');
  for (qsizetype i = 0; i < parts.size(); ++i) {
    if (i > 0)
      xml.writeEntityReference(QStringLiteral("#13"));
    xml.writeCharacters(parts.at(i));
  }
  xml.writeEndElement();
}

void writeDocument(QIODevice& device, const TTransferInfo& info)
{
  QXmlStreamWriter xml(&device);
  xml.writeStartDocument();
  xml.writeStartElement(QStringLiteral("Info"));
  for (const TTransferRecord& record : info.records()) {
    xml.writeStartElement(QStringLiteral("Table"));
    writeInfoElement(xml, QStringLiteral("Id"), record.Id);
    writeInfoElement(xml, QStringLiteral("FileName"), record.FileName);
    writeInfoElement(xml, QStringLiteral("Status"), QString::number(record.Status));
    writeInfoElement(xml, QStringLiteral("CheckSum"), QString::number(record.CheckSum));
    writeInfoElement(xml, QStringLiteral("Error"), record.Error);
    xml.writeEndElement();
  }
  xml.writeEndDocument();
}

}  // namespace

bool FillTranferArrayFromFile(const QString& fileName, TTransferInfo& info)
{
  QFile file(withNativeSeparators(fileName));
  if (!file.open(QIODevice::ReadOnly))
    throw DataError(QStringLiteral("Файлът %1 не може да бъде отворен: %2").arg(fileName, file.errorString()));
  if (file.size() > largestInfoFile)
    throw DataError(QStringLiteral("Файлът %1 е твърде голям.").arg(fileName));
  QList<RecordTexts> records;
  try {
    if (!readDocument(file, records))
      return false;
  } catch (const DataError& error) {
    throw DataError(QStringLiteral("Файлът %1 не може да бъде прочетен: %2").arg(fileName, error.message()));
  }
  return loggingErrors(QStringLiteral("FillTranferArrayFromFile"), [&] {
    for (const RecordTexts& texts : std::as_const(records))
      info.Add(recordOf(texts));
  });
}

int CreateTransferInfoFile(const TTransferInfo& info, const QString& folder, const QString& fileName)
{
  const bool written = loggingErrors(QStringLiteral("CreateTransferInfoFile"), [&] {
    QString target = withNativeSeparators(folder);
    if (!target.isEmpty())
      target = EndWithDirSlash(target, directorySeparator());
    QSaveFile file(target + withNativeSeparators(fileName));
    const bool opened = file.open(QIODevice::WriteOnly);
    if (opened)
      writeDocument(file, info);
    if (!opened || !file.commit())
      throw DataError(
          QStringLiteral("Файлът %1 не може да бъде записан: %2").arg(file.fileName(), file.errorString()));
  });
  return written ? 0 : -1;
}

}  // namespace kalvor
