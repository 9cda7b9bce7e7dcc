#include "import/windows/import_choice.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QFileInfo>
#include <QGroupBox>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include "data/data_error.h"
#include "forms/windows/form_server.h"
#include "import/messages.h"
#include "import/windows/import_filters_form.h"
#include "platform/ports.h"
#include "session/server_calls.h"
#include "widgets/theme.h"

namespace kalvor {

namespace {

constexpr QSize filterListSize(380, 220);

enum FilterColumn : int { fcDataPort, fcDescription, fcSchema };

QString textAt(const VariantArray& row, FilterColumn column)
{
  return row.value(column).toString();
}

}  // namespace

TfSelectImportFilter::TfSelectImportFilter(const QStringList& descriptions, QWidget* parent)
    : QDialog(parent), lbFilters(new QListWidget)
{
  setObjectName(QStringLiteral("fSelectImportFilter"));
  setWindowTitle(QStringLiteral("Импорт"));
  auto* group = new QGroupBox(importFilterBoxTitle);
  lbFilters->setAccessibleName(importFilterBoxTitle);
  lbFilters->setMinimumSize(filterListSize);
  lbFilters->addItems(descriptions);
  lbFilters->setCurrentRow(0);
  connect(lbFilters, &QListWidget::itemActivated, this, &QDialog::accept);
  auto* inside = new QVBoxLayout(group);
  inside->addWidget(lbFilters);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
  buttons->button(QDialogButtonBox::Ok)->setText(QStringLiteral("Ok"));
  buttons->button(QDialogButtonBox::Cancel)->setText(QStringLiteral("Отказ"));
  btnFilters = buttons->addButton(QStringLiteral("&Филтри…"), QDialogButtonBox::ActionRole);
  btnFilters->setObjectName(QStringLiteral("btnFilters"));
  btnFilters->setAutoDefault(false);
  btnFilters->setVisible(mayOpenImportFilters());
  connect(btnFilters, &QPushButton::clicked, this, [this] {
    filtersWanted_ = true;
    reject();
  });
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  auto* all = new QVBoxLayout(this);
  all->setSpacing(spacing::wide);
  all->addWidget(group);
  all->addWidget(buttons);
}

int TfSelectImportFilter::chosen() const
{
  return lbFilters->currentRow();
}

bool SelectImportFilter(TImportFilter* filter)
{
  if (!filter) {
    throw DataError(importFilterNotAssigned);
  }
  Variant answer;
  const FilterArray ofForm{{QStringLiteral("S_DataPort.Form_Id"), QStringLiteral("="), filter->FormId, QString(), QString()}};
  const int count = requestValue(sessionCalls(), TableColumns, QStringLiteral("S_DataPort"),
                                 QStringLiteral("DataPort ,Description, DPSchema"), ofForm, answer, RowsWanted::All);
  const VariantArray rows = answer.toList();
  if (count <= 0 || rows.isEmpty()) {
    userPrompt().message(PromptKind::Information, _err_NotRegistredDP, {PromptButton::Ok});
    return false;
  }
  QStringList descriptions;
  for (const Variant& row : rows) {
    descriptions.append(textAt(row.toList(), fcDescription));
  }
  TfSelectImportFilter dialog(descriptions, QApplication::activeWindow());
  const bool accepted = dialog.exec() == QDialog::Accepted;
  if (dialog.filtersWanted()) {
    openImportFiltersOf(filter->FormId);
  }
  if (!accepted || dialog.chosen() < 0) {
    return false;
  }
  const VariantArray row = rows.at(dialog.chosen()).toList();
  filter->LoadImportParams(textAt(row, fcDataPort));
  filter->DPSchema = textAt(row, fcSchema);
  return true;
}

QString SelectDataFile()
{
  static QString lastFolder;  // files of one delivery lie together
  const QString file = userPrompt().chooseFileIn(lastFolder, _que_SelectImportData,
                                 QStringLiteral("MS Excel Files (*.xls)|*.xls|Text Files (*.txt)|*.txt|"
                                                "XML Files (*.xml)|*.xml|All Files (*.*)|*.*"),
                                 false);
  if (!file.isEmpty()) {
    lastFolder = QFileInfo(file).absolutePath();
  }
  return file;
}

}  // namespace kalvor
