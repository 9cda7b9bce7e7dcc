#include "filter_text.h"
#include "forms/form_settings.h"
#include "several_tests.h"

using namespace kalvor;

class FormSettingsTest : public QObject {
  Q_OBJECT

  static TIniOptions options(const QString& letters)
  {
    TIniOptions use;
    use.Filter = letters.contains('F');
    use.SortOrder = letters.contains('S');
    use.FormSize = letters.contains('W');
    return use;
  }

 private slots:
  void loading_data()
  {
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<QString>("use");
    QTest::addColumn<int>("show");
    QTest::addColumn<QString>("loaded");
    const QStringList all{"FormWidth=800", "FormHeight=600", "Filter=A,=,1,", "SortOrder=A DESC"};
    QTest::newRow("all") << all << "FSW" << int(so_Normal) << "800x600 A DESC (A;=;1;)";
    QTest::newRow("nothing used") << all << "" << int(so_Normal) << "- - ";
    QTest::newRow("size alone") << all << "W" << int(so_Normal) << "800x600 - ";
    QTest::newRow("card") << all << "F" << int(so_Card) << "- - ";
    QTest::newRow("edit from a selector") << all << "F" << int(so_SelectEdit) << "- - ";
    QTest::newRow("empty filter") << QStringList{"Filter="} << "F" << int(so_Normal) << "- - ";
    QTest::newRow("broken size") << QStringList{"FormWidth=8o0", "FormHeight=600"} << "W" << int(so_Normal) << "- - ";
    QTest::newRow("height missing") << QStringList{"FormWidth=800"} << "W" << int(so_Normal) << "- - ";
    QTest::newRow("sort order missing") << QStringList() << "S" << int(so_Normal) << "-  ";
    QTest::newRow("macro stays") << QStringList{"Filter=A,=,<#Param(USER_ID)#>,"} << "F" << int(so_Normal)
                                 << "- - (A;=;<#Param(USER_ID)#>;)";
  }
  void loading()
  {
    QFETCH(QStringList, lines);
    QFETCH(QString, use);
    QFETCH(int, show);
    const LoadedFormSettings loaded = loadFormSettings(lines, options(use), ShowOption(show), {});
    const QString size =
        loaded.size ? QString("%1x%2").arg(loaded.size->width()).arg(loaded.size->height()) : QString("-");
    QTEST(size + ' ' + loaded.sortOrder.value_or("-") + ' ' + testing::filterText(loaded.filter), "loaded");
    if (!loaded.filter.isEmpty()) {
      const FilterArray own{{"B", "=", "1", "", ""}};
      QVERIFY(loadFormSettings(lines, options(use), ShowOption(show), own).filter.isEmpty());
    }
  }

  void saving_data()
  {
    QTest::addColumn<QString>("use");
    QTest::addColumn<int>("show");
    QTest::addColumn<bool>("maximized");
    QTest::addColumn<QStringList>("own");
    QTest::newRow("all") << "FSW" << int(so_Normal) << false
                         << QStringList{"FormWidth=640", "FormHeight=480", "Filter=A,=,1,", "SortOrder=B ASC"};
    QTest::newRow("maximized") << "W" << int(so_Normal) << true << QStringList();
    QTest::newRow("multiple selection") << "FS" << int(so_SelectMulty) << false << QStringList{"SortOrder=B ASC"};
    QTest::newRow("card") << "F" << int(so_Card) << false << QStringList();
    QTest::newRow("new from a selector") << "F" << int(so_SelectNew) << false << QStringList{"Filter=A,=,1,"};
    QTest::newRow("nothing") << "" << int(so_Normal) << false << QStringList();
  }
  void saving()
  {
    QFETCH(QString, use);
    QFETCH(int, show);
    QFETCH(bool, maximized);
    QFETCH(QStringList, own);
    const FormSettingsToSave form{QSize(640, 480), maximized, {{"A", "=", "1", "", ""}}, "B ASC"};
    const QStringList stored{"DefaultPF=12", "Filter=old", "FormWidth=1", "FloatPanel=-1"};
    QCOMPARE(formSettingsLines(stored, form, options(use), ShowOption(show)),
             QStringList({"DefaultPF=12", "FloatPanel=-1"}) + own);
  }

  void emptyFilterAndOrder()
  {
    const FormSettingsToSave form{QSize(1, 1), false, {}, {}};
    QCOMPARE(formSettingsLines({}, form, options("FS"), so_Normal), QStringList{"Filter="});
    QCOMPARE(formSettingsGroup(120), QString("Form_Id120"));
  }

  void localOptions()
  {
    TIniOptions use = options("FW");
    use.ApplyColorSettings = true;
    const QStringList lines = iniOptionLines(use);
    QCOMPARE(lines, (QStringList{"Filter=-1", "SortOrder=0", "Grids=0", "FormSize=-1", "ApplyColorSettings=-1"}));
    QCOMPARE(iniOptionsFromLines(lines), use);
    QCOMPARE(iniOptionsFromLines({"Filter=1"}), TIniOptions());
  }
};

static const testing::RegisterTest<FormSettingsTest> registerFormSettingsTest;
#include "form_settings_test.moc"
