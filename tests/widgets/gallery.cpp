// Shows every control and a grid in light and dark, and saves a picture of each into the folder named by the
// first argument.
#include <QApplication>
#include <QDir>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>
#include <QVBoxLayout>

#include "demo_records.h"
#include "widgets/db_check_box.h"
#include "widgets/db_combo_box.h"
#include "widgets/db_date_edit.h"
#include "widgets/db_grid_ex.h"
#include "widgets/db_memo.h"
#include "widgets/db_text.h"
#include "widgets/edit_button.h"
#include "widgets/theme.h"

namespace kalvor {
namespace {

const QStringList kinds{QStringLiteral("Стока"), QStringLiteral("Материал"), QStringLiteral("Услуга")};

template <class Control>
Control* bound(TClientDataSet& dataSet, const char* field, QWidget* parent)
{
  auto* control = new Control(parent);
  control->setDataSet(&dataSet);
  control->setDataField(QString::fromLatin1(field));
  return control;
}

QWidget* controlsPage(TClientDataSet& dataSet, QWidget* parent)
{
  auto* page = new QWidget(parent);
  auto* columns = new QHBoxLayout(page);
  auto* plain = new QGroupBox(QStringLiteral("Обикновени"), page);
  auto* plainForm = new QFormLayout(plain);
  auto* code = bound<TDBEdit>(dataSet, "Code", plain);
  plainForm->addRow(QStringLiteral("Код *"), code);
  new EditButton(code);
  plainForm->addRow(QStringLiteral("Наименование *"), bound<TDBEdit>(dataSet, "Name", plain));
  auto* kind = bound<TDBComboBox>(dataSet, "Kind", plain);
  kind->setItems(kinds);
  plainForm->addRow(QStringLiteral("Вид"), kind);
  plainForm->addRow(QStringLiteral("Количество"), bound<TDBEdit>(dataSet, "Quantity", plain));
  auto* readOnly = bound<TDBEdit>(dataSet, "Price", plain);
  readOnly->setReadOnly(true);
  plainForm->addRow(QStringLiteral("Ед. цена"), readOnly);
  auto* date = bound<TDBDateEdit>(dataSet, "DocDate", plain);
  (new EditButton(date))->setIcon(icon(QStringLiteral("view-calendar")));
  plainForm->addRow(QStringLiteral("Дата"), date);
  auto* active = bound<TDBCheckBox>(dataSet, "IsActive", plain);
  active->setText(QStringLiteral("Активен"));
  plainForm->addRow(QString(), active);

  auto* flat = new QGroupBox(QStringLiteral("Плоски"), page);
  auto* flatForm = new QFormLayout(flat);
  auto* flatCode = bound<TDBFlatEdit>(dataSet, "Code", flat);
  flatForm->addRow(QStringLiteral("Код *"), flatCode);
  new EditButton(flatCode);
  flatForm->addRow(QStringLiteral("Наименование *"), bound<TDBFlatEdit>(dataSet, "Name", flat));
  auto* flatKind = bound<TDBFlatComboBox>(dataSet, "Kind", flat);
  flatKind->setItems(kinds);
  flatForm->addRow(QStringLiteral("Вид"), flatKind);
  flatForm->addRow(QStringLiteral("Количество"), bound<TDBFlatEdit>(dataSet, "Quantity", flat));
  auto* readOnlyList = bound<TDBComboBox>(dataSet, "Kind", flat);
  readOnlyList->setItems(kinds);
  readOnlyList->setReadOnly(true);
  flatForm->addRow(QStringLiteral("Вид (само за четене)"), readOnlyList);
  auto* memo = bound<TDBMemo>(dataSet, "Note", flat);
  memo->setFixedHeight(64);
  flatForm->addRow(QStringLiteral("Забележка"), memo);
  flatForm->addRow(QStringLiteral("Сума"), bound<TDBText>(dataSet, "Amount", flat));
  columns->addWidget(plain);
  columns->addWidget(flat);
  return page;
}

TDBGridEx* demoGrid(TClientDataSet& dataSet, QWidget* parent)
{
  auto* grid = new TDBGridEx(parent);
  grid->setDataSet(&dataSet);
  grid->setInCellEditing(true);
  grid->setMultiSelect(true);
  grid->setColumnEditor(QStringLiteral("Kind"), {CellEditorKind::DropDown, {}, kinds});
  grid->setColumnEditor(QStringLiteral("IsActive"), {CellEditorKind::CheckBox});
  grid->setColumnEditor(QStringLiteral("Code"), {CellEditorKind::Selector});
  grid->setColumnEditor(QStringLiteral("DocDate"), {CellEditorKind::Date});
  grid->setFooterVisible(true);
  grid->setFooterText(QStringLiteral("Name"), QStringLiteral("Общо"));
  grid->setFooterText(QStringLiteral("Amount"), QStringLiteral("1 204 518,33"));
  return grid;
}

QWidget* buttonRow(QWidget* parent)
{
  auto* row = new QWidget(parent);
  auto* layout = new QHBoxLayout(row);
  layout->setContentsMargins(spacing::normal, 0, spacing::normal, spacing::normal);
  layout->addStretch();
  const QList<QPair<QString, QString>> buttons{{QStringLiteral("Запис"), QStringLiteral("document-save")},
                                               {QStringLiteral("Отказ"), QStringLiteral("dialog-cancel")},
                                               {QStringLiteral("Печат"), QStringLiteral("document-print")}};
  for (const auto& [caption, iconName] : buttons) {
    auto* button = new QPushButton(icon(iconName), caption, row);
    button->setEnabled(caption != QLatin1String("Печат"));
    button->setDefault(caption == QLatin1String("Запис"));
    layout->addWidget(button);
  }
  return row;
}

void savePicture(const QString& folder, const QString& name, ThemeMode mode, bool editing)
{
  applyTheme(*qApp, mode);
  setControlMessageHandler([](QWidget*, const QString& text) { qWarning().noquote() << text; });
  TClientDataSet dataSet;
  demo::openItems(dataSet, 200);
  QWidget window;
  window.setWindowTitle(QStringLiteral("Галерия"));
  auto* layout = new QVBoxLayout(&window);
  layout->addWidget(controlsPage(dataSet, &window));
  TDBGridEx* grid = demoGrid(dataSet, &window);
  layout->addWidget(grid, 1);
  layout->addWidget(buttonRow(&window));
  window.resize(1040, 720);
  window.show();
  (void)QTest::qWaitForWindowActive(&window);
  dataSet.SetRecNo(3);
  dataSet.Edit();
  dataSet.FieldByName(u"Price")->SetAsFloat(1234567.5);
  dataSet.Post();
  attempt(nullptr, [&] { dataSet.SetIndexFieldNames(QStringLiteral("Code")); });
  dataSet.SetRecNo(6);
  grid->setMarked(8, true);
  grid->setMarked(9, true);
  grid->setFocus();
  grid->selectField(editing ? QStringLiteral("Name") : QStringLiteral("Code"));
  if (editing) {
    grid->editCell();
    dataSet.Edit();
  }
  QTest::qWait(50);
  window.grab().save(QDir(folder).filePath(name));
}

// A refused value, fixed columns over scrolled ones, a message box and an open list, side by side.
void saveSpecialCases(const QString& folder, ThemeMode mode, const QString& suffix)
{
  applyTheme(*qApp, mode);
  TClientDataSet dataSet;
  demo::openItems(dataSet, 40);
  dataSet.FieldByName(u"Quantity")->OnValidate = [](TField*) { throw SilentAbort(); };
  QWidget window;
  auto* layout = new QVBoxLayout(&window);
  auto* form = new QFormLayout;
  layout->addLayout(form);
  auto* refused = bound<TDBEdit>(dataSet, "Quantity", &window);
  auto* refusedFlat = bound<TDBFlatEdit>(dataSet, "Quantity", &window);
  auto* disabled = bound<TDBEdit>(dataSet, "Name", &window);
  disabled->setEnabled(false);
  auto* focused = bound<TDBFlatEdit>(dataSet, "Name", &window);
  form->addRow(QStringLiteral("Отказана стойност"), refused);
  form->addRow(QStringLiteral("Отказана (плоска)"), refusedFlat);
  form->addRow(QStringLiteral("Забранен"), disabled);
  form->addRow(QStringLiteral("На фокус"), focused);
  TDBGridEx* grid = demoGrid(dataSet, &window);
  grid->setFixedColumns(1);
  layout->addWidget(grid, 1);
  window.resize(560, 480);
  window.show();
  (void)QTest::qWaitForWindowActive(&window);
  for (DataEdit* edit : {static_cast<DataEdit*>(refused), static_cast<DataEdit*>(refusedFlat)}) {
    edit->setFocus();
    QTest::keyClick(edit, Qt::Key_5);
    edit->commit();
  }
  focused->setFocus(Qt::TabFocusReason);
  grid->horizontalScrollBar()->setValue(180);
  QTest::qWait(20);
  window.grab().save(QDir(folder).filePath(QStringLiteral("special-%1.png").arg(suffix)));

  QMessageBox box(QMessageBox::Question, QStringLiteral("Kalvor"),
                  QStringLiteral("Записът е в режим на редакция. Желаете ли запис?"),
                  QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, nullptr);
  box.show();
  QTest::qWait(20);
  box.grab().save(QDir(folder).filePath(QStringLiteral("message-%1.png").arg(suffix)));
  grid->setFocus();
  grid->selectField(QStringLiteral("Kind"));
  grid->editCell();
  QTest::qWait(50);
  if (QWidget* popup = QApplication::activePopupWidget()) {
    popup->grab().save(QDir(folder).filePath(QStringLiteral("list-%1.png").arg(suffix)));
  }
}

}  // namespace
}  // namespace kalvor

int main(int argc, char** argv)
{
  QApplication application(argc, argv);
  const QString folder = application.arguments().value(1, QStringLiteral("."));
  QDir().mkpath(folder);
  kalvor::savePicture(folder, QStringLiteral("light.png"), kalvor::ThemeMode::Light, false);
  kalvor::savePicture(folder, QStringLiteral("dark.png"), kalvor::ThemeMode::Dark, false);
  kalvor::savePicture(folder, QStringLiteral("editing.png"), kalvor::ThemeMode::Light, true);
  kalvor::saveSpecialCases(folder, kalvor::ThemeMode::Light, QStringLiteral("light"));
  kalvor::saveSpecialCases(folder, kalvor::ThemeMode::Dark, QStringLiteral("dark"));
  return 0;
}
