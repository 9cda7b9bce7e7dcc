#include "forms/messages.h"
#include "forms/record_saving.h"
#include "records.h"
#include "scripted_ports.h"
#include "several_tests.h"

using namespace kalvor;
using kalvor::testing::fieldDef;

class RecordSavingTest : public QObject {
  Q_OBJECT

  QList<SaveDataSet> dataSets() { return {{&master_, "pMaster", {"DocumentNo"}}, {&detail_, "pDetail", {}}}; }

  static QString requestText(const Variant& requests)
  {
    QStringList rows;
    for (const Variant& row : requests.toList()) {
      QStringList items;
      for (const Variant& item : row.toList())
        items.append(variantText(item));
      rows.append(items.join(','));
    }
    return rows.join(' ');
  }

 private slots:
  void init()
  {
    for (TClientDataSet* dataSet : {&master_, &detail_})
      dataSet->Close();
    master_.CreateDataSet({fieldDef("ID"), fieldDef("DocumentNo"), fieldDef("AbsoluteNo"), fieldDef("Series_Id"),
                           fieldDef("Comp_Id"), fieldDef("C_Businessgroup_Id"), fieldDef("C_User_Id"),
                           fieldDef("C_Datetime", DataType::DateTime)});
    master_.FieldByName(u"ID")->Origin = "D_Sale.Id";
    master_.AppendRecord({"M1", "100", "A1", "S1", "7", "G0", "стар", Variant()});
    detail_.CreateDataSet({fieldDef("Id"), fieldDef("Qty", DataType::Float)});
    detail_.AppendRecord({"L1", 1});
    detail_.AppendRecord({"L2", 2});
    master_.MergeChangeLog();
    detail_.MergeChangeLog();
    session_.BGroupId = "G1";
    session_.UserId = "иван";
  }

  void masterAloneIsNotStamped()
  {
    master_.Edit();
    master_.FieldByName(u"DocumentNo")->SetAsString("101");
    QCOMPARE(postAndStamp(dataSets(), session_), Variant("M1"));
    QVERIFY(!master_.IsEditing());
    QCOMPARE(master_.FieldByName(u"C_User_Id")->AsString(), QString("стар"));
    const VariantArray packet = buildSavePacket(dataSets());
    QCOMPARE(packet.size(), 1);
    QCOMPARE(packet.at(0).toList().at(0).toString(), QString("pMaster"));
    const auto delta = packet.at(0).toList().at(1).value<DeltaPtr>();
    QVERIFY(delta);
    QCOMPARE(delta->status, (std::vector<UpdateStatus>{UpdateStatus::Unmodified, UpdateStatus::Modified}));
  }

  void detailStampsTheMaster()
  {
    detail_.Edit();
    detail_.FieldByName(u"Qty")->SetAsFloat(5);
    postAndStamp(dataSets(), session_);
    QVERIFY(!detail_.IsEditing());
    QCOMPARE(master_.FieldByName(u"C_Businessgroup_Id")->AsString(), QString("G1"));
    QCOMPARE(master_.FieldByName(u"C_User_Id")->AsString(), QString("иван"));
    QCOMPARE(master_.FieldByName(u"C_Datetime")->AsDateTime(), clock_.now());
    const VariantArray packet = buildSavePacket(dataSets());
    QCOMPARE(packet.size(), 2);
    QCOMPARE(packet.at(1).toList().at(0).toString(), QString("pDetail"));
    discardChangeLogs(dataSets());
    QCOMPARE(master_.ChangeCount() + detail_.ChangeCount(), 0);
    QVERIFY(buildSavePacket(dataSets()).isEmpty());
  }

  void nothingChangedSendsNothing()
  {
    QCOMPARE(postAndStamp(dataSets(), session_), Variant("M1"));
    QVERIFY(buildSavePacket(dataSets()).isEmpty());
    QVERIFY(GetOwnerData(dataSets(), [] { return QString("never"); }).isNull());
    QVERIFY(postAndStamp({}, session_).isNull());
  }

  void numberingRequests()
  {
    int asked = 0;
    const auto series = [&] {
      ++asked;
      return QString("ABS");
    };
    master_.Append();
    master_.FieldByName(u"ID")->SetAsString("M2");
    master_.FieldByName(u"DocumentNo")->SetAsString("  ");
    master_.FieldByName(u"Series_Id")->SetAsString("S2");
    master_.FieldByName(u"Comp_Id")->SetAsString("7");
    master_.Post();
    master_.First();
    master_.Edit();
    master_.FieldByName(u"DocumentNo")->Clear();
    master_.Post();
    const QString text = requestText(GetOwnerData(dataSets(), series));
    const QStringList rows = text.split(' ');
    QCOMPARE(rows.size(), 3);
    QVERIFY(rows.contains("D_Sale,M2,AbsoluteNo,ABS,7"));
    QVERIFY(rows.contains("D_Sale,M2,DocumentNo,S2,7"));
    QVERIFY(rows.contains("D_Sale,M1,DocumentNo,S1,7"));
    QCOMPARE(asked, 1);
  }

  void missingSeriesStopTheSave_data()
  {
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("absolute");
    QTest::addColumn<QString>("series");
    QTest::addColumn<QString>("message");
    QTest::newRow("no absolute series") << "M2" << "" << "S2"
                                        << _err_UnablaibleToGetAbsNoSerie + "\n\r" + _err_OperationAborted;
    QTest::newRow("no series") << "M2" << "ABS" << "" << _err_GetSerieData;
    QTest::newRow("no identifier") << "" << "ABS" << "S2" << _err_GetSerieData;
  }
  void missingSeriesStopTheSave()
  {
    QFETCH(QString, id);
    QFETCH(QString, absolute);
    QFETCH(QString, series);
    QFETCH(QString, message);
    master_.AppendRecord({id, Variant(), Variant(), series});
    try {
      GetOwnerData(dataSets(), [&] { return absolute; });
      QFAIL("nothing was raised");
    } catch (const DataError& error) {
      QCOMPARE(error.message(), message);
    }
  }

  void datasetsReturnToTheirRecords()
  {
    detail_.First();
    detail_.Next();
    const QList<RecordPosition> positions = rememberPositions(dataSets());
    QCOMPARE(positions.size(), 2);
    detail_.First();
    restorePositions(positions);
    QCOMPARE(detail_.FieldByName(u"Id")->AsString(), QString("L2"));
  }

 private:
  testing::FixedClock clock_{QDateTime(QDate(2024, 3, 9), QTime(14, 5, 6))};
  TClientDataSet master_, detail_;
  TLocalData session_;
};

static const testing::RegisterTest<RecordSavingTest> registerRecordSavingTest;
#include "record_saving_test.moc"
