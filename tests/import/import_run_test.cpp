#include <QFile>
#include <QTemporaryDir>
#include <QTextEdit>

#include "../forms/sample_forms.h"
#include "../several_tests.h"
#include "import/messages.h"
#include "import/windows/import_progress.h"
#include "import/windows/request_import.h"
#include "session/import_log.h"
#include "session/server_calls.h"

using namespace kalvor;
using namespace kalvor::testing;

namespace {

constexpr int contragentCard = 141;

const QString contragentFilter = QStringLiteral(
    "[OPTIONS]TXTFILE_SEP=SEMICOLON##IMPORT_ACTION=%1%2[##OPTIONS]"
    "[CDSMASTER]1=1|1|Code##2=1|0|Name##3=1|0|CreditLimit##90=1|0|N_VATBusPostGroup_Code||BG##91=1|0|N_GenBusPostGroup_Code||DOMESTIC%3[##CDSMASTER]"
    "[LINK_FIELDS_DESCR]TermsSource=Id##TermsTarget=PaymentTerms_Id[##LINK_FIELDS_DESCR]");

const QString termsLookup = QStringLiteral(
    "##4=2|0|||1|TermsSource;TermsTarget|16400|N_PaymentTerms|N_PaymentTerms.Name#=#8#4");

// What the server holds of the contractors with a code that begins so.
QStringList storedContragents(const QString& beginning)
{
  Variant answer;
  const FilterArray filter{{QStringLiteral("N_Contragent.Code"), QStringLiteral("LIKE"), beginning + u'%', QString(), QString()}};
  requestValue(*DM->ConBroker, TableColumns, QStringLiteral("N_Contragent"), QStringLiteral("Code,Name"), filter, answer,
               RowsWanted::All);
  QStringList found;
  for (const Variant& row : answer.toList())
    found.append(row.toList().value(0).toString() + u'=' + row.toList().value(1).toString());
  found.sort();
  return found;
}

QString readLog(const QString& beginning)
{
  QFile file(importLogFolder() + beginning + systemClock().today().toString(QStringLiteral("yyyyMMdd")) + QStringLiteral(".LOG"));
  return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

struct Import {
  explicit Import(const QString& lines) : path(folder.filePath(QStringLiteral("data.txt")))
  {
    QFile file(path);
    const bool opened = file.open(QIODevice::WriteOnly);
    Q_ASSERT(opened);
    Q_UNUSED(opened)
    file.write(lines.toUtf8());
  }
  bool run(int action, bool unattended, const QString& options = {}, const QString& lookups = {})
  {
    TImportFilter filter(contragentCard);
    filter.LoadImportParams(contragentFilter.arg(action).arg(options, lookups));
    ImportInitLog();
    const bool ran = RequestImport(contragentCard, filter, path, QString(), QString(), error, so_ImportData, unattended, nullptr);
    ImportCloseLog();
    return ran;
  }
  QTemporaryDir folder;
  QString path;
  QString error;
};

}  // namespace

class ImportRunTest : public QObject {
  Q_OBJECT

 private slots:
  void actionsInsertUpdateAndSkip_data()
  {
    QTest::addColumn<int>("action");
    QTest::addColumn<QStringList>("expected");
    const QStringList fresh{QStringLiteral("IMP1=Нов"), QStringLiteral("IMP2=Втори")};
    QTest::newRow("0 inserts what is there already too") << 0 << (QStringList() << QStringLiteral("IMP1=Нов") << QStringLiteral("IMP1=Стар") << QStringLiteral("IMP2=Втори"));
    QTest::newRow("1 updates only") << 1 << QStringList{QStringLiteral("IMP1=Нов")};
    QTest::newRow("2 updates or inserts") << 2 << fresh;
    QTest::newRow("3 inserts only") << 3 << QStringList{QStringLiteral("IMP1=Стар"), QStringLiteral("IMP2=Втори")};
    QTest::newRow("4 inserts") << 4 << (QStringList() << QStringLiteral("IMP1=Нов") << QStringLiteral("IMP1=Стар") << QStringLiteral("IMP2=Втори"));
  }
  void actionsInsertUpdateAndSkip()
  {
    QFETCH(int, action);
    QFETCH(QStringList, expected);
    Desk desk;
    clear();
    QVERIFY(Import(QStringLiteral("IMP1;Стар\r\n")).run(0, true));
    QCOMPARE(storedContragents(QStringLiteral("IMP")), QStringList{QStringLiteral("IMP1=Стар")});
    QVERIFY(Import(QStringLiteral("IMP1;Нов\r\nIMP2;Втори\r\n")).run(action, true));
    expected.sort();
    QCOMPARE(storedContragents(QStringLiteral("IMP")), expected);
  }

  void aBadRecordIsAskedAbout_data()
  {
    QTest::addColumn<PromptButton>("answer");
    QTest::addColumn<QStringList>("stored");
    QTest::addColumn<int>("questions");
    const QString first = QStringLiteral("IMP1=а"), last = QStringLiteral("IMP5=д");
    QTest::newRow("yes goes on and asks again") << PromptButton::Yes << QStringList{first, last} << 3;
    QTest::newRow("no stops") << PromptButton::No << QStringList{first} << 1;
    QTest::newRow("yes to all") << PromptButton::YesToAll << QStringList{first, last} << 1;
  }
  void aBadRecordIsAskedAbout()
  {
    QFETCH(PromptButton, answer);
    QFETCH(QStringList, stored);
    QFETCH(int, questions);
    Desk desk;
    clear();
    desk.prompt.answers = {answer, answer, answer};
    // A value that is no number, a lookup that finds nothing, a number again.
    Import import(QStringLiteral("IMP1;а;;До 7 дни\r\nIMP2;б;много;До 7 дни\r\nIMP3;в;;Няма такива\r\nIMP4;г;x;До 7 дни\r\n"
                                 "IMP5;д;12.5;До 7 дни\r\n"));
    QVERIFY(import.run(0, false, QStringLiteral("##DECIMAL_SEPARATOR=."), termsLookup));
    QCOMPARE(storedContragents(QStringLiteral("IMP")), stored);
    const QStringList asked = desk.prompt.messages.filter(_que_ContinueImport);
    QCOMPARE(asked.size(), questions);
    QVERIFY2(asked.first().startsWith(QStringLiteral("Ред No: 2\r\n")), qPrintable(asked.first()));
    QCOMPARE(desk.prompt.messages.last(), _inf_OperationError);
    const QString handled = readLog(QStringLiteral("Info_"));
    QVERIFY(handled.contains(QStringLiteral("Обработка на запис: IMP1 -> Успешна")));
    QVERIFY(handled.contains(QStringLiteral("Обработка на запис: IMP2 -> Неуспешна")));
  }

  // The user presses the button of the progress window while he is asked about a bad record.
  void whatWasSavedBeforeTheStopStays()
  {
    struct StoppingPrompt : ScriptedPrompt {
      PromptButton message(PromptKind kind, const QString& text, const QList<PromptButton>& buttons) override
      {
        if (text.contains(_que_ContinueImport))
          TfImportProgress::current()->btnCancelClick();
        return ScriptedPrompt::message(kind, text, buttons);
      }
    };
    Desk desk;
    clear();
    StoppingPrompt prompt;
    prompt.answers = {PromptButton::Yes, PromptButton::No, PromptButton::Yes, PromptButton::Yes};
    Import import(QStringLiteral("IMP1;а\r\nIMP2;б;x\r\nIMP3;в\r\nIMP4;г;x\r\nIMP5;д\r\n"));
    QVERIFY(import.run(0, false));
    QCOMPARE(storedContragents(QStringLiteral("IMP")), (QStringList{QStringLiteral("IMP1=а"), QStringLiteral("IMP3=в")}));
    QCOMPARE(prompt.messages.count(_que_CancelImport), 2);
    QVERIFY(readLog(QStringLiteral("Info_")).contains(QStringLiteral("Операция Прекъсване на импорта на данни -> Успешна")));
  }

  void aGoodRunEndsWell()
  {
    Desk desk;
    clear();
    QVERIFY(Import(QStringLiteral("IMP1;а\r\n\r\n")).run(0, false));
    QCOMPARE(desk.prompt.messages, QStringList{_inf_OperationSuccess});
    QCOMPARE(desk.prompt.kinds, QList<PromptKind>{PromptKind::Confirmation});
    QVERIFY(!DM->ImportRunning);
  }

  void anEmptyFileIsNoSuccess()
  {
    Desk desk;
    QVERIFY(Import(QStringLiteral(" \r\n")).run(0, false));
    QCOMPARE(desk.prompt.messages, (QStringList{_err_EndOfFile + QStringLiteral("\r\n") + _que_ContinueImport, _inf_OperationError}));
  }

  void whatCannotBeStartedSaysWhy()
  {
    Desk desk;
    TImportFilter filter(999);
    QString error;
    QVERIFY(!RequestImport(999, filter, QStringLiteral("x.txt"), QString(), QString(), error, so_ImportData, true, nullptr));
    QCOMPARE(error, QStringLiteral("Start lc_FormData.FormClass  is empty"));
    Import missing{QString()};
    missing.path += QStringLiteral(".none.txt");
    QVERIFY(!missing.run(0, true));
    QCOMPARE(missing.error, _err_OpenFile);
  }

  void theProgressWindowKeepsWhatWentWrong()
  {
    ScriptedPrompt prompt;
    TfImportProgress progress;
    progress.InitProgressBar(3, QStringLiteral("data.txt"));
    prompt.answers = {PromptButton::YesToAll};
    QVERIFY(!progress.detailsShown());
    QCOMPARE(progress.ErrMsgAnswer(-10, QStringLiteral("първа")), PromptButton::YesToAll);
    QCOMPARE(progress.ErrMsgAnswer(-1, QStringLiteral("втора")), PromptButton::Yes);
    QCOMPARE(prompt.messages, QStringList{QStringLiteral("първа\r\n") + _que_ContinueImport});
    QVERIFY(progress.detailsShown());
    QCOMPARE(progress.reMessages->toPlainText(),
             QStringLiteral("Код на грешката: -10\nГрешка: първа\n\nКод на грешката: -1\nГрешка: втора"));
    progress.LogServerMsg(1, QStringLiteral(" готово "));
    QVERIFY(!progress.serverError());
    progress.LogServerMsg(-5, QStringLiteral("отказ"));
    QVERIFY(progress.serverError());
    QVERIFY(progress.reMessages->toPlainText().endsWith(QStringLiteral("\nотказ")));
    for (int i = 0; i < 2100; ++i)
      progress.AddMessage(QStringLiteral("ред"));
    QVERIFY(progress.reMessages->document()->blockCount() <= 2000);
    progress.reject();
    QVERIFY(progress.cancelRequested());
  }

 private:
  void clear()
  {
    demoServer()->core().openWriter()->execute(QStringLiteral("DELETE FROM N_Contragent WHERE Code LIKE 'IMP%'"));
  }
};

static const RegisterTest<ImportRunTest> registerImportRunTest;

#include "import_run_test.moc"
