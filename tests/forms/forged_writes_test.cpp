// Changes of the administrator's forms that an ordinary user forges: refused, whatever source of data they come through.
#include "../several_tests.h"
#include "../server/wire_caller.h"
#include "form_session.h"
#include "sample_forms.h"

using namespace kalvor;
using namespace kalvor::testing;

namespace {

struct AdministrationForm {
  int form, dataSet;
  const char* table;
  const char* field;
  const char* value;
};
const AdministrationForm administrationForms[] = {
    {201, 0, "N_Users", "Active", "0"},
    {201, 1, "S_UserGroups", "BusinessGroup_Id", "5"},
    {202, 0, "S_Rights", "EditRight", "1"},
    {205, 0, "S_Forms", "Caption", "Чужда форма"},
    {206, 0, "S_FieldList", "Caption", "Чуждо поле"},
    {210, 0, "N_Series", "Name", "Чужда серия"},
    {212, 0, "N_Employee", "Position", "Управител"},
};

// The form whose data source the forger has in hand; 0: the administration form's own.
constexpr int sources[] = {0, 103, 155, 216, 487, 780, 140, 121};

QString contentOf(const char* table)
{
  const auto connection = demoServer()->core().openReader();
  const RecordSet rows = connection->query(QStringLiteral("SELECT * FROM %1").arg(QLatin1String(table)));
  QString text;
  for (qsizetype row = 0; row < rows.rows; ++row) {
    for (int field = 0; field < rows.fields.size(); ++field) {
      text += variantText(rows.value(row, field)) + u'\t';
    }
  }
  return text;
}

struct ForgedChange {
  const char* name;
  void (*make)(TClientDataSet& data, const AdministrationForm& form);
};
const ForgedChange forgedChanges[] = {
    {"changed",
     [](TClientDataSet& data, const AdministrationForm& form) {
       data.Edit();
       TField* field = data.FieldByName(QString::fromLatin1(form.field));
       field->ReadOnly = false;
       field->SetAsString(QString::fromUtf8(form.value));
       data.Post();
     }},
    {"added",
     [](TClientDataSet& data, const AdministrationForm&) {
       VariantArray values;
       for (TField* field : data.Fields()) {
         values.append(field->FieldName().compare(u"Id", Qt::CaseInsensitive) == 0 ? Variant() : field->Value());
         field->ReadOnly = field->Required = false;
       }
       data.AppendRecord(values);
     }},
    {"deleted", [](TClientDataSet& data, const AdministrationForm&) { data.Delete(); }},
};

}  // namespace

class ForgedWritesTest : public QObject {
  Q_OBJECT

 private slots:
  void administrationIsRefused_data()
  {
    QTest::addColumn<int>("form");
    QTest::addColumn<int>("source");
    for (int i = 0; i < int(std::size(administrationForms)); ++i) {
      for (const int source : sources) {
        QTest::addRow("%s through %d", administrationForms[i].table, source ? source : administrationForms[i].form)
            << i << source;
      }
    }
  }
  void administrationIsRefused()
  {
    QFETCH(const int, form);
    QFETCH(const int, source);
    const AdministrationForm& target = administrationForms[form];
    Caller administrator(demoServer()->port());
    QCOMPARE(administrator.logIn(QStringLiteral("SUPERVSR"), QString(), QStringLiteral("1")), 0);
    const QString before = contentOf(target.table);
    for (const char* user : {"CLERK", "CASHIER"}) {
      for (const ForgedChange& change : forgedChanges) {
        TClientDataSet data, mine;
        administrator.open(data, target.form, target.dataSet, {});
        TClientDataSet forged;
        forged.SetRecords(data.Records());
        change.make(forged, target);
        QVERIFY(forged.GetDelta());
        Caller caller(demoServer()->port());
        QCOMPARE(caller.logIn(QString::fromLatin1(user), QStringLiteral("1"), QStringLiteral("1")), 0);
        mine.ProviderName = caller.newProvider();
        Caller::refusal([&] {
          VariantArray request{source ? source : target.form, source ? 0 : target.dataSet, mine.ProviderName, Variant(),
                               QString(), Variant(), Variant(), 0};
          caller.broker.Call(QStringLiteral("RequestData"), request);
        });
        forged.ProviderName = mine.ProviderName;
        // A new contractor is what the clerk may add: such a record lands there, not where it was forged for.
        const bool mayAdd = source == 140 && qstrcmp(user, "CLERK") == 0 && qstrcmp(change.name, "added") == 0;
        QVERIFY2(caller.save(forged) != 0 || mayAdd, change.name);
        QVERIFY2(contentOf(target.table) == before, change.name);
        // The administrator's own source is not his either.
        forged.ProviderName = data.ProviderName;
        QVERIFY2(caller.save(forged) != 0, change.name);
        QVERIFY2(contentOf(target.table) == before, change.name);
      }
    }
  }

  // The same changes are good ones when the administrator makes them.
  void theAdministratorMakesThem_data()
  {
    QTest::addColumn<int>("form");
    for (int i = 0; i < int(std::size(administrationForms)); ++i) {
      QTest::addRow("%s", administrationForms[i].table) << i;
    }
  }
  void theAdministratorMakesThem()
  {
    QFETCH(const int, form);
    const AdministrationForm& target = administrationForms[form];
    Caller administrator(demoServer()->port());
    QCOMPARE(administrator.logIn(QStringLiteral("SUPERVSR"), QString(), QStringLiteral("1")), 0);
    TClientDataSet data;
    administrator.open(data, target.form, target.dataSet, {});
    const QString before = contentOf(target.table);
    forgedChanges[0].make(data, target);
    QCOMPARE(administrator.save(data), 0);
    QVERIFY(contentOf(target.table) != before);
  }
};

static const RegisterTest<ForgedWritesTest> registerForgedWritesTest;
#include "forged_writes_test.moc"
