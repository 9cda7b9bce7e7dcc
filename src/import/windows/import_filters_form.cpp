// The form's one truth, the text of the current filter, and what each page does to it.
#include "import/windows/import_filters_form.h"

#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QTabWidget>
#include <QTextBlock>

#include "data/data_error.h"
#include "forms/field_metadata.h"
#include "forms/form_filters.h"
#include "forms/form_rights.h"
#include "forms/windows/form_server.h"
#include "import/windows/import_filter_columns.h"
#include "import/windows/import_lookup_dialog.h"
#include "platform/ports.h"
#include "session/error_log.h"
#include "session/server_calls.h"
#include "widgets/db_grid_ex.h"
#include "widgets/string_grid.h"
#include "widgets/theme.h"

namespace kalvor {

namespace {

constexpr QSize importFiltersSize(1120, 600);
constexpr int linesForm = 1;  // dataset index of a form's lines

QString shownLines(const QString& stored)
{
  return QString(stored).remove(u'\r');
}

bool showsText(const QPlainTextEdit& memo, const QString& stored)
{
  return storedImportText(memo.document()->toRawText()) == storedImportText(stored);
}

}  // namespace

TfEdImportFilters::TfEdImportFilters(QWidget* parent)
    : TfBaseEditGrid(parent),
      textBinding_([this](DataEvent, TField*) { recordChanged(); }),
      schemaBinding_([this](DataEvent, TField*) { recordChanged(); }),
      formBinding_([this](DataEvent, TField*) { recordChanged(); })
{
  dbgMaster_->setAccessibleName(QStringLiteral("Импортни филтри"));
  const std::pair<FieldBinding*, QString> bindings[] = {{&textBinding_, QStringLiteral("DataPort")},
                                                        {&schemaBinding_, QStringLiteral("DPSchema")},
                                                        {&formBinding_, QStringLiteral("Form_Id")}};
  buildPages();
  for (const auto& [binding, field] : bindings) {
    binding->setFieldName(field);
    binding->setDataSet(cdsMaster_);
  }
  addNamedAction(QStringLiteral("acSampleFile"), QStringLiteral("Примерен файл"), QKeySequence(QStringLiteral("F7")),
                 [this] { chooseSample(); });
  addNamedAction(QStringLiteral("acTryFilter"), QStringLiteral("Проба"), QKeySequence(QStringLiteral("F9")),
                 [this] { tryFilter(); });
  addNamedAction(QStringLiteral("acTogglePanes"), QStringLiteral("Сменя списък/страница"),
                 QKeySequence(QStringLiteral("F4")), [this] { togglePanes(); });
  resize(importFiltersSize);
}

TfEdImportFilters::~TfEdImportFilters() = default;

void TfEdImportFilters::FormShow()
{
  TfBaseEditGrid::FormShow();
  grdMapping->select(mcColumn, 1);
  recordChanged();
}

// --- The record ------------------------------------------------------------------------------------------------

int TfEdImportFilters::targetForm() const
{
  const TField* field = cdsMaster_->Active() ? cdsMaster_->FindField(u"Form_Id") : nullptr;
  return field ? int(field->AsInteger()) : 0;
}

bool TfEdImportFilters::mayChange() const
{
  if (!cdsMaster_->Active()) {
    return false;
  }
  return cdsMaster_->State() == DataSetState::Insert || (rights().EditRight && !cdsMaster_->IsEmpty());
}

void TfEdImportFilters::recordChanged()
{
  if (showing_) {
    return;
  }
  const TField* text = textBinding_.field();
  const TField* schema = schemaBinding_.field();
  const QString stored = text ? text->AsString() : QString();
  const QString storedSchema = schema ? schema->AsString() : QString();
  const bool fresh = stored != text_.text() || storedSchema != schema_;
  const bool otherForm = targetForm() != fieldsForm_;
  const bool editable = mayChange();
  memText->setReadOnly(!editable);
  memSchema->setReadOnly(!editable);
  if (!fresh && !otherForm) {
    return;
  }
  const QScopedValueRollback<bool> showing(showing_, true);
  if (otherForm) {
    loadFields();
  }
  text_ = ImportText(stored);
  if (storedSchema != schema_ || !showsText(*memSchema, storedSchema)) {
    schema_ = storedSchema;
    memSchema->setPlainText(shownLines(storedSchema));
  }
  trial_ = {};
  showTrial();
  showText(Source::Other);
}

void TfEdImportFilters::loadFields()
{
  fieldsForm_ = targetForm();
  fields_.clear();
  fieldsRefusal_.clear();
  if (fieldsForm_ <= 0) {
    return;
  }
  loadFieldsOf(0, ImportSection::Master, fieldsRefusal_);
  QString noLines;
  loadFieldsOf(linesForm, ImportSection::Detail, noLines);
}

void TfEdImportFilters::loadFieldsOf(int dsIndex, ImportSection part, QString& refusal)
{
  QString provider;
  try {
    provider = createDynamicProvider(sessionCalls());
    VariantArray descriptions;
    if (requestData(sessionCalls(), fieldsForm_, dsIndex, provider, noRowFilter(), QString(), {}, &descriptions) == 0) {
      for (const Variant& row : descriptions) {
        const FieldDescription field(row);
        if (field.fieldType() != u"6") {
          fields_.append({part, field.fieldName(), field.text(FieldColumn::Caption), field.isOne(FieldColumn::Visible),
                          field.isRequired()});
        }
      }
    }
  } catch (const std::exception& failure) {
    refusal = errorText(failure);
  }
  if (!provider.isEmpty()) {
    loggingErrors(QStringLiteral("TfEdImportFilters.loadFields"), [&] { deleteDynamicProvider(sessionCalls(), provider); });
  }
}

void TfEdImportFilters::storeField(const QString& field, const QString& text)
{
  if (!cdsMaster_->IsEditing()) {
    cdsMaster_->Edit();
  }
  cdsMaster_->FieldByName(field)->SetAsString(text);
}

void TfEdImportFilters::changeText(const ImportText& text, Source source)
{
  const QScopedValueRollback<bool> showing(showing_, true);
  const bool stored = attempt(memText, [&] { storeField(QStringLiteral("DataPort"), text.text()); });
  if (stored) {
    text_ = text;
  }
  showText(stored ? source : Source::Other);
}

void TfEdImportFilters::tryChange(const std::function<void(ImportText& text)>& change)
{
  ImportText changed = text_;
  try {
    if (!mayChange()) {
      throw DataError(QStringLiteral("Няма филтър, който да бъде променен: добавете го с Ctrl+N."));
    }
    change(changed);
  } catch (const DataError& refusal) {
    showText(Source::Other);
    showError(refusal.message());
    return;
  }
  changeText(changed, Source::Other);
}

void TfEdImportFilters::commitGrids()
{
  for (TStringGrid* grid : {grdMapping, grdOptions}) {
    grid->commitEdit();
  }
}

void TfEdImportFilters::acSaveExecute()
{
  commitGrids();
  TfBaseEditGrid::acSaveExecute();
}

void TfEdImportFilters::acDeleteRecordExecute()
{
  requireDeleteRight();
  if (!cdsMaster_->IsEmpty() && confirm(QStringLiteral("Да бъде ли изтрит филтърът „%1“?")
                                            .arg(cdsMaster_->FieldByName(u"Description")->AsString()))) {
    TfBaseEditGrid::acDeleteRecordExecute();
  }
}

void TfEdImportFilters::CustomUpdateActionState()
{
  TfBaseEditGrid::CustomUpdateActionState();
  const bool there = cdsMaster_->Active() && (!cdsMaster_->IsEmpty() || cdsMaster_->State() == DataSetState::Insert);
  pcPages->setEnabled(there);
  btnTry->setEnabled(there);
  action(QStringLiteral("acTryFilter"))->setEnabled(there);
}

// --- Text, mapping, options ------------------------------------------------------------------------------------

void TfEdImportFilters::showText(Source source)
{
  const QScopedValueRollback<bool> showing(showing_, true);
  if (source != Source::Memo && !showsText(*memText, text_.text())) {
    const int position = memText->textCursor().position();
    memText->setPlainText(shownLines(text_.text()));
    QTextCursor cursor = memText->textCursor();
    cursor.setPosition(std::min(position, int(memText->toPlainText().size())));
    memText->setTextCursor(cursor);
  }
  if (!sampleFile_.isEmpty() && sampleSignature() != sampleSignature_) {
    readSample();
  }
  showMapping();
  showOptions();
  showProblems();
}

void TfEdImportFilters::showMapping()
{
  rows_ = importMapping(text_, fields_);
  StringTable& table = grdMapping->table();
  if (table.RowCount() != rows_.size() + 1) {
    table.SetRowCount(int(rows_.size()) + 1);
  }
  for (int i = 0; i < rows_.size(); ++i) {
    const ImportMappingRow& row = rows_[i];
    const QString caption = row.caption.isEmpty() ? QStringLiteral("(няма такова поле)") : row.caption;
    const QStringList cells{row.part == ImportSection::Master ? QStringLiteral("Заглавие") : QStringLiteral("Ред"),
                            row.required ? caption + QStringLiteral(" *") : caption,
                            row.field,
                            row.column,
                            sampleValue(row),
                            row.defaultText,
                            row.key ? QStringLiteral("да") : QString(),
                            row.lookup,
                            row.range};
    for (int column = 0; column < cells.size(); ++column) {
      table.SetCells(column, i + 1, cells[column]);
    }
  }
  const bool fixedWidth = text_.value(ImportSection::Options, QStringLiteral("TXTFILE_SEP")).toUpper() == u"FIXEDLEN";
  grdMapping->setColumnHidden(mcRange, !fixedWidth);
}

// What the first row of data holds in the field's column.
QString TfEdImportFilters::sampleValue(const ImportMappingRow& row) const
{
  const bool isText = sample_.source == ImportSample::Source::Text;
  const int first = isText ? std::max(1, text_.value(ImportSection::Options, QStringLiteral("FIRST_ROW")).trimmed().toInt()) : 1;
  const QStringList cells = sample_.rows.value(first - sample_.firstRowNumber);
  const int column = row.column.section(u',', 0, 0).toInt();
  return column < 1 ? QString() : cells.value(column - 1);
}

void TfEdImportFilters::mappingEdited(int column, int row)
{
  if (row < 1 || row > rows_.size() || showing_) {
    return;
  }
  ImportMappingRow changed = rows_[row - 1];
  const QString text = grdMapping->Cells(column, row).trimmed();
  switch (column) {
    case mcColumn: changed.column = text.section(u' ', 0, 0); break;
    case mcDefault: changed.defaultText = text; break;
    case mcKey: changed.key = !text.isEmpty() && text.compare(QStringLiteral("не"), Qt::CaseInsensitive) != 0; break;
    case mcRange: changed.range = text; break;
    default: return;
  }
  if (changed.column.isEmpty() && changed.defaultText.isEmpty() && changed.entry < 0) {
    return showMapping();
  }
  tryChange([&changed](ImportText& filter) { putImportMapping(filter, changed); });
}

void TfEdImportFilters::showOptions()
{
  const QList<ImportOption>& options = importOptions();
  for (int i = 0; i < options.size(); ++i) {
    grdOptions->SetCells(ocValue, i + 1, text_.value(ImportSection::Options, options[i].key));
  }
}

void TfEdImportFilters::optionEdited(int row)
{
  const ImportOption option = importOptions().value(row - 1);
  if (option.key.isEmpty() || showing_) {
    return;
  }
  const QString value = grdOptions->Cells(ocValue, row);
  tryChange([&](ImportText& filter) { filter.setValue(ImportSection::Options, option.key, value); });
}

void TfEdImportFilters::schemaEdited()
{
  if (showing_) {
    return;
  }
  const QScopedValueRollback<bool> showing(showing_, true);
  const QString written = storedImportText(memSchema->document()->toRawText());
  if (attempt(memSchema, [&] { storeField(QStringLiteral("DPSchema"), written); })) {
    schema_ = written;
  } else {
    memSchema->setPlainText(shownLines(schema_));
  }
  if (sample_.source == ImportSample::Source::Xml && !sampleFile_.isEmpty()) {
    readSample();
    showMapping();
  }
}

void TfEdImportFilters::showProblems()
{
  problems_.clear();
  if (cdsMaster_->Active() && !cdsMaster_->IsEmpty()) {
    problems_ = importTextProblems(text_, fields_);
  }
  lbProblems->clear();
  QList<QTextEdit::ExtraSelection> marks;
  for (const ImportTextProblem& problem : problems_) {
    lbProblems->addItem(QStringLiteral("Ред %1: %2").arg(problem.line).arg(problem.text));
    QTextEdit::ExtraSelection mark;
    mark.format.setBackground(theme().invalid);
    mark.format.setProperty(QTextFormat::FullWidthSelection, true);
    mark.cursor = QTextCursor(memText->document()->findBlockByNumber(problem.line - 1));
    marks.append(mark);
  }
  memText->setExtraSelections(marks);
  QString said = fieldsRefusal_;
  if (said.isEmpty() && !problems_.isEmpty()) {
    said = QStringLiteral("Грешки в текста: %1. ").arg(problems_.size()) + lbProblems->item(0)->text();
  }
  lblProblems->setText(said);
  lblProblems->setVisible(!said.isEmpty());
}

void TfEdImportFilters::goToProblem(int index)
{
  if (index < 0 || index >= problems_.size()) {
    return;
  }
  memText->setTextCursor(QTextCursor(memText->document()->findBlockByNumber(problems_[index].line - 1)));
  memText->setFocus(Qt::ShortcutFocusReason);
}

void TfEdImportFilters::editLookup()
{
  const int row = grdMapping->Row();
  if (row < 1 || row > rows_.size() || !mayChange()) {
    return;
  }
  const ImportMappingRow chosen = rows_[row - 1];
  ImportLookupText lookup;
  if (chosen.isLookup) {
    lookup = importLookupText(text_, chosen.part, chosen.entry);
  } else {
    lookup.column = chosen.column;
    lookup.range = chosen.range;
    lookup.key = chosen.key;
    lookup.targetFields = chosen.field;
    lookup.conditions = {{QString(), QStringLiteral("="), QStringLiteral("8"), chosen.column, QString()}};
  }
  QStringList targets;
  for (const ImportFormField& field : fields_) {
    if (field.part == chosen.part) {
      targets.append(field.name);
    }
  }
  TfImportLookup dialog(lookup, targets, int(text_.entries(ImportSection::Fallbacks).size()), chosen.isLookup, window());
  dialog.onAccept = [&](const ImportLookupText& written) {
    ImportText trial = text_;
    putImportLookup(trial, chosen.part, chosen.entry, written);
  };
  if (dialog.exec() != QDialog::Accepted) {
    return;
  }
  if (dialog.removed()) {
    tryChange([&](ImportText& filter) { filter.removeEntry(chosen.part, chosen.entry); });
  } else {
    tryChange([&](ImportText& filter) { putImportLookup(filter, chosen.part, chosen.entry, dialog.lookup()); });
  }
}

}  // namespace kalvor
