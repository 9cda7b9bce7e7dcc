// Lookups of a sale invoice, typed and chosen as at a desk, against the real server.
#include <QTimer>

#include "lookup_forms.h"
#include "several_tests.h"

namespace kalvor::testing {
namespace {

// What the person does in the lookup that opens: called with its list; the lookup is closed afterwards in any case.
class InTheLookup {
 public:
  explicit InTheLookup(std::function<void(TfBaseBrowse*)> act) : act_(std::move(act))
  {
    QObject::connect(&timer_, &QTimer::timeout, [this] { look(); });
    timer_.start(20);
  }
  bool opened = false;
  QStringList codes;

 private:
  void look()
  {
    QWidget* dialog = QApplication::activeModalWidget();
    auto* list = dialog ? dialog->findChild<TfBaseBrowse*>() : nullptr;
    if (!list || opened)
      return;
    opened = true;
    TClientDataSet* records = list->cdsMaster();
    for (records->First(); !records->Eof(); records->Next())
      codes.append(records->FieldByName(u"Code")->AsString());
    records->First();
    act_(list);
    if (QApplication::activeModalWidget() == dialog)
      dialog->close();
  }
  std::function<void(TfBaseBrowse*)> act_;
  QTimer timer_;
};

void press(QWidget* widget, Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
  QTest::keyClick(widget, key, modifiers);
}

struct InvoiceDesk : Desk {
  InvoiceDesk()
  {
    RegisterFormClass(formClass<TfBrItem>());
    RegisterFormClass(formClass<TfBrNomenclature>());
    auto* items = open<TfBrItem>(150);
    TClientDataSet* records = items->cdsMaster();
    for (records->First(); !records->Eof() && itemCodes.size() < 30; records->Next())
      itemCodes.append(records->FieldByName(u"Code")->AsString());
    window.area.closeAllSubWindows();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    invoice = open<TfEdSaleInvoice>(121, ShowOption(so_NewRecord) | so_AllowEdit | so_AllowInsert | so_AllowDelete);
    lines = invoice->cdsDetail();
    grid = invoice->dbgDetail();
    QApplication::setActiveWindow(window.area.window());
  }
  void startLine()
  {
    grid->setFocus();
    lines->Append();
    grid->selectField(QStringLiteral("Code"));
  }
  // Into the current cell, letter by letter.
  QWidget* typeIntoCell(const QString& text)
  {
    QTest::keyClicks(grid, text.left(1));
    QWidget* editor = grid->cellEditor();
    if (editor)
      QTest::keyClicks(editor, text.mid(1));
    return editor;
  }
  QString line(const char* field) const { return lines->FieldByName(QString::fromLatin1(field))->AsString(); }
  QString master(const char* field) const
  {
    return invoice->cdsMaster()->FieldByName(QString::fromLatin1(field))->AsString();
  }
  TDBEdit* edit(const char* field) const
  {
    return invoice->findChild<TDBEdit*>(QStringLiteral("edt") + QLatin1String(field));
  }

  QStringList itemCodes;
  TfEdSaleInvoice* invoice;
  TClientDataSet* lines;
  TDBGridEx* grid;
};

}  // namespace

class InvoiceLookupsTest : public QObject {
  Q_OBJECT
 private slots:
  void aTypedItemCodeFillsTheLine()
  {
    InvoiceDesk desk;
    QVERIFY(desk.itemCodes.size() > 1);
    InTheLookup lookup([](TfBaseBrowse*) {});
    desk.startLine();
    QWidget* editor = desk.typeIntoCell(desk.itemCodes[1]);
    QVERIFY(editor);
    QVERIFY(editor->objectName().startsWith(QLatin1String("btn_")));
    press(editor, Qt::Key_Return);
    QVERIFY2(!lookup.opened, qPrintable(lookup.codes.join(u' ')));
    QCOMPARE(desk.line("Code"), desk.itemCodes[1]);
    for (const char* filled : {"Description", "Measure_Id", "N_Measure_Code", "VATProdPostGroup_Id", "N_VATProdPostGroup_Code"})
      QVERIFY2(!desk.line(filled).isEmpty(), filled);
    QCOMPARE(desk.prompt.messages, QStringList());
    QCOMPARE(desk.grid->selectedField()->FieldName(), QStringLiteral("Description"));
  }

  void severalMatchesLetTheUserChoose()
  {
    InvoiceDesk desk;
    const QString beginning = desk.itemCodes[0].left(1);
    InTheLookup lookup([](TfBaseBrowse* list) {
      list->cdsMaster()->Next();
      press(list->dbgMaster(), Qt::Key_Return);
    });
    desk.startLine();
    press(desk.typeIntoCell(beginning), Qt::Key_Return);
    QVERIFY(lookup.opened);
    QVERIFY(lookup.codes.size() > 1);
    for (const QString& code : lookup.codes)
      QVERIFY(code.startsWith(beginning));
    QCOMPARE(desk.line("Code"), lookup.codes[1]);
    QVERIFY(!desk.line("Description").isEmpty());
    QCOMPARE(desk.prompt.messages, QStringList());
  }

  void escapeInTheLookupKeepsTheCellAndItsText()
  {
    InvoiceDesk desk;
    desk.startLine();
    press(desk.typeIntoCell(desk.itemCodes[1]), Qt::Key_Return);
    desk.grid->selectField(QStringLiteral("Code"));
    const QString before = desk.line("Description");
    InTheLookup lookup([](TfBaseBrowse* list) { press(list->dbgMaster(), Qt::Key_Escape); });
    QWidget* editor = desk.typeIntoCell(QStringLiteral("zz-9"));
    press(editor, Qt::Key_Return);
    QVERIFY(lookup.opened);
    QVERIFY(lookup.codes.isEmpty());
    QCOMPARE(desk.line("Code"), desk.itemCodes[1]);
    QCOMPARE(desk.line("Description"), before);
    QTRY_COMPARE(desk.grid->cellEditor(), editor);
    QTRY_COMPARE(qobject_cast<QLineEdit*>(editor)->text(), desk.itemCodes[1]);
    QTRY_COMPARE(QApplication::focusWidget(), editor);
    QCOMPARE(desk.lines->State(), DataSetState::Insert);
    QCOMPARE(desk.prompt.messages, QStringList());
  }

  void aTypedContractorFillsTheHeader()
  {
    InvoiceDesk desk;
    auto* contractors = desk.open<TfBrContragent>(140);
    const QString code = contractors->cdsMaster()->FieldByName(u"Code")->AsString();
    const QString name = contractors->cdsMaster()->FieldByName(u"Name")->AsString();
    windowOf(contractors)->close();
    TDBEdit* edit = desk.edit("N_Contragent_Code");
    QVERIFY(edit);
    edit->setFocus();
    edit->selectAll();
    QTest::keyClicks(edit, code);
    press(edit, Qt::Key_Tab);
    QCOMPARE(desk.prompt.messages, QStringList());
    QCOMPARE(desk.master("N_Contragent_Name"), name);
    QVERIFY(!desk.master("Contragent_Id").isEmpty());
    QVERIFY(edit != QApplication::focusWidget());
  }

  void anEmptyOptionalLookupForgetsItsRecord()
  {
    InvoiceDesk desk;
    TDBEdit* edit = desk.edit("N_PaymentTerms_Name");
    QVERIFY(edit);
    edit->setFocus();
    press(edit, Qt::Key_Down, Qt::AltModifier);
    auto* list = desk.last<TfBrNomenclature>();
    QVERIFY2(list, qPrintable(desk.prompt.messages.join(u'\n')));
    press(list->dbgMaster(), Qt::Key_Return);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!desk.master("PayTerm_Id").isEmpty());
    QTRY_COMPARE(QApplication::focusWidget(), edit);
    edit->setFocus();
    edit->selectAll();
    press(edit, Qt::Key_Delete);
    press(edit, Qt::Key_Tab);
    QCOMPARE(desk.master("N_PaymentTerms_Name"), QString());
    QCOMPARE(desk.master("PayTerm_Id"), QString());
  }

  void theButtonOpensTheListBesideTheForm()
  {
    InvoiceDesk desk;
    TDBEdit* edit = desk.edit("N_Contragent_Code");
    edit->setFocus();
    press(edit, Qt::Key_Down, Qt::AltModifier);
    auto* list = desk.last<TfBrContragent>();
    QVERIFY2(list, qPrintable(desk.prompt.messages.join(u'\n')));
    QVERIFY(!list->cdsMaster()->IsEmpty());
    const QString code = list->cdsMaster()->FieldByName(u"Code")->AsString();
    press(list->dbgMaster(), Qt::Key_Return);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(desk.master("N_Contragent_Code"), code);
    QVERIFY(!desk.master("N_Contragent_Name").isEmpty());
    QTRY_COMPARE(QApplication::focusWidget(), edit);

    press(edit, Qt::Key_Down, Qt::AltModifier);
    list = desk.last<TfBrContragent>();
    QVERIFY(list);
    QCOMPARE(list->cdsMaster()->RecordCount(), 1);
    press(list->dbgMaster(), Qt::Key_Escape);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QTRY_COMPARE(QApplication::focusWidget(), edit);
    QCOMPARE(desk.master("N_Contragent_Code"), code);
    QCOMPARE(desk.prompt.messages, QStringList());
  }

  void aCardOpenedFromTheLookupCanBeUsed()
  {
    InvoiceDesk desk;
    bool cardInFront = false;
    InTheLookup lookup([&](TfBaseBrowse* list) {
      QTimer::singleShot(50, list, [&cardInFront] {
        QWidget* front = QApplication::activeModalWidget();
        cardInFront = front && front->findChild<TfEdContragent*>();
        if (cardInFront)
          front->close();
      });
      list->execute(QStringLiteral("acShowCard"));
    });
    TDBEdit* edit = desk.edit("N_Contragent_Code");
    edit->setFocus();
    QTest::keyClicks(edit, QStringLiteral("1"));
    press(edit, Qt::Key_Tab);
    QVERIFY(lookup.opened);
    QVERIFY(cardInFront);
    QCOMPARE(desk.master("N_Contragent_Code"), QString());
    QTRY_COMPARE(QApplication::focusWidget(), edit);
    QCOMPARE(edit->text(), QString());
    QCOMPARE(desk.prompt.messages, QStringList());
  }

  void anotherKindOfLineForgetsTheItem()
  {
    InvoiceDesk desk;
    desk.startLine();
    press(desk.typeIntoCell(desk.itemCodes[1]), Qt::Key_Return);
    desk.lines->FieldByName(u"Type")->SetValue(0);
    QCOMPARE(desk.line("Code"), QString());
    QCOMPARE(desk.line("Description"), QString());
    desk.lines->FieldByName(u"Code")->SetValue(QStringLiteral("свободно"));
    QCOMPARE(desk.line("Code"), QStringLiteral("свободно"));
  }
};

const RegisterTest<InvoiceLookupsTest> invoiceLookupsTest;

}  // namespace kalvor::testing

#include "invoice_test.moc"
