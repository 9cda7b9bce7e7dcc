// The settings form, the choice of the fiscal printer, the form chooser, and the password dialog.
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QTimer>
#include <QtTest>

#include "forms/windows/base_dialog.h"
#include "registry/windows/form_registry.h"
#include "registry/windows/select_form.h"
#include "scratch_documents.h"
#include "scripted_ports.h"
#include "scripted_session.h"
#include "session/error_log.h"
#include "session/fiscal_printer.h"
#include "session/ini_options.h"
#include "session/settings_document.h"
#include "session/windows/change_password.h"
#include "session/windows/combo_history.h"
#include "session/windows/fiscal_printer_object.h"
#include "session/windows/settings_form.h"
#include "widgets/theme.h"

using namespace Qt::StringLiterals;
using namespace kalvor;
using namespace kalvor::testing;

namespace {

// A driver, and a class that is none.
class TFPDatecs : public QObject, public IFiscalPrinterIntf {
  Q_OBJECT
 public:
  void SetSettings(const QStringList& given) override { lines = given; }
  int PrintFiscalCheck(const Variant&, const VariantArray&) override { return 0; }
  QStringList lines;
};
class TNoPrinter : public QObject {
  Q_OBJECT
};

Variant rowsOf(const QList<QStringList>& texts)
{
  VariantArray list;
  for (const QStringList& row : texts)
    list.append(Variant(QVariant(row).toList()));
  return list;
}

struct Workplace {
  explicit Workplace(const QByteArray& ini = {})
  {
    IniOptions = {};
    QDir().mkpath(documents.path(u"Kalvor"_s));
    KalvorClientINIFileName = u"client.ini"_s;
    if (!ini.isEmpty())
      documents.write(u"Kalvor/client.ini"_s, ini);
    session.load();
    InitLog();
  }
  ~Workplace()
  {
    CloseLog();
    UnRegisterFormClass();
  }
  QStringList group(const QString& name) const
  {
    QStringList lines;
    GetNodeFromXml(session.dm->UserSettings->document, name, lines);
    return lines;
  }
  QStringList loggedProcedures() const
  {
    QStringList log;
    LoadErrorLog(log);
    return log.filter(u"[Процедура]"_s);
  }
  QByteArray ini() const { return documents.read(u"Kalvor/client.ini"_s); }

  ScratchDocuments documents;
  ScriptedPrompt prompt;
  ScriptedSession session;
};

QStringList itemsOf(const QComboBox* box)
{
  QStringList items;
  for (int i = 0; i < box->count(); ++i)
    items << box->itemText(i);
  return items;
}

}  // namespace

class SettingsFormTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { applyTheme(*qApp, ThemeMode::Light); }

  void theServerSectionIsShown_data()
  {
    QTest::addColumn<QByteArray>("ini");
    QTest::addColumn<int>("port");
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("history");
    QTest::newRow("none") << QByteArray("[User]\nUser=A\n") << 1 << "" << 0;
    QTest::newRow("one line") << QByteArray("[Server]\nServerPort=2040\n") << 1 << "" << 0;
    QTest::newRow("two") << QByteArray("[Server]\nServerPort=2040\nServerAddress=h\n") << 2040 << "h" << 0;
    QTest::newRow("no number") << QByteArray("[Server]\nServerPort=x\nServerAddress=h\nServerAddressIndex0=h\n"
                                             "ServerAddressIndex1=g\n") << 2030 << "h" << 2;
  }
  void theServerSectionIsShown()
  {
    QFETCH(QByteArray, ini);
    const Workplace workplace(ini);
    const TfSettings form;
    QTEST(form.ebxPort->value(), "port");
    QTEST(form.cbxAddress->currentText(), "address");
    QTEST(form.cbxAddress->count(), "history");
  }

  void theDevicesAreShown()
  {
    Workplace workplace("[Devices]\nprn=lp0\nprnIndex0=lp0\nprnIndex1=lp1\nFPName=Каса 1\nFPType=TFPDatecs\n");
    workplace.session.dm->BarcodeStart = u'#';
    workplace.session.dm->MeasureBarcode = u"7"_s;
    const TfSettings form;
    QCOMPARE(form.cbxPrn->currentText(), u"lp0"_s);
    QCOMPARE(itemsOf(form.cbxPrn), QStringList({"lp0", "lp1"}));
    QCOMPARE(form.cbxFiscalPrinter->currentText(), u"Каса 1"_s);
    QCOMPARE(form.cbxFiscalPrinter->currentData().toString(), u"TFPDatecs"_s);
    QCOMPARE(form.ebxBarcodeStart->text(), u"#"_s);
    QCOMPARE(form.ebxMeasureBarcode->value(), 7);
    QVERIFY(form.rbSeparator->isChecked() && form.rbTab->isChecked());  // of the session's settings
  }

  void okKeepsEverything()
  {
    Workplace workplace("[Server]\nServerPort=2040\nServerAddress=old\nServerAddressIndex0=old\nOther=1\n"
                        "[Devices]\nprn=lp0\nFPName=Каса\nFPType=TFPEltrade\n");
    TfSettings form;
    form.cbxGrids->setChecked(true);
    form.cbxColors->setChecked(true);
    form.ebxPort->setValue(2050);
    form.cbxAddress->setEditText(u"нов"_s);
    form.cbxPrn->setEditText(u"lp1"_s);
    form.ebxBarcodeStart->setText(u"$x"_s);
    form.ebxMeasureBarcode->setValue(6);
    form.rbFixedLength->click();
    form.ebxSeparator->setText(u"#"_s);
    form.show();
    QTest::mouseClick(form.btnOK, Qt::LeftButton);
    QVERIFY(!form.isVisible());
    QCOMPARE(QString::fromUtf8(workplace.ini()),
             u"[Server]\nOther=1\nServerPort=2050\nServerAddress=нов\nServerAddressIndex0=нов\nServerAddressIndex1=old\n"
             "[Devices]\nprn=lp1\nFPName=Каса\nFPType=TFPEltrade\nBarckodeStart=$x\nMesureBarcode=6\nprnIndex0=lp1\n"_s);
    QCOMPARE(workplace.group(u"IniOptions"_s),
             QStringList({"Filter=0", "SortOrder=0", "Grids=-1", "FormSize=0", "ApplyColorSettings=-1"}));
    QCOMPARE(workplace.group(u"ExportOptions"_s),
             QStringList({"Separator=Fixed", "Symbol=", "Caption=0", "Dos=0", "Drob=2"}));
    QVERIFY(IniOptions.Grids && !IniOptions.Filter);
    QCOMPARE(LocalData.prn, u"lp1"_s);
    QCOMPARE(LocalData.FPName + LocalData.FPType, u"КасаTFPEltrade"_s);
    QCOMPARE(workplace.session.dm->BarcodeStart, QChar(u'$'));
    QCOMPARE(workplace.session.dm->MeasureBarcode, u"6"_s);
  }

  void exitKeepsNothing()
  {
    Workplace workplace;
    TfSettings form;
    form.cbxGrids->setChecked(true);
    form.cbxAddress->setEditText(u"нов"_s);
    form.show();
    QTest::keyClick(form.cbxAddress, Qt::Key_Escape);
    QVERIFY(!form.isVisible() && !IniOptions.Grids);
    QCOMPARE(workplace.ini(), QByteArray());
  }

  void aFileThatCannotBeWrittenLeavesTheFormOpen()
  {
    Workplace workplace;
    QDir().mkpath(workplace.documents.path(u"Kalvor/client.ini"_s));
    TfSettings form;
    form.show();
    form.btnOKClick();
    QVERIFY(form.isVisible());
    QVERIFY(workplace.loggedProcedures().contains(u"[Процедура]: uSettings.btnOKClick"_s));
    QCOMPARE(workplace.prompt.messages, QStringList());
  }

  void separatorsFollowTheirButton()
  {
    const Workplace workplace;
    TfSettings form;
    form.rbFixedLength->click();
    QVERIFY(!form.rbTab->isEnabled() && !form.ebxSeparator->isEnabled());
    form.rbSeparator->click();
    QVERIFY(form.rbTab->isEnabled() && form.rbOtherSimbol->isEnabled() && form.ebxSeparator->isEnabled());
    form.ebxSeparator->clear();
    QTest::keyClicks(form.ebxSeparator, u"|"_s);
    form.SaveExportOptions();
    QCOMPARE(workplace.group(u"ExportOptions"_s).mid(0, 2), QStringList({"Separator=Char", "Symbol=|"}));
  }

  void onlyTheConnection()
  {
    const Workplace workplace;
    TfSettings form;
    const auto visible = [&form] {
      int pages = 0;
      for (int page = 0; page < form.pcSettings->count(); ++page)
        pages += form.pcSettings->isTabVisible(page);
      return pages;
    };
    QCOMPARE(visible(), 4);
    form.Set_OnlyConnectionSettings(true);
    QCOMPARE(visible(), 1);
    QVERIFY(form.pcSettings->isTabVisible(form.pcSettings->indexOf(form.tsConnection)));
    form.Set_OnlyConnectionSettings(false);
    QCOMPARE(visible(), 4);
  }

  void modallyItAnswersWhetherItWasKept()
  {
    const Workplace workplace;
    for (const bool keep : {true, false}) {
      TfSettings form;
      form.setPlace({u"10.0.0.7"_s, 2044});
      QTimer::singleShot(0, &form, [&form, keep] { keep ? form.btnOKClick() : form.btnExitClick(); });
      QCOMPARE(form.ShowModal(nullptr), keep);
      QCOMPARE(form.place(), (ServerPlace{u"10.0.0.7"_s, 2044}));
    }
    QVERIFY(workplace.ini().contains("ServerPort=2044\nServerAddress=10.0.0.7\n"));
  }

  void nobodyAnswers()
  {
    Workplace workplace;
    TfSettings form;
    form.setPlace({u"127.0.0.1"_s, 1});
    form.btnTestClick();
    QCOMPARE(workplace.prompt.messages, QStringList{"Не е установена връзка със сървъра"});
    QCOMPARE(workplace.prompt.kinds, QList<PromptKind>{PromptKind::Plain});
  }

  void openingNeedsTheRightToRead()
  {
    Workplace workplace;
    TfSettings form;
    form.SetFormRights(250, false);
    QCOMPARE(form.DoShowForm(250, so_Normal), 0);
    QVERIFY(!form.isVisible());
    QCOMPARE(workplace.prompt.messages,
             QStringList{u"Забранен е прегледа на данни за форма с код : 250\r\n"
                         "Моля, обърнете се към системния администратор за отстраняване на проблема!"_s});
    QCOMPARE(workplace.loggedProcedures(), QStringList{"[Процедура]: TfSettings.DoShowForm"});
    auto* shown = new TfSettings;
    shown->SetFormRights(250, true);
    QCOMPARE(shown->DoShowForm(250, so_Normal), 3);
    QVERIFY(shown->isVisible() && shown->CheckFormID(shown->uniqueId()) && !shown->CheckFormID(form.uniqueId()));
    shown->btnExitClick();
    QTRY_VERIFY(!QApplication::allWidgets().contains(shown));
  }

  // --- Fiscal printers --------------------------------------------------------------------------------------

  void theDropDownAppendsTheServersPrinters()
  {
    Workplace workplace("[Devices]\nprn=\nFPName=Каса 1\nFPType=TFPDatecs\n");
    workplace.session.server->answer(u"RequestValue"_s, 2, {{4, rowsOf({{"Каса 1", "TFPDatecs"}, {"Каса 2", "TFPEltrade"}})}});
    TfSettings form;
    form.cbxFiscalPrinterDropDown();
    QCOMPARE(itemsOf(form.cbxFiscalPrinter), QStringList({"Каса 1", "Каса 1", "Каса 2"}));
    QCOMPARE(form.cbxFiscalPrinter->currentIndex(), 0);
    form.cbxFiscalPrinterDropDown();
    QCOMPARE(form.cbxFiscalPrinter->count(), 3);
    const VariantArray asked = workplace.session.server->sent[u"RequestValue"_s].last();
    QCOMPARE(asked.mid(0, 3), (VariantArray{0, u"S_FiscalPrinterSetup"_s, u"ID, PrinterType"_s}));
    QCOMPARE(asked[5], Variant(true));
  }

  void aPrinterIsMadeOfItsSection()
  {
    Workplace workplace("[TFPDatecs]\nPort=COM1\nSpeed=9600\n");
    RegisterFormClass(objectClass<TFPDatecs>());
    workplace.session.server->answer(u"RequestValue"_s, 2, {{4, rowsOf({{"Каса 1", "TFPEltrade"}, {"Каса 2", "TFPDatecs"}})}});
    workplace.session.server->answer(u"GetFormsDescription"_s, 0);
    TfSettings form;
    form.cbxFiscalPrinterDropDown();
    QCOMPARE(form.cbxFiscalPrinter->currentIndex(), -1);
    form.cbxFiscalPrinter->setCurrentIndex(1);
    auto* printer = dynamic_cast<TFPDatecs*>(workplace.session.dm->FiscalPrinter.get());
    QVERIFY(printer);
    QCOMPARE(printer->lines, QStringList({"Port=COM1", "Speed=9600"}));
    QCOMPARE(LocalData.FPType, u"TFPDatecs"_s);
    // One without a section is set up first.
    form.cbxFiscalPrinter->setCurrentIndex(0);
    QVERIFY(!workplace.session.dm->FiscalPrinter);
    form.btnFiscalPrinterReportClick();
    QStringList opened;
    for (const VariantArray& call : workplace.session.server->sent[u"GetFormsDescription"_s])
      opened << call[0].toString();
    QCOMPARE(opened, QStringList({"117", "118"}));
  }

  void onlyPrintersAreMade()
  {
    const Workplace workplace;
    RegisterFormClass(objectClass<TNoPrinter>());
    QVERIFY(!CreateFiscalPrinterObject(u"TFPDatecs"_s, {u"a=1"_s}));
    QVERIFY(!CreateFiscalPrinterObject(u"TNoPrinter"_s, {u"a=1"_s}));
    QVERIFY(!workplace.session.dm->FiscalPrinter);
  }

  // --- Stored settings of forms -------------------------------------------------------------------------------

  void chosenFormsLoseOneKindOfSettings()
  {
    Workplace workplace;
    QDomDocument& document = workplace.session.dm->UserSettings->document;
    SaveNodeToXml(document, u"Form_Id12"_s, {u"Filter=f"_s, u"FormWidth=1"_s}, true);
    SaveNodeToXml(document, u"Form_Id14"_s, {u"SortOrder=s"_s}, true);
    SaveNodeToXml(document, u"Form_Id16"_s, {u"SortOrder=s"_s}, true);
    workplace.session.server->handlers[u"GetFormsDescription"_s] = [](VariantArray& arguments) {
      const QString id = arguments[0].toString();
      arguments[2] = rowsOf({{id == u"12" ? u"Яблоки"_s : u"Артикули"_s, u"TfX"_s}});
      return Variant(id == u"16" ? 0 : 1);
    };
    TfSelectForm form(1);
    QCOMPARE(workplace.prompt.messages, QStringList{"16 Формата не е регистрирана в базата данни"});
    QCOMPARE(form.clbForms->count(), 2);
    QCOMPARE(form.clbForms->item(0)->text(), u"Артикули"_s);
    form.btnSelectAll->click();
    QCOMPARE(form.checkedForms(), QList<int>({14, 12}));
    form.clbForms->item(0)->setCheckState(Qt::Unchecked);
    form.btnInverse->click();
    QCOMPARE(form.checkedForms(), QList<int>{14});
    form.btnUnselectAll->click();
    form.btnInverse->click();
    form.btnOk->click();
    QCOMPARE(workplace.group(u"Form_Id12"_s), QStringList{"FormWidth=1"});
    QCOMPARE(workplace.group(u"Form_Id14"_s), QStringList());
  }

  // --- Password -----------------------------------------------------------------------------------------------

  void passwords_data()
  {
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("second");
    QTest::addColumn<int>("answer");
    QTest::addColumn<QString>("digest");
    QTest::addColumn<QString>("message");
    const QString empty = u"d41d8cd98f00b204e9800998ecf8427e"_s;
    QTest::newRow("changed") << "a" << "a" << 0 << "0cc175b9c0f1b6a831c399e269772661" << "";
    QTest::newRow("blanks around") << "a" << " a " << 0 << "0cc175b9c0f1b6a831c399e269772661" << "";
    QTest::newRow("empty") << "" << "" << 0 << empty << "";
    QTest::newRow("different") << "a" << "b" << 0 << "" << u"Невалидна стойност за поле \"Нова парола (проверка)\"."_s;
    QTest::newRow("refused") << "" << "" << -1 << empty << u"Грешка при опит за промяна на парола!"_s;
  }
  void passwords()
  {
    QFETCH(QString, first);
    QFETCH(QString, second);
    QFETCH(int, answer);
    QFETCH(QString, digest);
    QFETCH(QString, message);
    Workplace workplace;
    workplace.session.server->answer(u"ChangePassword"_s, answer);
    TfChangePass form;
    form.ebxNewPass->setText(first);
    form.ebxConfirmPass->setText(second);
    form.show();
    QVERIFY(!form.ebxOldPass->isVisible() && !form.lbOldPass->isVisible());
    form.btnOk->click();
    QCOMPARE(workplace.session.server->sentOnce(u"ChangePassword"_s),
             digest.isEmpty() ? VariantArray() : VariantArray({u"AB"_s, digest}));
    QCOMPARE(form.isVisible(), !message.isEmpty());
    QCOMPARE(workplace.prompt.messages, message.isEmpty() ? QStringList() : QStringList{message});
    QCOMPARE(workplace.loggedProcedures(),
             message.isEmpty() ? QStringList() : QStringList{"[Процедура]: TfChangePass.btnOkClick"});
    QCOMPARE(form.newPassword(), message.isEmpty() ? first.trimmed() : QString());
  }

  void anotherUsersPassword()
  {
    Workplace workplace;
    workplace.session.server->answer(u"GetFormsDescription"_s, 1, {{2, rowsOf({{"Парола на потребител", "TfChangePass"}})}});
    workplace.session.server->answer(u"ChangePassword"_s, 0);
    TfChangePass form;
    TDialogParams params;
    params.Values = {u"CLERK"_s};
    QVERIFY_EXCEPTION_THROWN(form.DoShowForm(252, so_Normal, params), DataError);
    form.SetFormRights(252, true);
    QString caption;
    QTimer::singleShot(0, &form, [&] {
      caption = form.windowTitle();
      form.btnOkClick();
    });
    QCOMPARE(form.DoShowForm(252, so_Normal, params), 1);
    QCOMPARE(caption, u"Парола на потребител"_s);
    QCOMPARE(workplace.session.server->sentOnce(u"ChangePassword"_s).value(0), Variant(u"CLERK"_s));
  }

  // --- Dialogs ------------------------------------------------------------------------------------------------

  void hintDialogsShowTheirParameters()
  {
    Workplace workplace;
    workplace.session.server->answer(u"GetFormsDescription"_s, 1, {{2, rowsOf({{"Заглавие", "TfX"}})}});
    for (const QString& page : {QString(), u"Страница"_s}) {
      TfBaseHintDialog dialog;
      dialog.SetFormRights(300, true);
      QVERIFY(dialog.rights().ReadRight && !dialog.rights().AnnulRight);
      TDialogParams params{u"Какво"_s, u"Защо"_s, page, bsDialog, 0, {}};
      QTimer::singleShot(0, &dialog, [&] { dialog.reject(); });
      QCOMPARE(dialog.DoShowForm(300, so_Normal, params), 2);
      QCOMPARE(dialog.windowTitle(), u"Заглавие"_s);
      QCOMPARE(dialog.lbHintCaption->text() + dialog.lbHint->text(), u"КаквоЗащо"_s);
      QCOMPARE(dialog.pconControls->isTabVisible(0), !page.isEmpty());
      QCOMPARE(dialog.pconControls->tabText(0), page);
    }
  }
};

QTEST_MAIN(SettingsFormTest)
#include "settings_form_test.moc"
