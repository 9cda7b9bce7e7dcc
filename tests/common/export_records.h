// Documents with lines, a folder for their files, and the log of what went wrong.
#pragma once

#include "common/run_progress.h"
#include "records.h"
#include "scratch_documents.h"
#include "scripted_ports.h"
#include "session/error_log.h"

namespace kalvor::testing {

using namespace Qt::StringLiterals;

struct ExportDesk {
  ExportDesk()
  {
    InitLog();
    master.CreateDataSet({fieldDef(u"ID"_s, DataType::Integer), fieldDef(u"Name"_s, DataType::WideString, 6),
                          fieldDef(u"Amount"_s, DataType::Float), fieldDef(u"Day"_s, DataType::Date)});
    label(master, {u"Код"_s, u"Име"_s, u"Сума"_s, u"Дата"_s});
    master.AppendRecord({1, u"Аня"_s, 12.345, QDate(2026, 1, 18)});
    master.AppendRecord({2, u"=1+1"_s, -0.001, Variant()});
    master.AppendRecord({3, u"Жълтите"_s.left(6), Variant(), QDate(1999, 12, 31)});
    detail.CreateDataSet({fieldDef(u"Master_ID"_s, DataType::Integer), fieldDef(u"Name"_s, DataType::WideString, 4)});
    label(detail, {u"Код"_s, u"Ред. име"_s});
    for (int line : {1, 1, 3})
      detail.AppendRecord({line, u"р%1"_s.arg(line)});
  }
  ~ExportDesk() { CloseLog(); }

  static void label(TClientDataSet& dataSet, const QStringList& labels)
  {
    for (int i = 0; i < labels.size(); ++i)
      dataSet.Field(i)->DisplayLabel = labels[i];
  }
  // The lines of the master record that is current.
  void showLines()
  {
    detail.SetFilter(u"Master_ID = %1"_s.arg(master.FieldByName(u"ID")->AsInteger()));
    detail.SetFiltered(true);
  }
  QString path(const QString& name) const { return files.filePath(name); }
  QByteArray read(const QString& name) const
  {
    QFile file(path(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
  }
  QStringList fileNames() const { return QDir(files.path()).entryList(QDir::Files | QDir::Hidden); }
  bool logged(const QString& text) const
  {
    QStringList lines;
    LoadErrorLog(lines);
    return lines.join(u'\n').contains(text);
  }

  ScratchDocuments documents;
  QTemporaryDir files;
  ScriptedPrompt prompt;
  TClientDataSet master, detail;
};

// A window that is asked to stop at every look.
class StoppedProgress : public RunProgress {
 public:
  void start(qsizetype count, const QString&) override { lastCount = count; }
  bool advance(qsizetype) override { return false; }
  static inline qsizetype lastCount = 0;
};

}  // namespace kalvor::testing
