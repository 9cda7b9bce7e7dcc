// One import: documents of a file go into a form's datasets as if they were typed, each saved before the next.
#pragma once

#include "forms/windows/base_form.h"
#include "import/import_reader.h"
#include "import/windows/import_prompt.h"
#include "import/windows/import_trial.h"

namespace kalvor {

class TfBaseEdit;
class TfImportProgress;
class RememberedReadsScope;

// IMPORT_ACTION of an import filter: what becomes of a record, found or not found by its key cells.
enum ImportAction : int { AlwaysInsert, UpdateOnly, UpdateOrInsert, InsertOnly, LinesOnly };

class ImportRun {
 public:
  // The form is open. keyField and keyValue name its document for a file that holds lines only.
  ImportRun(TfBase& form, const TImportFilter& filter, QString keyField, QString keyValue, ImportAttended attended);
  ~ImportRun();
  ImportRun(const ImportRun&) = delete;
  ImportRun& operator=(const ImportRun&) = delete;

  // Reads the file to its end, or to where the user stops it. TImportException when the file cannot be opened.
  void run(const QString& fileName);
  // Opens the form as TfBase::ImportData does, puts the first documents into it as run() does, and cancels each: nothing
  // is saved, nothing shown. Raises what keeps the trial from beginning.
  static void tryInto(TfBase& form, int formId, const TImportFilter& filter, const QString& fileName, int mostDocuments,
                      ImportTrial& trial);

 private:
  void tryDocuments(const QString& fileName, int mostDocuments, ImportTrial& trial);
  struct Trying;
  enum class Next : quint8 { Document, End };

  Next importNext();
  Next importDocument();
  Next readFailed(const QString& error);
  Next saveFailed();
  Next ask(int code, const QString& text);
  bool cancelled();
  bool putDocument();  // false: the record is passed over
  bool putMaster();    // the same
  void putLines();
  bool placeLine(const TImportLine& line);  // false: the line is passed over
  void putCells(TClientDataSet& dataSet, const TImportLine& line);
  void reloadDocument();
  bool save();
  void keepLines();
  void dropDocument();
  bool finishFailed();
  bool linesOnly() const;
  QString recordInfo() const;
  void told(const QString& text);
  void report();
  static ImportServices serverServices();
  void watch(ImportServices& services);
  void tryDocument(bool failedToRead, const QString& readingError);
  void tryLine(qsizetype index);
  void noteFailure(const QString& field, const QString& value, const std::exception& failure);
  void noteTold(const QString& text);

  TfBase& form_;
  TfBaseEdit* edit_;  // the form, when it saves
  TClientDataSet& master_;
  TClientDataSet* detail_;  // the first one; null without
  const TImportFilter& filter_;
  const QString keyField_, keyValue_;
  const ImportAttended attended_;
  TFormatSettings settings_;
  bool finishDocuments_ = false;
  bool failed_ = false;
  std::unique_ptr<TfImportProgress> progress_;
  std::unique_ptr<TImportBase> reader_;
  TImportLine line_;
  TImportSet lines_;
  int readStatus_ = 0;
  RememberedReadsScope* reads_ = nullptr;  // while it runs
  Trying* trying_ = nullptr;               // during a trial
};

// What TfBase::PrepareImportCDS answers.
enum PrepareResult : int { PrepareFailed = -1, PrepareGoOn = 0, PrepareSkip = 1 };

}  // namespace kalvor
