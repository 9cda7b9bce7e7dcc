#include <QTest>
#include <QDir>

#include "../scratch_documents.h"
#include "../scripted_ports.h"
#include "../session/scripted_session.h"
#include "registry/form_descriptions.h"
#include "registry/windows/form_registry.h"
#include "registry/windows/module_libraries.h"
#include "session/error_log.h"

using namespace kalvor;
using namespace kalvor::testing;

namespace {

class TfDialogForm : public QWidget, public IBaseCommonIntf {
 public:
  using QWidget::QWidget;
  void SetFormRights(int formId, bool defaultRight) override
  {
    calls << QStringLiteral("SetFormRights %1 %2").arg(formId).arg(defaultRight);
  }
  bool CheckFormID(const QString&) const override { return false; }
  int DoShowForm(int formId, ShowOption) override
  {
    calls << QStringLiteral("DoShowForm %1").arg(formId);
    return 7;
  }
  int DoShowForm(int formId, ShowOption, const TDialogParams& params) override
  {
    calls << QStringLiteral("DoShowForm %1 %2").arg(formId).arg(params.HintCaption);
    return 8;
  }
  static inline QStringList calls;
};

QWidget* otherForm(QWidget*)
{
  return nullptr;
}

}  // namespace

class RegistryTest : public QObject {
  Q_OBJECT

 private slots:
  void cleanup() { UnRegisterFormClass(); }

  void aNameIsRegisteredOnceAndFoundExactly()
  {
    RegisterFormClass({QStringLiteral("TfOne"), otherForm});
    RegisterFormClass({QStringLiteral("TfOne"), {}});
    RegisterFormClass({QStringLiteral("TfTwo"), otherForm});
    QCOMPARE(registeredFormClasses(), QStringList({QStringLiteral("TfOne"), QStringLiteral("TfTwo")}));
    QVERIFY(GetRegisterFormClass(QStringLiteral("TfOne"))->create);
    QVERIFY(!GetRegisterFormClass(QStringLiteral("tfone")));
    UnRegisterFormClass();
    QVERIFY(registeredFormClasses().isEmpty());
  }

  void aDescriptionIsAskedOnceAndReadByColumn()
  {
    ScriptedPrompt prompt;
    ScriptedSession session;
    session.dm->FormList = std::make_unique<RegisteredForms>();
    const VariantArray row{QStringLiteral("Артикули"), QStringLiteral("TfBrItem"), QStringLiteral("Code;Name"),
                           QStringLiteral("unused"),   42,                          QStringLiteral("текст"),
                           QStringLiteral("N_Item"),   0,                           QStringLiteral("Code,=,1,"),
                           QStringLiteral("Name ASC"), QStringLiteral("<ColorOptions/>")};
    session.server->answer(QStringLiteral("GetFormsDescription"), 1, {{2, VariantArray{row}}});
    QVERIFY(GetFormCaption(QStringLiteral("150")).isEmpty());
    const TFormData* data = GetFromDataObject(QStringLiteral("150"), 0);
    QVERIFY(data);
    QCOMPARE(data->Caption, QStringLiteral("Артикули"));
    QCOMPARE(data->ClassName, QStringLiteral("TfBrItem"));
    QCOMPARE(data->CaptionFields, QStringLiteral("Code;Name"));
    QCOMPARE(data->IntegerValue, 42);
    QCOMPARE(data->TextValue, QStringLiteral("текст"));
    QCOMPARE(data->BaseTable, QStringLiteral("N_Item"));
    QCOMPARE(data->FormFilter, QStringLiteral("Code,=,1,"));
    QCOMPARE(data->OrderBy, QStringLiteral("Name ASC"));
    QCOMPARE(data->LineColors, QStringLiteral("<ColorOptions/>"));
    QCOMPARE(GetFromDataObject(QStringLiteral("150"), 0), data);
    QCOMPARE(GetFormCaption(QStringLiteral("150")), QStringLiteral("Артикули"));
    QCOMPARE(session.server->sent.value(QStringLiteral("GetFormsDescription")).size(), 1);

    // Another dataset of the form has a description of its own.
    VariantArray detail = row;
    detail[6] = QStringLiteral("N_ItemLine");
    detail[7] = 1;
    session.server->answer(QStringLiteral("GetFormsDescription"), 1, {{2, VariantArray{detail}}});
    QCOMPARE(GetFromDataObject(QStringLiteral("150"), 1)->BaseTable, QStringLiteral("N_ItemLine"));
    QCOMPARE(GetFromDataObject(QStringLiteral("150"), 0), data);
    QVERIFY(prompt.messages.isEmpty());
  }

  void anUnknownFormIsToldAndOpensNothing()
  {
    ScriptedPrompt prompt;
    ScriptedSession session;
    session.server->answer(QStringLiteral("GetFormsDescription"), 0);
    QCOMPARE(RequestForm(999), 0);
    QCOMPARE(prompt.takeMessages(), QStringList(QStringLiteral("999 Формата не е регистрирана в базата данни")));

    // A known form whose module is not here opens nothing and says nothing.
    const VariantArray row{QStringLiteral("Форма"), QStringLiteral("TfNotHere")};
    session.server->answer(QStringLiteral("GetFormsDescription"), 1, {{2, VariantArray{row}}});
    QCOMPARE(RequestForm(998), 0);
    QVERIFY(prompt.messages.isEmpty());
  }

  void aDialogGetsRightsAndItsParameters()
  {
    ScriptedPrompt prompt;
    ScriptedSession session;
    RegisterFormClass({QStringLiteral("TfDialogForm"), [](QWidget* parent) { return new TfDialogForm(parent); }});
    const VariantArray row{QStringLiteral("Диалог"), QStringLiteral("TfDialogForm")};
    session.server->answer(QStringLiteral("GetFormsDescription"), 1, {{2, VariantArray{row}}});
    TSelectionList selection;
    TDialogParams params;
    params.HintCaption = QStringLiteral("Съвет");
    QCOMPARE(RequestForm(500, so_Normal, {}, {}, {}, selection, {}, nullptr, nullptr, &params), 8);
    QCOMPARE(RequestForm(500), 7);
    QCOMPARE(TfDialogForm::calls,
             QStringList({QStringLiteral("SetFormRights 500 0"), QStringLiteral("DoShowForm 500 Съвет"),
                          QStringLiteral("SetFormRights 500 0"), QStringLiteral("DoShowForm 500")}));
  }

  void modulesThatFitAreLoadedOnceAndOthersAreSkipped()
  {
    const ScratchDocuments documents;
    InitLog();
    const QString folder = QStringLiteral(MODULES_FOLDER);
    QCOMPARE(QDir(folder).entryList({QStringLiteral("*.bpl")}).size(), 3);
    ModuleLibraries modules;
    modules.load(folder, QStringLiteral("other;FITTING"));
    QVERIFY(modules.loaded().isEmpty());

    modules.load(folder, QStringLiteral("my_fitting_one;foreign;silent"));
    QCOMPARE(modules.loaded(), QStringList(folder + QStringLiteral("/fitting.bpl")));
    QCOMPARE(registeredFormClasses(), QStringList({QStringLiteral("TfStatic"), QStringLiteral("TfEntry")}));
    QStringList log;
    LoadErrorLog(log);
    const QString logged = log.join(u'\n');
    QVERIFY2(logged.contains(QLatin1String("foreign.bpl")), qPrintable(logged));
    QVERIFY2(logged.contains(QLatin1String("silent.bpl")), qPrintable(logged));

    ModuleLibraries again;
    again.load(folder, QStringLiteral("fitting"));
    QVERIFY(again.loaded().isEmpty());

    modules.unload();
    QVERIFY(registeredFormClasses().isEmpty());
    CloseLog();
  }
};

QTEST_MAIN(RegistryTest)
#include "registry_test.moc"
