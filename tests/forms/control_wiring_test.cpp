// What each kind of control and of grid column becomes from one row of field metadata.
#include <QLabel>
#include <QMenuBar>

#include "../several_tests.h"
#include "forms/field_metadata.h"
#include "forms/windows/cds_options.h"
#include "records.h"
#include "registry/windows/selector_button.h"
#include "sample_forms.h"
#include "widgets/db_check_box.h"
#include "widgets/db_combo_box.h"
#include "widgets/db_edit.h"
#include "widgets/db_grid_ex.h"
#include "widgets/db_memo.h"

using namespace kalvor;
using namespace kalvor::testing;

namespace {

class WiredForm : public TfBase {
 public:
  explicit WiredForm(bool mayEdit) : mayEdit_(mayEdit), data(new TClientDataSet(this))
  {
    data->setObjectName(QStringLiteral("cdsMaster"));
  }
  bool CheckDataModification(bool, bool, bool) override { return mayEdit_; }
  // Opens the dataset with these rows of metadata and shows the form.
  void wire(const VariantArray& rows, DataType type)
  {
    FormCreate();
    cdsOptions(0).FieldDescriptions = rows;
    RecordSet records({fieldDef("Id"), fieldDef("F", type, 20), fieldDef("Other")});
    data->SetRecords(records);
    FormShow();
  }

 private:
  bool mayEdit_;

 public:
  TClientDataSet* data;
};

Variant metadataRow(const QString& kind, bool readOnly = false, bool visible = true, bool required = false)
{
  VariantArray row(fieldColumnCount);
  row[int(FieldColumn::FieldName)] = "F";
  row[int(FieldColumn::Caption)] = "Надпис";
  row[int(FieldColumn::FieldType)] = kind.isEmpty() ? Variant() : Variant(kind);
  row[int(FieldColumn::Required)] = required ? "1" : "0";
  row[int(FieldColumn::Visible)] = visible ? "1" : "0";
  row[int(FieldColumn::ReadOnly)] = readOnly ? "1" : "0";
  row[int(FieldColumn::OptionCaption)] = "Нов,Готов";
  row[int(FieldColumn::SelectorDesc)] = ";140;Id,Code;Other,F;N_Contragent.Code,LIKE,<#Param(OwnerValue)#>,";
  return row;
}

// How changes of the field are followed.
QString followedBy(const WiredForm& form)
{
  if (form.seriesFields(form.data).contains("F")) {
    return " series";
  }
  return form.data->FieldByName(u"F")->OnChange ? " changes" : "";
}

QString buttonOf(const QWidget* control)
{
  for (const auto* button : control->parentWidget()->findChildren<EditButton*>()) {
    if (dynamic_cast<const TSelectorButton*>(button)) {
      return button->text() + (button->placement()->buttonVisible() ? "" : " hidden") +
             (button->objectName().startsWith("slct_") ? "" : " unnamed");
    }
    return button->objectName() + (button->isEnabled() ? "" : " read-only");
  }
  return {};
}

QString stateOf(const QWidget* widget)
{
  if (auto* combo = qobject_cast<const DataComboBox*>(widget)) {
    const bool menuColor = combo->readOnlyColor() == QApplication::palette("QMenuBar").color(QPalette::Window);
    return combo->items().join(',') + (combo->readOnly() ? " read-only" : "") + (menuColor ? " menu" : "");
  }
  if (auto* box = qobject_cast<const TDBCheckBox*>(widget)) {
    return box->valueChecked() + ';' + box->valueUnchecked();
  }
  return buttonOf(widget);
}

struct ControlClass {
  const char* name;
  QWidget* (*make)(QWidget* parent);
};
template <class Control>
QWidget* makeControl(QWidget* parent)
{
  return new Control(parent);
}
const ControlClass controlClasses[] = {
    {"plain edit", makeControl<TDBEdit>},          {"flat edit", makeControl<TDBFlatEdit>},
    {"plain drop-down", makeControl<TDBComboBox>}, {"flat drop-down", makeControl<TDBFlatComboBox>},
    {"check box", makeControl<TDBCheckBox>},
};

QWidget* controlNamed(const QString& name, QWidget* parent)
{
  for (const ControlClass& known : controlClasses) {
    if (name == known.name) {
      return known.make(parent);
    }
  }
  return nullptr;
}

}  // namespace

class ControlWiringTest : public QObject {
  Q_OBJECT

 private slots:
  void controls_data()
  {
    QTest::addColumn<QString>("control");
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("facts");     // field: r read-only, h hidden, d of dates; n: the form allows no edit
    QTest::addColumn<QString>("expected");  // state of the control, then how the field is followed
    const auto row = [](const char* control, const char* kind, const char* facts, const char* expected) {
      QTest::addRow("%s, kind \"%s\" %s", control, kind, facts) << control << kind << facts << expected;
    };
    row("plain edit", "", "", "");
    row("plain edit", "0", "", "");
    row("plain edit", "1", "", "");
    row("plain edit", "2", "", "... changes");
    row("plain edit", "2", "h", "... hidden changes");
    row("plain edit", "3", "", "... changes");
    row("plain edit", "4", "", "");
    row("plain edit", "5", "", "...");
    row("plain edit", "7", "d", "");
    row("flat edit", "0", "", "");
    row("flat edit", "2", "", "... changes");
    row("flat edit", "3", "r", "... changes");
    row("flat edit", "5", "", "... series");
    row("flat edit", "7", "d", "btn_F");
    row("flat edit", "7", "dr", "btn_F read-only");
    row("flat edit", "7", "dn", "btn_F read-only");
    row("flat edit", "7", "", "");
    row("flat edit", "0", "d", "");
    row("plain drop-down", "1", "", "Нов,Готов");
    row("plain drop-down", "1", "r", "Нов,Готов read-only menu");
    row("plain drop-down", "1", "n", "Нов,Готов read-only menu");
    row("plain drop-down", "0", "", "");
    row("plain drop-down", "0", "r", " read-only menu");
    row("plain drop-down", "2", "", " changes");
    row("plain drop-down", "3", "", "");
    row("flat drop-down", "1", "", "Нов,Готов");
    row("flat drop-down", "0", "", "");
    row("check box", "4", "", "1;0");
    row("check box", "0", "", "1;0");
  }
  void controls()
  {
    QFETCH(QString, control);
    QFETCH(QString, kind);
    QFETCH(QString, facts);
    Desk desk;
    WiredForm form(!facts.contains('n'));
    QWidget* widget = controlNamed(control, &form);
    DataControl::of(widget)->setDataSet(form.data);
    DataControl::of(widget)->setDataField("F");
    form.wire({metadataRow(kind, facts.contains('r'), !facts.contains('h'))},
              facts.contains('d') ? DataType::Date : kind == "1" ? DataType::Integer : DataType::WideString);
    QTEST(stateOf(widget) + followedBy(form), "expected");
  }

  void withoutAControl_data()
  {
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("expected");
    QTest::newRow("kind 2 runs its lookup") << "2" << " changes";
    QTest::newRow("kind 3 does not") << "3" << "";
    QTest::newRow("kind 5 does not") << "5" << "";
  }
  void withoutAControl()
  {
    QFETCH(QString, kind);
    Desk desk;
    WiredForm form(true);
    form.wire({metadataRow(kind)}, DataType::WideString);
    QTEST(followedBy(form), "expected");
  }

  void gridColumns_data()
  {
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("name");      // how the editor's name begins
    QTest::addColumn<QString>("expected");  // kind of the editor, its items or values, how the field is followed
    QTest::newRow("0") << "0" << "" << "type ";
    QTest::newRow("1") << "1" << "DBGrcmbBox_" << "list Нов,Готов";
    QTest::newRow("2") << "2" << "btn_" << "lookup  changes";
    QTest::newRow("3") << "3" << "btn_" << "lookup  changes";
    QTest::newRow("4") << "4" << "" << "box 1;0";
    QTest::newRow("5") << "5" << "btn_" << "lookup ";
  }
  void gridColumns()
  {
    QFETCH(QString, kind);
    QFETCH(QString, name);
    Desk desk;
    QSet<QString> names;
    for (int i = 0; i < 2; ++i) {
      WiredForm form(true);
      auto* grid = new TDBGridEx(&form);
      grid->setDataSet(form.data);
      form.wire({metadataRow(kind)}, kind == "1" ? DataType::Integer : DataType::WideString);
      const CellEditor editor = grid->columnEditor("F");
      const QStringList kinds{"type ", "list ", "box ", "lookup ", "date "};
      const QString values = editor.kind == CellEditorKind::CheckBox ? editor.checked + ';' + editor.unchecked
                                                                     : editor.items.join(',');
      QTEST(kinds[int(editor.kind)] + values + followedBy(form), "expected");
      QVERIFY(name.isEmpty() ? editor.name.isEmpty() : editor.name.startsWith(name));
      QVERIFY(grid->titleButtons() && grid->contextMenuPolicy() == Qt::CustomContextMenu);
      names.insert(editor.name);
    }
    QCOMPARE(names.size(), name.isEmpty() ? 1 : 2);  // a fresh one in each form
  }

  void labels_data()
  {
    QTest::addColumn<bool>("required");
    QTest::addColumn<int>("gap");  // between the left edges
    QTest::addColumn<int>("below");
    QTest::addColumn<QString>("text");  // "<": shortened
    QTest::newRow("optional") << false << 300 << 0 << "Надпис";
    QTest::newRow("required") << true << 300 << 0 << "Надпис *";
    QTest::newRow("runs into its control") << true << 50 << 0 << "<";
    QTest::newRow("control on the next line") << true << 50 << 40 << "Надпис *";
    QTest::newRow("no room at all") << true << 1 << 0 << "...";
  }
  void labels()
  {
    QFETCH(bool, required);
    QFETCH(int, gap);
    QFETCH(int, below);
    QFETCH(QString, text);
    Desk desk;
    WiredForm form(true);
    auto* edit = new TDBEdit(&form);
    edit->setDataSet(form.data);
    edit->setDataField("F");
    auto* label = new QLabel("lbl", &form);
    label->setBuddy(edit);
    label->setGeometry(10, 10, 20, 20);
    edit->move(10 + gap, 10 + below);
    auto* alone = new QLabel("3", &form);
    alone->setProperty("tag", 3);
    alone->move(77, 5);
    form.wire({metadataRow("0", false, true, required)}, DataType::WideString);
    const QString whole = required ? "Надпис *" : "Надпис";
    if (text == "<") {
      QVERIFY2(label->text().endsWith("...") && label->sizeHint().width() <= gap, qPrintable(label->text()));
      const QString kept = label->text().chopped(3);
      QVERIFY(whole.startsWith(kept) && kept.size() < whole.size());
      label->setText(whole.left(kept.size() + 1) + "...");
      QVERIFY(label->sizeHint().width() > gap);  // no character too many
    } else {
      QCOMPARE(label->text(), text);
    }
    QCOMPARE(label->toolTip(), whole);
    QCOMPARE(edit->toolTip(), whole);
    QCOMPARE(alone->pos(), QPoint(10, 5));
  }
};

static const RegisterTest<ControlWiringTest> registerControlWiringTest;
#include "control_wiring_test.moc"
