// Records as text files: separators, widths, code pages, order of columns, details, and files that cannot be written.
#include <sys/resource.h>

#include <csignal>
#include <random>

#include "common/export_spreadsheet.h"
#include "common/export_text.h"
#include "data/regional.h"
#include "export_records.h"
#include "platform/text_encoding.h"
#include "several_tests.h"

using namespace kalvor;
using namespace kalvor::testing;

namespace {

const QString allCaptions = u"Код,Име,Сума,Дата"_s;

// No file of this process grows beyond that many bytes while this lives.
class SmallDisk {
 public:
  explicit SmallDisk(rlim_t bytes)
  {
    std::signal(SIGXFSZ, SIG_IGN);
    getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit small{bytes, before_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
  }
  ~SmallDisk()
  {
    setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, SIG_DFL);
  }

 private:
  rlimit before_{};
};

class ExportTextTest : public QObject {
  Q_OBJECT
 private slots:
  void lines_data()
  {
    QTest::addColumn<int>("delimiter");
    QTest::addColumn<QString>("symbol");
    QTest::addColumn<QString>("captions");
    QTest::addColumn<int>("decimals");
    QTest::addColumn<bool>("captionLine");
    QTest::addColumn<QString>("expected");
    QTest::newRow("tab") << int(dtTab) << u""_s << allCaptions << 2 << false
                         << u"1\tАня\t12,35\t18.01.2026\r\n2\t=1+1\t0,00\t\r\n3\tЖълтит\t\t31.12.1999\r\n"_s;
    QTest::newRow("comma keeps numbers whole") << int(dtComma) << u""_s << u"Код,Сума"_s << 1 << true
                                               << u"Код,Сума\r\n1,12.3\r\n2,0.0\r\n3,\r\n"_s;
    QTest::newRow("semicolon, no decimals") << int(dtSemiColon) << u""_s << u"Сума,Код"_s << 0 << false
                                            << u"12;1\r\n0;2\r\n;3\r\n"_s;
    QTest::newRow("symbol") << int(dtChar) << u" | "_s << u"Код,Име"_s << 2 << true
                            << u"Код | Име\r\n1 | Аня\r\n2 | =1+1\r\n3 | Жълтит\r\n"_s;
    QTest::newRow("empty symbol") << int(dtChar) << u""_s << u"Код,Име"_s << 2 << false
                                  << u"1Аня\r\n2=1+1\r\n3Жълтит\r\n"_s;
    QTest::newRow("fixed") << int(dtFixedLen) << u""_s << u"Код,Име,Дата"_s << 2 << true
                           << u"       КодИме                  Дата\r\n"
                              "         1Аня            18.01.2026\r\n"
                              "         2=1+1                     \r\n"
                              "         3Жълтит         31.12.1999\r\n"_s;
    QTest::newRow("no such caption") << int(dtTab) << u""_s << u"код"_s << 2 << false << u"\r\n\r\n\r\n"_s;
  }
  void lines()
  {
    ExportDesk desk;
    QFETCH(int, delimiter);
    QFETCH(QString, symbol);
    QFETCH(QString, captions);
    QFETCH(int, decimals);
    QFETCH(bool, captionLine);
    QFETCH(QString, expected);
    for (bool dos : {false, true}) {
      QVERIFY(ExportToTXT(desk.path(u"a.txt"_s), &desk.master, nullptr, captions, {}, TDelimiter(delimiter), symbol,
                          decimals, captionLine, dos));
      QCOMPARE(desk.read(u"a.txt"_s), BDSTrans(toWindows1251(expected), dos));
    }
    QCOMPARE(desk.prompt.takeMessages(), QStringList(2, u"Операцията приключи успешно."_s));
  }

  void columnOrder()
  {
    ExportDesk desk;
    desk.master.FieldByName(u"Day")->DisplayLabel = u"Код"_s;
    const auto exported = [&](auto routine, const QString& captions) {
      routine(desk.path(u"a.txt"_s), &desk.master, nullptr, captions, QString(), dtTab, QString(), 0, false, false);
      return fromWindows1251(desk.read(u"a.txt"_s)).section(u"\r\n"_s, 0, 0);
    };
    QCOMPARE(exported(CommonExportToTXT, u"Сума,Код"_s), u"1\t12\t18.01.2026"_s);
    QCOMPARE(exported(ExportToTXT, u"Сума,Код"_s), u"12\t1\t18.01.2026"_s);
    QCOMPARE(exported(ExportToTXT, u"Код,Сума,Код"_s), u"1\t12\t18.01.2026"_s);
    desk.master.FieldByName(u"Name")->DisplayLabel = u"Име, \"кратко\""_s;
    QCOMPARE(exported(ExportToTXT, u"\"Име, \"\"кратко\"\"\",Сума"_s), u"Аня\t12"_s);
  }

  void emptyValuesKeepTheirSeparators()
  {
    ExportDesk desk;
    TClientDataSet dataSet;
    dataSet.CreateDataSet({fieldDef(u"A"_s), fieldDef(u"B"_s), fieldDef(u"C"_s)});
    dataSet.AppendRecord({u""_s, Variant(), u"x"_s});
    QVERIFY(CommonExportToTXT(desk.path(u"a.txt"_s), &dataSet, nullptr, u"A,B,C"_s, {}, dtSemiColon, {}, 2, false, false));
    QCOMPARE(desk.read(u"a.txt"_s), QByteArray(";;x\r\n"));
  }

  // The quick rounding agrees with that on the decimal digits, around the halves above all.
  void floatsAsByTheMask()
  {
    ExportDesk desk;
    TClientDataSet dataSet;
    dataSet.CreateDataSet({fieldDef(u"F"_s, DataType::Float)});
    std::mt19937_64 random(3);
    QList<double> values{0, -0.0, 0.5, 1.5, 2.5, 0.005, 1.005, 75.139, 999.995, -0.004, -0.005, 1e15, 1.5e300, 1e-300, 4503599627370495.5};
    for (int i = 0; i < 3000; ++i) {
      const double magnitude = std::pow(10.0, int(random() % 16));
      values << double(qint64(random() % 2000001) - 1000000) / 1000.0 << double(random() % 1000000007) / magnitude;
    }
    for (double value : values)
      dataSet.AppendRecord({value});
    for (int decimals : {0, 2, 4}) {
      QVERIFY(CommonExportToTXT(desk.path(u"a.txt"_s), &dataSet, nullptr, u"F"_s, {}, dtTab, {}, decimals, false, false));
      const QStringList lines = QString::fromLatin1(desk.read(u"a.txt"_s)).split(u"\r\n"_s);
      for (int i = 0; i < values.size(); ++i)
        QCOMPARE(lines[i], formatNumber(values[i], u"0."_s + QString(decimals, u'0')));
    }
  }

  void calculatedAndDisplayedValues()
  {
    ExportDesk desk;
    TField* twice = desk.master.AddCalculatedField(fieldDef(u"Twice"_s, DataType::Integer), FieldValueKind::Calculated);
    desk.master.OnCalcFields = [twice](TClientDataSet* dataSet) {
      twice->SetValue(2 * dataSet->FieldByName(u"ID")->AsInteger());
    };
    desk.master.FieldByName(u"Day")->OnGetText = [](TField*, QString& text, bool) { text = u'<' + text + u'>'; };
    desk.master.SetIndexFieldNames(u"ID DESC"_s);
    desk.master.First();
    desk.master.Next();
    QVERIFY(CommonExportToTXT(desk.path(u"a.txt"_s), &desk.master, nullptr, u"Twice,Дата"_s, {}, dtTab, {}, 2, false, false));
    QCOMPARE(desk.read(u"a.txt"_s), QByteArray("<31.12.1999>\t6\r\n<>\t4\r\n<18.01.2026>\t2\r\n"));
    QCOMPARE(desk.master.RecNo(), 2);
  }

  void detailLines()
  {
    ExportDesk desk;
    desk.master.AfterScroll = [&](TClientDataSet*) { desk.showLines(); };
    desk.master.RecordCount();
    desk.master.First();
    desk.master.Next();
    QVERIFY(ExportToTXT(desk.path(u"a.txt"_s), &desk.master, &desk.detail, u"Код"_s, u"Ред. име"_s, dtTab, {}, 2, true,
                        false));
    QCOMPARE(fromWindows1251(desk.read(u"a.txt"_s)), u"Код\tРед. име\r\n\r\n1\tр1\r\n1\tр1\r\n3\tр3\r\n"_s);
    QCOMPARE(desk.master.FieldByName(u"ID")->AsInteger(), 2);
    QVERIFY(!desk.master.ControlsDisabled() && !desk.detail.ControlsDisabled());
  }

  void nothingToExport()
  {
    ExportDesk desk;
    TClientDataSet closed;
    desk.master.SetFilter(u"ID = 99"_s);
    desk.master.SetFiltered(true);
    for (TClientDataSet* dataSet : {&desk.master, &closed})
      QVERIFY(!ExportToTXT(desk.path(u"a.txt"_s), dataSet, nullptr, allCaptions, {}, dtTab, {}, 2, true, false));
    QCOMPARE(desk.fileNames(), QStringList());
    QCOMPARE(desk.prompt.messages, QStringList());
  }

  void stoppedByTheUser()
  {
    ExportDesk desk;
    installExportProgress([] { return std::make_unique<StoppedProgress>(); });
    desk.prompt.answers = {PromptButton::Yes, PromptButton::Yes, PromptButton::No};
    QVERIFY(!ExportToTXT(desk.path(u"a.txt"_s), &desk.master, nullptr, allCaptions, {}, dtTab, {}, 2, true, false));
    ExportToXLS(&desk.master, nullptr, allCaptions, {}, desk.path(u"a.xls"_s), u"S"_s);
    QCOMPARE(desk.fileNames(), QStringList());
    QCOMPARE(desk.prompt.takeMessages(), QStringList(2, u"Прекъсване на обработката?"_s));
    QCOMPARE(StoppedProgress::lastCount, 3);
    QVERIFY(ExportToTXT(desk.path(u"a.txt"_s), &desk.master, nullptr, allCaptions, {}, dtTab, {}, 2, true, false));
    installExportProgress({});
  }

  void filesThatCannotBeWritten_data()
  {
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("context");
    QTest::newRow("text") << u"a.txt"_s << u"CommonUtils.ExportToTXT"_s;
    QTest::newRow("xls") << u"a.xls"_s << u"CommonUtils.ExportToXLS"_s;
    QTest::newRow("xlsx") << u"a.xlsx"_s << u"CommonUtils.ExportToXLS"_s;
    QTest::newRow("no folder, text") << u"none/a.txt"_s << u"CommonUtils.ExportToTXT"_s;
    QTest::newRow("no folder, xls") << u"none/a.xls"_s
                                    << u"CommomUtils.ExportToXLS - unable to establish connecion to Excel"_s;
    QTest::newRow("no folder, xlsx") << u"none/a.xlsx"_s
                                     << u"CommomUtils.ExportToXLS - unable to establish connecion to Excel"_s;
    QTest::newRow("a folder, xlsx") << u"folder.xlsx"_s
                                    << u"CommomUtils.ExportToXLS - unable to establish connecion to Excel"_s;
  }
  void filesThatCannotBeWritten()
  {
    ExportDesk desk;
    QFETCH(QString, name);
    QFETCH(QString, context);
    QDir(desk.files.path()).mkdir(u"folder.xlsx"_s);
    QFile old(desk.path(name));
    const bool replaces = old.open(QIODevice::WriteOnly) && old.write("old") == 3;
    old.close();
    for (int i = 0; i < 3000; ++i)
      desk.master.AppendRecord({i, u"н%1"_s.arg(i), i / 3.0, QDate(2026, 1, 1)});
    {
      const SmallDisk disk(20000);
      if (name.endsWith(u".txt"))
        QVERIFY(!ExportToTXT(desk.path(name), &desk.master, nullptr, allCaptions, {}, dtFixedLen, {}, 2, true, false));
      else
        ExportToXLS(&desk.master, nullptr, allCaptions, {}, desk.path(name), u"S"_s);
    }
    QCOMPARE(desk.prompt.takeMessages(), QStringList{u"Операцията приключи с грешки."_s});
    QVERIFY(desk.logged(u"[Процедура]: "_s + context));
    QCOMPARE(desk.fileNames(), replaces ? QStringList{name} : QStringList());
    QCOMPARE(desk.read(name), replaces ? QByteArray("old") : QByteArray());
  }

  // Whatever of its end does not fit, no file stays that looks complete.
  void workbookWithoutItsEnd()
  {
    ExportDesk desk;
    const QString path = desk.path(u"a.xlsx"_s);
    const auto exportTo = [&] { CommonExportToXLS(&desk.master, nullptr, allCaptions, {}, path, u"S"_s); };
    exportTo();
    const qint64 size = QFileInfo(path).size();
    QVERIFY(size > 1000 && QFile::remove(path));
    for (qint64 missing = 1; missing < size; missing += 29) {
      const SmallDisk disk(rlim_t(size - missing));
      exportTo();
      QCOMPARE(desk.fileNames(), QStringList());
    }
  }

  void dosCodePage()
  {
    for (int code = 0; code < 256; ++code) {
      const QByteArray byte(1, char(code));
      const int printer[] = {12, 15, 18, 27};
      const int expected = code < 128                ? code
                           : code >= 192             ? code - 64
                           : code >= 180 && code < 184 ? printer[code - 180]
                                                     : code + 64;
      QCOMPARE(uchar(BDSTrans(byte, true)[0]), uchar(expected));
      QCOMPARE(BDSTrans(byte, false), byte);
    }
  }

  void padding()
  {
    QCOMPARE(FillWithChar(u"аб"_s, u'.', 4, false), u"аб.."_s);
    QCOMPARE(FillWithChar(u"аб"_s, u'.', 4, true), u"..аб"_s);
    QCOMPARE(FillWithChar(u"абвгд"_s, u'.', 4, true), u"абвгд"_s);
  }
};

const RegisterTest<ExportTextTest> registered;

}  // namespace

#include "export_text_test.moc"
