// The settings' texts: histories, booleans, export options, what is deleted of the stored form settings.
#include "registry/user_settings.h"
#include "session/export_options.h"
#include "session/history_list.h"
#include "session/ini_options.h"
#include "session/settings_document.h"
#include "several_tests.h"

using namespace kalvor;

class SettingsRulesTest : public QObject {
  Q_OBJECT

 private slots:
  void historyKeepsTheLastFive_data()
  {
    QTest::addColumn<QStringList>("items");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("kept");
    const QStringList five{"a", "b", "c", "d", "e"};
    QTest::newRow("sixth") << five << "f" << QStringList{"f", "a", "b", "c", "d"};
    QTest::newRow("known") << five << "c" << QStringList{"c", "a", "b", "d", "e"};
    QTest::newRow("other case") << QStringList{"A"} << "a" << QStringList{"a", "A"};
    QTest::newRow("empty") << QStringList{"a"} << "" << QStringList{"", "a"};
    QTest::newRow("too many") << five + QStringList{"f", "g"} << "a" << QStringList{"a", "b", "c", "d", "e"};
  }
  void historyKeepsTheLastFive()
  {
    QFETCH(QStringList, items);
    QFETCH(QString, text);
    QTEST(historyWith(items, text), "kept");
  }

  void historyLinesReadBack()
  {
    const QStringList lines = historyLines("prnIndex", {"", "a=b"});
    QCOMPARE(lines, (QStringList{"prnIndex0=", "prnIndex1=a=b"}));
    QCOMPARE(historyFromLines(QStringList{"prn=x", "prnIndexes=y"} + lines, "prnIndex"), (QStringList{"y", "", "a=b"}));
  }

  void booleans_data()
  {
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("value");
    for (const char* text : {"-1", "1", " true ", "TRUE"})
      QTest::newRow(text) << text << true;
    for (const char* text : {"0", "False"})
      QTest::newRow(text) << text << false;
  }
  void booleans()
  {
    QFETCH(QString, text);
    QTEST(settingBool(text, true), "value");
    QTEST(settingBool(text, false), "value");
    QVERIFY(settingBool("да", true) && !settingBool("", false));
  }

  void exportOptions_data()
  {
    QTest::addColumn<QStringList>("stored");
    QTest::addColumn<QStringList>("written");
    const auto row = [](const char* name, const QStringList& stored, const QStringList& written) {
      QTest::newRow(name) << stored << written;
    };
    row("nothing", {}, {"Separator=Fixed", "Symbol=", "Caption=0", "Dos=0", "Drob=2"});
    row("empty separator", {"Separator=", "Symbol=#"}, {"Separator=Fixed", "Symbol=", "Caption=0", "Dos=0", "Drob=2"});
    row("tab", {"Separator=tab", "Symbol=#", "Caption=-1", "Dos=True", "Drob=0"},
        {"Separator=tab", "Symbol=", "Caption=-1", "Dos=-1", "Drob=0"});
    row("semicolon", {"Separator=Point&Comma", "Drob=six"},
        {"Separator=Point&Comma", "Symbol=", "Caption=0", "Dos=0", "Drob=2"});
    row("symbol", {"Separator=Char", "Symbol=|", "Drob=9"}, {"Separator=Char", "Symbol=|", "Caption=0", "Dos=0", "Drob=6"});
    row("any other", {"Separator=COMMA", "Symbol=,"}, {"Separator=Char", "Symbol=,", "Caption=0", "Dos=0", "Drob=2"});
  }
  void exportOptions()
  {
    QFETCH(QStringList, stored);
    QTEST(exportOptionLines(exportOptionsFromLines(stored)), "written");
  }

  void onlyTheNamedSettingsAreDeleted_data()
  {
    QTest::addColumn<QString>("flags");
    QTest::addColumn<QString>("left");
    const QString other = "<Form_Id120><FormWidth>1</FormWidth></Form_Id120><Form_Id120Tag_Id1><A>1</A></Form_Id120Tag_Id1>";
    const auto row = [&](const char* flags, const QString& left) { QTest::newRow(flags) << flags << left + other; };
    const QString grids = "<Form_Id12Tag_Id0><A>9</A></Form_Id12Tag_Id0><Form_Id12Tag_Id1><B>9</B></Form_Id12Tag_Id1>";
    row("sizes", "<Form_Id12><Filter>f</Filter><SortOrder>s</SortOrder><DefaultPF>p</DefaultPF></Form_Id12>" + grids);
    row("filters", "<Form_Id12><FormWidth>1</FormWidth><FormHeight>2</FormHeight><DefaultPF>p</DefaultPF></Form_Id12>" + grids);
    row("grids", "<Form_Id12><Filter>f</Filter><SortOrder>s</SortOrder><FormWidth>1</FormWidth>"
                 "<FormHeight>2</FormHeight><DefaultPF>p</DefaultPF></Form_Id12>");
  }
  void onlyTheNamedSettingsAreDeleted()
  {
    QFETCH(QString, flags);
    QFETCH(QString, left);
    QDomDocument document = stored();
    DeleteUserSettings(document, 12, flags == "grids", flags == "filters", flags == "sizes");
    QCOMPARE(document.toString(-1), "<Root>" + left + "</Root>");
  }

  void formsWithStoredSettings_data()
  {
    QTest::addColumn<int>("kind");
    QTest::addColumn<QList<int>>("forms");
    QTest::newRow("filter, order") << 1 << QList<int>{12};
    QTest::newRow("grids") << 2 << QList<int>{12, 120};
    QTest::newRow("sizes") << 3 << QList<int>{12, 120};
  }
  void formsWithStoredSettings()
  {
    QFETCH(int, kind);
    QDomDocument document = stored();
    SaveNodeToXml(document, "Form_Idx", {"Filter=1", "FormWidth=1"}, false);
    SaveNodeToXml(document, "Form_IdTag_Id1", {"A=1"}, false);
    SaveNodeToXml(document, "IniOptions", {"Filter=-1", "SortOrder=0"}, false);
    QTEST(formsWithSettings(document, StoredSettings(kind)), "forms");
    QCOMPARE(formsWithSettings(QDomDocument(), StoredSettings(kind)), QList<int>());
  }

 private:
  static QDomDocument stored()
  {
    QDomDocument document;
    SaveNodeToXml(document, "Form_Id12", {"Filter=f", "SortOrder=s", "FormWidth=1", "FormHeight=2", "DefaultPF=p"}, true);
    SaveNodeToXml(document, "Form_Id12Tag_Id0", {"A=9"}, true);
    SaveNodeToXml(document, "Form_Id12Tag_Id1", {"B=9"}, true);
    SaveNodeToXml(document, "Form_Id120", {"FormWidth=1"}, true);
    SaveNodeToXml(document, "Form_Id120Tag_Id1", {"A=1"}, true);
    return document;
  }
};

static const testing::RegisterTest<SettingsRulesTest> registerSettingsRulesTest;
#include "settings_rules_test.moc"
