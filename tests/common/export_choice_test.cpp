// The choice of columns and its file; whole datasets as XML data packets, out and in.
#include "common/export_choice.h"
#include "common/xml_exchange.h"
#include "export_records.h"
#include "several_tests.h"
#include "session/scripted_session.h"

using namespace kalvor;
using namespace kalvor::testing;

namespace {

const QString sep = exportDetailSeparator;

class ExportChoiceTest : public QObject {
  Q_OBJECT
 private slots:
  void moving()
  {
    ExportDesk desk;
    ExportChoice choice;
    choice.fill(&desk.master, nullptr);
    QCOMPARE(choice.source().texts(), (QStringList{u"Код"_s, u"Име"_s, u"Сума"_s, u"Дата"_s}));
    QCOMPARE(choice.source().separatorPosition(), -1);

    choice.fill(&desk.master, &desk.detail);
    QCOMPARE(choice.source().separatorPosition(), 4);
    choice.take({4});
    QVERIFY(choice.target().isEmpty());
    choice.take({5});
    QCOMPARE(choice.target().texts(), (QStringList{sep, u"Код"_s}));
    choice.take({2, 0, 4, 5});
    QCOMPARE(choice.target().texts(), (QStringList{u"Код"_s, u"Сума"_s, sep, u"Код"_s, u"Ред. име"_s}));
    QCOMPARE(choice.source().texts(), (QStringList{u"Име"_s, u"Дата"_s, sep}));
    QCOMPARE(choice.target().masterList(), u"Код,Сума"_s);
    QCOMPARE(choice.target().detailList(), u"Код,Ред. име"_s);
    choice.giveBack({0, 3, 4});
    QCOMPARE(choice.source().texts(), (QStringList{u"Код"_s, u"Име"_s, u"Дата"_s, sep, u"Код"_s, u"Ред. име"_s}));
    QCOMPARE(choice.target().texts(), QStringList{u"Сума"_s});
  }

  void loading_data()
  {
    QTest::addColumn<QString>("line");
    QTest::addColumn<QStringList>("taken");
    QTest::addColumn<QString>("error");
    const QString missing = u"Не сьществуващо поле !\r\n!!!"_s;
    QTest::newRow("both parts") << u"Дата,Код;Ред. име,Код"_s << QStringList{u"Дата"_s, u"Код"_s, sep, u"Ред. име"_s, u"Код"_s} << u""_s;
    QTest::newRow("one detail caption is none") << u"Код;Код"_s << QStringList{u"Код"_s} << u""_s;
    QTest::newRow("detail only") << u";Код,Ред. име,"_s << QStringList{sep, u"Код"_s, u"Ред. име"_s} << u""_s;
    QTest::newRow("no detail part") << u"Код,Име"_s << QStringList{u"Код"_s, u"Име"_s} << u""_s;
    QTest::newRow("stops at a stranger") << u"Код,Няма,Име;Код,Ред. име"_s << QStringList{u"Код"_s} << missing;
    QTest::newRow("twice") << u"Код,Код"_s << QStringList{u"Код"_s} << missing;
    QTest::newRow("case matters") << u"код"_s << QStringList{} << missing;
    QTest::newRow("empty") << u""_s << QStringList{} << u""_s;
  }
  void loading()
  {
    ExportDesk desk;
    QFETCH(QString, line);
    ExportChoice choice;
    choice.fill(&desk.master, &desk.detail);
    QFile file(desk.path(u"a.exp"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(line.toUtf8());
    file.close();
    QString error;
    try {
      choice.load(file.fileName());
    } catch (const DataError& failure) {
      error = failure.message();
    }
    QTEST(error, "error");
    QTEST(choice.target().texts(), "taken");
  }

  void saving()
  {
    ExportDesk desk;
    desk.master.Field(0)->DisplayLabel = u"Кол., \"бр\"; ; "_s;
    ExportChoice choice;
    choice.fill(&desk.master, &desk.detail);
    choice.take({1, 0, 5, 6});
    const QString path = ExportChoice::folder() + u"a.exp"_s;
    QVERIFY(path.startsWith(desk.documents.path()) && path.endsWith(u"Kalvor/Exports/a.exp"_s));
    choice.save(path);
    ExportChoice again;
    again.fill(&desk.master, &desk.detail);
    again.load(path);
    QCOMPARE(again.target().texts(), choice.target().texts());
    QVERIFY_EXCEPTION_THROWN(choice.save(desk.path(u"none/a.exp"_s)), DataError);
  }

  void paths()
  {
    ExportDesk desk;
    QVERIFY(isExportPath(desk.path(u"a.xls"_s)));
    for (const QString& path : {u""_s, u"a.xls"_s, desk.path(u"none/a.xls"_s), desk.files.path(), desk.files.path() + u'/'})
      QVERIFY2(!isExportPath(path), qPrintable(path));
  }
};

class XmlExchangeTest : public QObject {
  Q_OBJECT
 private slots:
  void init()
  {
    for (const char* operation : {"trStart", "trCommit", "trRollback", "UpdateClientData", "ExecMultySQL"})
      server_.answer(QLatin1String(operation), 0);
    server_.log.clear();
    server_.sent.clear();
  }

  void roundTrip()
  {
    ExportDesk desk;
    desk.prompt.file = desk.path(u"a"_s);
    QVERIFY(ExportToXML(&desk.master));
    QCOMPARE(desk.fileNames(), QStringList{u"a.xml"_s});
    QCOMPARE(desk.prompt.takeMessages(), QStringList{u"Данните са записани успешно!"_s});

    TClientDataSet target;
    fillTarget(target);
    desk.prompt.file = desk.path(u"a.xml"_s);
    QVERIFY(ImportFromXML(&target, {}, true));
    QCOMPARE(desk.prompt.takeMessages(), QStringList{u"Данните са записани успешно!"_s});
    QCOMPARE(server_.log, (QStringList{u"trStart"_s, u"UpdateClientData"_s, u"trCommit"_s}));
    const VariantArray pair = server_.sentOnce(u"UpdateClientData"_s)[0].toList()[0].toList();
    QCOMPARE(pair[0], QVariant(u"P1"_s));
    QCOMPARE(pair[1].value<DeltaPtr>()->status.size(), 4u);  // one record changed, two inserted
    QCOMPARE(target.ChangeCount(), 0);
    QCOMPARE(target.RecordCount(), 3);
    QVERIFY(target.Locate(u"ID"_s, 2));
    QCOMPARE(target.FieldByName(u"Name")->AsString(), u"=1+1"_s);
    QVERIFY(!ImportFromXML(&target, desk.path(u"none.xml"_s), true));
    QCOMPARE(desk.prompt.takeMessages().size(), 1);
  }

  void nothingChosen()
  {
    ExportDesk desk;
    QVERIFY(!ExportToXML(&desk.master));
    QVERIFY(!ImportFromXML(&desk.master, {}, true));
    QCOMPARE(desk.prompt.messages, QStringList());
  }

  void withoutIdTheCurrentRecordIsEdited()
  {
    ExportDesk desk;
    TClientDataSet packet, target;
    packet.CreateDataSet({fieldDef(u"Name"_s)});
    packet.AppendRecord({u"Нова"_s});
    packet.SaveToFile(desk.path(u"a.xml"_s));
    fillTarget(target);
    QVERIFY(ImportFromXML(&target, desk.path(u"a.xml"_s), false));
    QCOMPARE(target.RecordCount(), 1);
    QCOMPARE(target.FieldByName(u"Name")->AsString(), u"Нова"_s);
    QCOMPARE(desk.prompt.messages, QStringList());
  }

  void refusedByTheServer()
  {
    ExportDesk desk;
    desk.master.SaveToFile(desk.path(u"a.xml"_s));
    for (bool raises : {false, true}) {
      TClientDataSet target;
      fillTarget(target);
      server_.log.clear();
      server_.answer(u"UpdateClientData"_s, -1);
      if (raises)
        server_.handlers.remove(u"UpdateClientData"_s);
      QVERIFY(!ImportFromXML(&target, desk.path(u"a.xml"_s), true));
      QCOMPARE(server_.log, (QStringList{u"trStart"_s, u"UpdateClientData"_s, u"trRollback"_s}));
      QCOMPARE(desk.prompt.takeMessages(), QStringList{u"Грешка при запис на данните!"_s});
      QCOMPARE(target.ChangeCount(), 3);
    }
  }

  void statements()
  {
    ExportDesk desk;
    TClientDataSet packet, target;
    packet.CreateDataSet({fieldDef(u"ID"_s, DataType::Integer), fieldDef(u"AdditionalData"_s)});
    for (const QString& text : {u"first"_s, u""_s, u"bad"_s, u"last"_s})
      packet.AppendRecord({2, text});
    packet.SaveToFile(desk.path(u"a.xml"_s));
    fillTarget(target);
    server_.handlers[u"ExecMultySQL"_s] = [](VariantArray& arguments) { return Variant(arguments[0] == u"bad"_s ? 1 : 0); };
    QVERIFY(ImportFromXML(&target, desk.path(u"a.xml"_s), true));
    const QStringList batch{u"trStart"_s, u"ExecMultySQL"_s, u"trCommit"_s};
    const QStringList failed{u"trStart"_s, u"ExecMultySQL"_s, u"trRollback"_s};
    QCOMPARE(server_.log.mid(server_.log.indexOf(u"trCommit"_s) + 1), batch + failed + batch);
    QVERIFY(desk.logged(u"ExecMultySQL: 1"_s));
  }

 private:
  void fillTarget(TClientDataSet& target)
  {
    target.CreateDataSet({fieldDef(u"ID"_s, DataType::Integer), fieldDef(u"Name"_s, DataType::WideString, 6),
                          fieldDef(u"Amount"_s, DataType::Float), fieldDef(u"Day"_s, DataType::Date)});
    target.AppendRecord({2, u"стар"_s, 1.0, Variant()});
    target.MergeChangeLog();
    target.ProviderName = u"P1"_s;
    target.SetRemoteServer(&server_);
  }

  ScriptedCalls server_;
};

const RegisterTest<ExportChoiceTest> registeredChoice;
const RegisterTest<XmlExchangeTest> registeredExchange;

}  // namespace

#include "export_choice_test.moc"
