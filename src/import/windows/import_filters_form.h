// The form in which import filters are written and tried: the filters of a form, what the chosen one does with each
// field, its options and its text, the first rows of a sample file, and a trial that writes nothing.
#pragma once

#include "forms/windows/base_edit_grid.h"
#include "import/import_mapping.h"
#include "import/import_sample.h"
#include "import/windows/import_trial.h"
#include "widgets/data_control.h"

class QLabel;
class QLineEdit;
class QListWidget;
class QPlainTextEdit;
class QPushButton;
class QTableWidget;

namespace kalvor {

class TStringGrid;

inline constexpr int importFiltersForm = 211;

// The text of the current record is the only copy of the filter: every page reads it and writes it.
class BASE_PACKAGE TfEdImportFilters : public TfBaseEditGrid {
  Q_OBJECT
 public:
  explicit TfEdImportFilters(QWidget* parent = nullptr);
  ~TfEdImportFilters() override;

  void buildLayout() override;
  void FormShow() override;
  void acSaveExecute() override;
  void acDeleteRecordExecute() override;
  void CustomUpdateActionState() override;

  const ImportText& filterText() const { return text_; }
  const QList<ImportMappingRow>& mapping() const { return rows_; }
  const ImportSample& sample() const { return sample_; }
  const ImportTrial& trial() const { return trial_; }

  // --- What the controls run ------------------------------------------------------------------------------
  void chooseSample();
  void openSample(const QString& fileName);
  void takeDelimiter();       // the one that was found becomes the filter's
  void tryFilter();
  void editLookup();          // of the mapping's current row; a field without one gets one
  void togglePanes();         // from the list to the page and back

  // --- Controls -------------------------------------------------------------------------------------------
  QTabWidget* pcPages;
  QLineEdit* ebxFile;
  QPushButton *btnFile, *btnDelimiter, *btnTry;
  QLabel *lblSample, *lblProblems;
  TStringGrid *grdMapping, *grdOptions;
  QTableWidget *tblSample, *tblDocuments, *tblLines, *tblFailures;
  QPlainTextEdit *memText, *memSchema;
  QListWidget* lbProblems;
  QLabel* lblTrial;

 private:
  enum class Source : quint8 { Memo, Other };
  void buildPages();
  QWidget* buildFileBar();
  QWidget* buildMappingPage();
  QWidget* buildOptionsPage();
  QWidget* buildTextPage();
  QWidget* buildSchemaPage();
  QWidget* buildTrialPage();
  void recordChanged();
  void changeText(const ImportText& text, Source source);
  // Runs a change of a copy of the text; what the format cannot hold is told and nothing changes.
  void tryChange(const std::function<void(ImportText& text)>& change);
  void storeField(const QString& field, const QString& text);
  void commitGrids();
  void showText(Source source);
  void showMapping();
  void showOptions();
  void showProblems();
  void showSample();
  void readSample();
  void showTrial();
  void showTrialDocument(int document);
  void mappingEdited(int column, int row);
  void optionEdited(int row);
  void schemaEdited();
  void loadFields();
  void loadFieldsOf(int dsIndex, ImportSection part, QString& refusal);
  void goToProblem(int index);
  QString sampleValue(const ImportMappingRow& row) const;
  QString sampleSignature() const;
  int targetForm() const;
  bool mayChange() const;

  FieldBinding textBinding_, schemaBinding_, formBinding_;
  ImportText text_;
  QString schema_;
  QList<ImportFormField> fields_;
  int fieldsForm_ = -1;
  QString fieldsRefusal_;
  QList<ImportMappingRow> rows_;
  QList<ImportTextProblem> problems_;
  QString sampleFile_, sampleSignature_;
  ImportSample sample_;
  ImportTrial trial_;
  bool showing_ = false;
};

// Whether the session's user may look at the filters; writing them takes his rights on the form.
BASE_PACKAGE bool mayOpenImportFilters();
// The filters of a form, or of the card of a list; all of them when the widget is neither, or null.
BASE_PACKAGE void openImportFilters(QWidget* form);
BASE_PACKAGE void openImportFiltersOf(int formId);

}  // namespace kalvor
