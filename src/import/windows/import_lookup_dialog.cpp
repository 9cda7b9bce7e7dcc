#include "import/windows/import_lookup_dialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "data/data_error.h"
#include "forms/windows/form_server.h"
#include "platform/ports.h"
#include "session/error_log.h"
#include "session/server_calls.h"
#include "widgets/string_grid.h"
#include "widgets/theme.h"

namespace kalvor {

namespace {

constexpr QSize lookupDialogSize(720, 520);
constexpr int spareRows = 8;  // empty rows to write into

enum ConditionColumn : int { ccField, ccOperator, ccType, ccColumn, ccLiteral, ccConjunction, ccCount };
enum FilledColumn : int { fcSource, fcTarget, fcCount };

const QStringList& conditionTypes()
{
  static const QStringList types{QStringLiteral("8 текст"), QStringLiteral("3 цяло число"), QStringLiteral("5 число"),
                                 QStringLiteral("7 дата"), QStringLiteral("11 да/не")};
  return types;
}

QString typeText(const QString& code)
{
  for (const QString& type : conditionTypes()) {
    if (type.section(u' ', 0, 0) == code.trimmed()) {
      return type;
    }
  }
  return code;
}

QList<VariantArray> serverRows(const QString& table, const QString& columns, const FilterArray& filter)
{
  QList<VariantArray> rows;
  loggingErrors(QStringLiteral("TfImportLookup"), [&] {
    Variant answer;
    if (requestValue(sessionCalls(), TableColumns, table, columns, filter, answer, RowsWanted::All) > 0) {
      for (const Variant& row : answer.toList()) {
        rows.append(row.toList());
      }
    }
  });
  return rows;
}

QStringList splitNames(const QString& list)
{
  QStringList names;
  for (const QString& name : list.split(u',', Qt::SkipEmptyParts)) {
    names.append(name.trimmed());
  }
  return names;
}

}  // namespace

TfImportLookup::TfImportLookup(const ImportLookupText& lookup, const QStringList& targets, int fallbacks, bool removable,
                               QWidget* parent)
    : QDialog(parent), original_(lookup), targets_(targets)
{
  setObjectName(QStringLiteral("TfImportLookup"));
  setWindowTitle(QStringLiteral("Търсене на стойност"));
  build(removable, fallbacks);
  loadQueries();
  showLookup(lookup);
}

void TfImportLookup::build(bool removable, int fallbacks)
{
  cbQuery = new QComboBox;
  ebxQuery = new QLineEdit;
  ebxTable = new QLineEdit;
  ebxColumn = new QLineEdit;
  ebxRange = new QLineEdit;
  cbFallback = new QComboBox;
  cbxKey = new QCheckBox(QStringLiteral("&Ключ: по тези полета се търси съществуващ запис"));
  cbFallback->addItem(QStringLiteral("по подразбиране"), QString());
  for (int i = 1; i <= fallbacks; ++i) {
    cbFallback->addItem(QStringLiteral("резервно търсене %1").arg(i), QString::number(i));
  }
  grdConditions = new TStringGrid(ccCount);
  grdConditions->table().setTitles({QStringLiteral("Поле на таблицата"), QStringLiteral("Сравнение"), QStringLiteral("Вид"),
                                    QStringLiteral("Колона"), QStringLiteral("или стойност"), QStringLiteral("Връзка")});
  grdConditions->setColumnWidths({190, 80, 100, 70, 130, 60});
  grdConditions->setAccessibleName(QStringLiteral("Условия"));
  grdConditions->OnGetEditor = [this](int column, int) {
    using Kind = StringCellEditor::Kind;
    switch (column) {
      case ccField: loadSourceFields(); return StringCellEditor{Kind::DropDown, sourceFields_, {}};
      case ccOperator:
        return StringCellEditor{Kind::DropDown,
                                {QStringLiteral("="), QStringLiteral("<>"), QStringLiteral("LIKE"), QStringLiteral("<="), QStringLiteral(">=")}, {}};
      case ccType: return StringCellEditor{Kind::DropDown, conditionTypes(), {}};
      case ccConjunction: return StringCellEditor{Kind::DropDown, {QStringLiteral("AND")}, {}};
      default: return StringCellEditor{Kind::Plain, {}, {}};
    }
  };
  grdFields = new TStringGrid(fcCount);
  grdFields->table().setTitles({QStringLiteral("Взима се от намерения запис"), QStringLiteral("Попълва се във формата")});
  grdFields->setColumnWidths({300, 300});
  grdFields->setAccessibleName(QStringLiteral("Полета"));
  grdFields->OnGetEditor = [this](int column, int) {
    loadSourceFields();
    return StringCellEditor{StringCellEditor::Kind::DropDown, column == fcSource ? sourceFields_ : targets_, {}};
  };

  const std::pair<QWidget*, const char*> names[] = {
      {cbQuery, "cbQuery"}, {ebxQuery, "ebxQuery"}, {ebxTable, "ebxTable"}, {ebxColumn, "ebxColumn"},
      {ebxRange, "ebxRange"}, {cbFallback, "cbFallback"}, {cbxKey, "cbxKey"}, {grdConditions, "grdConditions"}, {grdFields, "grdFields"}};
  for (const auto& [widget, name] : names) {
    widget->setObjectName(QLatin1String(name));
  }
  auto* form = new QFormLayout;
  form->setHorizontalSpacing(spacing::normal);
  form->setVerticalSpacing(spacing::tight);
  form->addRow(QStringLiteral("&Търси се в:"), cbQuery);
  auto* place = new QHBoxLayout;
  place->setSpacing(spacing::normal);
  const auto addLabelled = [place](const QString& caption, QLineEdit* edit, int width) {
    auto* label = new QLabel(caption);
    label->setBuddy(edit);
    edit->setAccessibleName(QString(caption).remove(u'&'));
    edit->setMinimumWidth(width);
    place->addWidget(label);
    place->addWidget(edit, width);
  };
  addLabelled(QStringLiteral("&Заявка:"), ebxQuery, 70);
  addLabelled(QStringLiteral("Та&блица:"), ebxTable, 160);
  addLabelled(QStringLiteral("К&олона:"), ebxColumn, 50);
  addLabelled(QStringLiteral("О&бхват:"), ebxRange, 70);
  form->addRow(QString(), place);
  form->addRow(QStringLiteral("Ако няма &намерен:"), cbFallback);
  form->addRow(QString(), cbxKey);

  btnOk = new QPushButton(QStringLiteral("Ok"));
  btnCancel = new QPushButton(QStringLiteral("Отказ"));
  btnRemove = new QPushButton(QStringLiteral("&Премахване"));
  auto* buttons = new QHBoxLayout;
  buttons->setSpacing(spacing::normal);
  buttons->addWidget(btnRemove);
  buttons->addStretch();
  buttons->addWidget(btnOk);
  buttons->addWidget(btnCancel);
  btnRemove->setVisible(removable);
  btnRemove->setAutoDefault(false);
  btnCancel->setAutoDefault(false);
  btnOk->setDefault(true);
  connect(btnOk, &QPushButton::clicked, this, &QDialog::accept);
  connect(btnCancel, &QPushButton::clicked, this, &QDialog::reject);
  connect(btnRemove, &QPushButton::clicked, this, [this] {
    removed_ = true;
    QDialog::accept();
  });
  connect(cbQuery, &QComboBox::activated, this, [this](int index) {
    const QStringList chosen = cbQuery->itemData(index).toStringList();
    if (chosen.size() == 2) {
      ebxQuery->setText(chosen[0]);
      ebxTable->setText(chosen[1]);
    }
  });

  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(spacing::wide, spacing::wide, spacing::wide, spacing::wide);
  column->setSpacing(spacing::normal);
  column->addLayout(form);
  column->addWidget(new QLabel(QStringLiteral("Условия: стойността е от колона на файла или е написана")));
  column->addWidget(grdConditions, 1);
  column->addWidget(grdFields, 1);
  column->addLayout(buttons);
  resize(lookupDialogSize);
}

// Queries whose records are looked for: the masters that have a table.
void TfImportLookup::loadQueries()
{
  cbQuery->addItem(QStringLiteral("(изберете)"), QStringList());
  const FilterArray masters{{QStringLiteral("S_QueryList.Ds_Index"), QStringLiteral("="), 0, QString(), QString()}};
  for (const VariantArray& row : serverRows(QStringLiteral("S_QueryList"), QStringLiteral("Id,BaseTable,Description"), masters)) {
    const QString table = variantText(row.value(1));
    if (!table.isEmpty()) {
      const QString id = variantText(row.value(0));
      cbQuery->addItem(QStringLiteral("%1 (%2, %3)").arg(variantText(row.value(2)), table, id), QStringList{id, table});
    }
  }
}

void TfImportLookup::loadSourceFields()
{
  const QString query = ebxQuery->text().trimmed();
  if (query == sourceFieldsOf_) {
    return;
  }
  sourceFieldsOf_ = query;
  sourceFields_.clear();
  const FilterArray ofQuery{{QStringLiteral("S_FieldList.SQL_ID"), QStringLiteral("="), query.toInt(), QString(), QString()}};
  for (const VariantArray& row : serverRows(QStringLiteral("S_FieldList"), QStringLiteral("FieldName,Caption"), ofQuery)) {
    sourceFields_.append(variantText(row.value(0)));
  }
}

void TfImportLookup::showLookup(const ImportLookupText& lookup)
{
  ebxQuery->setText(lookup.query);
  ebxTable->setText(lookup.table);
  ebxColumn->setText(lookup.column);
  ebxRange->setText(lookup.range);
  cbxKey->setChecked(lookup.key);
  for (int i = 0; i < cbQuery->count(); ++i) {
    if (cbQuery->itemData(i).toStringList().value(0) == lookup.query && !lookup.query.isEmpty()) {
      cbQuery->setCurrentIndex(i);
    }
  }
  if (cbFallback->findData(lookup.fallback) < 0) {
    cbFallback->addItem(QStringLiteral("резервно търсене %1 (не е описано)").arg(lookup.fallback), lookup.fallback);
  }
  cbFallback->setCurrentIndex(cbFallback->findData(lookup.fallback));
  grdConditions->table().SetRowCount(int(lookup.conditions.size()) + spareRows);
  for (int i = 0; i < lookup.conditions.size(); ++i) {
    const ImportLookupText::Condition& condition = lookup.conditions[i];
    const qsizetype at = condition.value.indexOf(u'@');
    const QStringList cells{condition.field, condition.op, typeText(condition.type), at < 0 ? condition.value : QString(),
                            at < 0 ? QString() : QString(condition.value).remove(at, 1), condition.conjunction};
    for (int column = 0; column < cells.size(); ++column) {
      grdConditions->SetCells(column, i + 1, cells[column]);
    }
  }
  const QStringList sources = splitNames(lookup.sourceFields), filled = splitNames(lookup.targetFields);
  const int count = int(std::max(sources.size(), filled.size()));
  grdFields->table().SetRowCount(count + spareRows);
  for (int i = 0; i < count; ++i) {
    grdFields->SetCells(fcSource, i + 1, sources.value(i));
    grdFields->SetCells(fcTarget, i + 1, filled.value(i));
  }
  grdConditions->select(ccField, 1);
  grdFields->select(fcSource, 1);
}

ImportLookupText TfImportLookup::lookup() const
{
  ImportLookupText lookup = original_;
  lookup.query = ebxQuery->text().trimmed();
  lookup.table = ebxTable->text().trimmed();
  lookup.column = ebxColumn->text().trimmed();
  lookup.range = ebxRange->text().trimmed();
  lookup.key = cbxKey->isChecked();
  lookup.fallback = cbFallback->currentData().toString();
  lookup.conditions.clear();
  for (int row = 1; row < grdConditions->RowCount(); ++row) {
    const auto cell = [&](ConditionColumn column) { return grdConditions->Cells(column, row).trimmed(); };
    if (cell(ccField).isEmpty() && cell(ccColumn).isEmpty() && cell(ccLiteral).isEmpty()) {
      continue;
    }
    ImportLookupText::Condition condition;
    condition.field = cell(ccField);
    // The condition names the field with its table, as the server looks it up.
    if (!condition.field.contains(u'.') && !lookup.table.isEmpty()) {
      condition.field = lookup.table + u'.' + condition.field;
    }
    condition.op = cell(ccOperator).isEmpty() ? QStringLiteral("=") : cell(ccOperator);
    condition.type = cell(ccType).isEmpty() ? QStringLiteral("8") : cell(ccType).section(u' ', 0, 0);
    condition.value = cell(ccColumn).isEmpty() ? u'@' + cell(ccLiteral) : cell(ccColumn);
    condition.conjunction = cell(ccConjunction);
    lookup.conditions.append(condition);
  }
  QStringList sources, filled;
  for (int row = 1; row < grdFields->RowCount(); ++row) {
    const QString source = grdFields->Cells(fcSource, row).trimmed(), target = grdFields->Cells(fcTarget, row).trimmed();
    if (!source.isEmpty()) {
      sources.append(source);
    }
    if (!target.isEmpty()) {
      filled.append(target);
    }
  }
  lookup.sourceFields = sources.join(u',');
  lookup.targetFields = filled.join(u',');
  // A lookup with nothing but a column in its conditions stands at that column.
  for (const ImportLookupText::Condition& condition : lookup.conditions) {
    if (lookup.column.isEmpty() && !condition.value.startsWith(u'@')) {
      lookup.column = condition.value;
    }
  }
  return lookup;
}

void TfImportLookup::accept()
{
  grdConditions->commitEdit();
  grdFields->commitEdit();
  try {
    if (ebxTable->text().trimmed().isEmpty() || ebxQuery->text().trimmed().isEmpty()) {
      throw DataError(QStringLiteral("Не е посочено къде се търси."));
    }
    if (lookup().conditions.isEmpty()) {
      throw DataError(QStringLiteral("Не е посочено условие, по което се търси."));
    }
    if (onAccept) {
      onAccept(lookup());
    }
  } catch (const DataError& refusal) {
    showError(refusal.message());
    return;
  }
  QDialog::accept();
}

}  // namespace kalvor
