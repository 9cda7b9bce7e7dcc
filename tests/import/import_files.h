// Import files, filters and a server's answers for tests.
#pragma once

#include <zip.h>

#include <QFile>
#include <QTemporaryDir>

#include "import/import_reader.h"

namespace kalvor::testing {

class ImportFolder {
 public:
  QString write(const QString& name, const QByteArray& bytes) const
  {
    const QString path = folder_.filePath(name);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
      qFatal("cannot write %s", qPrintable(path));
    return path;
  }

  QString writeZip(const QString& name, const QList<std::pair<QString, QByteArray>>& parts) const
  {
    const QString path = folder_.filePath(name);
    zip_t* archive = zip_open(QFile::encodeName(path).constData(), ZIP_CREATE | ZIP_TRUNCATE, nullptr);
    for (const auto& [part, bytes] : parts)
      zip_file_add(archive, part.toUtf8().constData(),
                   zip_source_buffer(archive, bytes.constData(), zip_uint64_t(bytes.size()), 0), ZIP_FL_ENC_UTF_8);
    if (zip_close(archive) != 0)
      qFatal("cannot write %s", qPrintable(path));
    return path;
  }

 private:
  QTemporaryDir folder_;
};

inline const QByteArray xlsxRelations =
    "<Relationships xmlns='http://schemas.openxmlformats.org/package/2006/relationships'><Relationship Id='r1' "
    "Type='http://schemas.openxmlformats.org/officeDocument/2006/relationships/officeDocument' "
    "Target='xl/workbook.xml'/></Relationships>";
inline const QByteArray xlsxWorkbookRelations =
    "<Relationships xmlns='http://schemas.openxmlformats.org/package/2006/relationships'>"
    "<Relationship Id='c1' Type='http://x/chartsheet' Target='chart.xml'/>"
    "<Relationship Id='s1' Type='http://x/worksheet' Target='/xl/worksheets/data.xml'/>"
    "<Relationship Id='s2' Type='http://x/worksheet' Target='worksheets/other.xml'/>"
    "<Relationship Id='t1' Type='http://x/sharedStrings' Target='texts.xml'/>"
    "<Relationship Id='f1' Type='http://x/styles' Target='styles.xml'/></Relationships>";

// The parts of a workbook around the rows of its first sheet.
inline QList<std::pair<QString, QByteArray>> xlsxParts(const QByteArray& rows, const QByteArray& sharedTexts = {},
                                                       const QByteArray& styles = {}, const QByteArray& options = {})
{
  const QByteArray workbook =
      "<x:workbook xmlns:x='http://schemas.openxmlformats.org/spreadsheetml/2006/main' xmlns:r='http://r'>" + options +
      "<x:sheets><x:sheet name='Графика' r:id='c1'/><x:sheet name='Данни' r:id='s1'/><x:sheet name='Друг' r:id='s2'/>"
      "</x:sheets></x:workbook>";
  return {{"[Content_Types].xml", "<Types/>"},
          {"_rels/.rels", xlsxRelations},
          {"xl/workbook.xml", workbook},
          {"xl/_rels/workbook.xml.rels", xlsxWorkbookRelations},
          {"xl/texts.xml", "<sst>" + sharedTexts + "</sst>"},
          {"xl/styles.xml", "<styleSheet>" + styles + "</styleSheet>"},
          {"xl/worksheets/data.xml", "<worksheet><sheetData>" + rows + "</sheetData></worksheet>"}};
}

// A server whose answers a test lays out by query number; it remembers what it was asked.
class AnsweringServer {
 public:
  struct Request {
    int query;
    QString source, columns;
    FilterArray filter;
  };
  struct Answer {
    int count = 0;
    Variant value;
  };

  ImportServices services()
  {
    return {[this](int query, const QString& source, const QString& columns, const FilterArray& filter, Variant& value,
                   RowsWanted) {
              requests.append({query, source, columns, filter});
              if (query == failingQuery)
                throw DataError(QStringLiteral("Сървърът не отговаря."));
              const Answer answer = answers.value(query);
              value = answer.value;
              return answer.count;
            },
            [this](const QString& text) { messages.append(text); }};
  }

  QHash<int, Answer> answers;
  int failingQuery = -1;
  QList<Request> requests;
  QStringList messages;
};

// "Name=value*; ..." with "*" at key cells: what a test compares lines by.
inline QString lineText(const TImportLine& line)
{
  QStringList cells;
  for (const TImportCell& cell : line)
    cells.append(cell.FieldName + u'=' + variantText(cell.Value) + (cell.IsKey ? "*" : ""));
  return cells.join(QStringLiteral("; "));
}

// The documents of a file, one text a line: the master, then each detail behind "- "; an error behind "! ".
inline QStringList documentsOf(TImportBase& reader)
{
  QStringList lines;
  reader.GetRecordCount();
  for (int left = 10'000; !reader.isEndOfData() && left > 0; --left) {
    TImportLine master;
    TImportSet details;
    QString error;
    if (reader.ReadRecord(master, details, error) != 0) {
      if (!error.isEmpty())
        lines.append(QStringLiteral("! ") + error);
      continue;
    }
    lines.append(lineText(master));
    for (const TImportLine& detail : details)
      lines.append(QStringLiteral("- ") + lineText(detail));
  }
  return lines;
}

inline TImportFilter importFilter(const QString& options, const QString& master, const QString& detail = {},
                                  const QString& rest = {})
{
  TImportFilter filter(1);
  filter.LoadImportParams(QStringLiteral("[OPTIONS]%1[##OPTIONS][CDSMASTER]%2[##CDSMASTER][CDSDETAIL]%3[##CDSDETAIL]%4")
                              .arg(options, master, detail, rest));
  return filter;
}

}  // namespace kalvor::testing
