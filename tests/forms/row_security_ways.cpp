#include "row_security_ways.h"

#include <QAbstractButton>
#include <QTimer>

#include "filters/windows/field_filter_dialog.h"
#include "filters/windows/search_dialog.h"
#include "filters/windows/sort_dialog.h"
#include "filters/windows/table_filter.h"
#include "registry/lookup_matches.h"
#include "registry/selector.h"
#include "session/server_calls.h"
#include "widgets/db_grid_ex.h"
#include "widgets/string_grid.h"

namespace kalvor::testing {

namespace {

constexpr int lineList = 130;
constexpr int contragentList = 140;
SecuredIds ids;

server::Connection& database()
{
  static const auto connection = demoServer()->core().openWriter();
  return *connection;
}

QString databaseText(const QString& sql)
{
  return database().value(sql, {}).toString();
}

FilterRow row(const QString& field, const char* op, const Variant& value, const char* conjunction = "",
              const char* brackets = "")
{
  return {field, QString::fromLatin1(op), value, QString::fromLatin1(conjunction), QString::fromLatin1(brackets)};
}

QStringList textsOf(const Variant& value)
{
  QStringList texts;
  if (value.typeId() == QMetaType::QVariantList) {
    for (const Variant& item : value.toList()) {
      texts += textsOf(item);
    }
  } else {
    texts.append(variantText(value));
  }
  return texts;
}

QStringList textsOf(TClientDataSet& dataSet)
{
  QStringList texts;
  for (const TField* field : dataSet.Fields()) {
    for (qsizetype record = 0; record < dataSet.RecordCount(); ++record) {
      texts.append(variantText(field->ValueAt(record)));
    }
  }
  return texts;
}

// The windows themselves, as the clerk works in them.
struct Windows {
  Desk& desk;

  QStringList list(const FilterArray& callerFilter = {}) { return recordsOf(openList(callerFilter)); }
  TfBrSaleInvoice* openList(const FilterArray& callerFilter = {})
  {
    return desk.open<TfBrSaleInvoice>(securedList, so_Normal, callerFilter);
  }
  TfEdSaleInvoice* openCard(const FilterArray& filter)
  {
    return desk.open<TfEdSaleInvoice>(securedCard, so_Normal, filter);
  }
  TfEdSaleInvoice* openOwnCard() { return openCard({row("ID", "=", ids.own)}); }

  QStringList tableFilter(const QList<QStringList>& rows)
  {
    auto* form = openList();
    form->TableFilter();
    auto* editor = form->findChild<TfTableFilter*>();
    auto& cells = editor->StringGrid()->table();
    cells.SetRowCount(int(rows.size()) + 2);
    for (int line = 0; line < rows.size(); ++line) {
      for (int column = 0; column < rows[line].size(); ++column) {
        editor->StringGrid()->SetCells(column, line + 1, rows[line][column]);
      }
    }
    editor->btnOkClick();
    return recordsOf(form);
  }

  QStringList fieldFilter(const QString& field, const QString& criterion)
  {
    auto* form = openList();
    form->dbgMaster()->setFocus();
    form->dbgMaster()->selectField(field);
    QTimer::singleShot(0, form, [&criterion] {
      auto* dialog = qobject_cast<TfFilterFields*>(QApplication::activeModalWidget());
      dialog->setValue(criterion);
      dialog->btnOKClick();
    });
    form->FieldFilter();
    return recordsOf(form);
  }

  QStringList sorted(const QString& order)
  {
    auto* form = openList();
    QTimer::singleShot(0, form, [&order] {
      auto* dialog = qobject_cast<TfSort*>(QApplication::activeModalWidget());
      dialog->FillGridFromOrder(order);
      dialog->findChild<QAbstractButton*>("btnOk")->click();
    });
    form->Sort();
    return recordsOf(form);
  }

  QStringList searched(const QString& text)
  {
    auto* form = openList();
    form->dbgMaster()->setFocus();
    form->dbgMaster()->selectField("DocumentNo");
    for (const QChar character : text) {
      QKeyEvent press(QEvent::KeyPress, 0, Qt::NoModifier, QString(character));
      QApplication::sendEvent(QApplication::focusWidget(), &press);
    }
    form->Find();
    auto* search = form->findChild<TfSearch*>();
    search->setText(text);
    const bool found = search->acSearchExecute(0);
    return {found ? form->cdsMaster()->FieldByName(u"DocumentNo")->AsString() : QString()};
  }

  QStringList totals()
  {
    auto* form = openList();
    form->LastRecord();
    form->dbgMaster()->setFocus();
    form->dbgMaster()->selectField("TotalVAT");
    form->SelectAll();
    const qsizetype marked = form->dbgMaster()->markedRecords().size();
    const QString seen = databaseText(QStringLiteral(
        "SELECT COUNT(*) FROM D_SaleInvoiceHeader WHERE Comp_Id = '1' AND C_Businessgroup_Id = '1'"));
    return {QString::number(marked) == seen ? seenRow : hiddenDocument + QString::number(marked)};
  }

  // The lines of a master that is not the form's.
  QStringList foreignLines(const FilterArray& filter)
  {
    auto* card = openOwnCard();
    card->RequestDataSet(1, filter, QString());
    card->cdsDetail()->Close();
    card->cdsDetail()->Open();
    return textsOf(*card->cdsDetail());
  }

  // The lookup of the document's contractor.
  TSelector* contragentSelector()
  {
    auto* card = desk.open<TfEdSaleInvoice>(securedCard, ShowOption(so_NewRecord), {row("1", "=", 2)});
    return card->selectorOf(card->cdsMaster()->FieldByName(u"N_Contragent_Code"));
  }
  QStringList lookupWindow(const QString& filter)
  {
    TSelector* selector = contragentSelector();
    selector->Execute(nullptr, filter);
    return recordsOf(desk.last<TfBrContragent>());
  }
  QStringList typedExactly(const QString& text)
  {
    TSelector* selector = contragentSelector();
    selector->FillExactly(selector->Field, text);
    return textsOf(*selector->DataSet);
  }
  QStringList typedAhead(const QString& text, const FilterArray& filter)
  {
    LookupQuestion question;
    question.formId = contragentList;
    question.text = text;
    question.shownField = "Code";
    question.filter = filter;
    question.typedRows = {0};
    QStringList texts;
    for (const VariantArray& found : LookupFinder(*DM->ConBroker).find(question).rows) {
      texts += textsOf(found);
    }
    return texts;
  }
};

// --- Calls by hand -------------------------------------------------------------------------------------------------

QStringList asked(int form, int dataSet, const FilterArray& filter, const QString& order = {},
                  const ParameterArray& parameters = {})
{
  const QString provider = createDynamicProvider(*DM->ConBroker);
  requestData(*DM->ConBroker, form, dataSet, provider, filter, order, parameters);
  TClientDataSet rows;
  rows.SetRemoteServer(DM->ConBroker);
  rows.ProviderName = provider;
  rows.PacketRecords = 5;
  rows.Open();
  rows.Last();
  while (!rows.AllFetched()) {
    rows.Last();
  }
  return textsOf(rows);
}

QStringList value(int mode, const QString& source, const QString& columns, const FilterArray& filter)
{
  Variant found;
  requestValue(*DM->ConBroker, mode, source, columns, filter, found, RowsWanted::All);
  return textsOf(found);
}

// A packet that begins behind a row which the user never saw.
QStringList continuedBehind(const VariantArray& orderValues)
{
  const QString provider = createDynamicProvider(*DM->ConBroker);
  requestData(*DM->ConBroker, securedList, 0, provider, {}, "ID ASC", {});
  const DataPacketPtr first = DM->ConBroker->openProvider(provider, 1);
  const Variant types = first->continuation.toList().value(1);
  const DataPacketPtr packet =
      DM->ConBroker->fetchRecords(provider, VariantArray{Variant(orderValues), types}, 1000);
  QStringList texts;
  for (qsizetype record = 0; record < packet->records.rows; ++record) {
    for (int field = 0; field < packet->records.fields.size(); ++field) {
      texts.append(variantText(packet->records.value(record, field)));
    }
  }
  return texts;
}


const QString group = "D_SaleInvoiceHeader.C_Businessgroup_Id";
const QString id = "ID";
const QString one = "1";
const QString contragentCode = "N_Contragent.Code";

}  // namespace

QStringList recordsOf(TfBase* form)
{
  if (!form || !form->GetCdsMaster()->Active()) {
    return {};
  }
  form->LastRecord();
  return textsOf(*form->GetCdsMaster());
}

const SecuredIds& securedIds()
{
  return ids;
}

const char* hideRows()
{
  static const char* const statements[] = {
      "UPDATE D_SaleInvoiceHeader SET DocumentNo = 'СКРИТ' || rowid, Note = 'СКРИТ' "
      "WHERE Comp_Id = '1' AND C_Businessgroup_Id <> '1'",
      "UPDATE D_SaleInvoiceLine SET Description = 'СКРИТ ред' WHERE Master_Id IN "
      "(SELECT Id FROM D_SaleInvoiceHeader WHERE Note = 'СКРИТ')",
      "UPDATE D_SaleInvoiceHeader SET DocumentNo = 'ЯВЕН' WHERE Id = (SELECT MIN(Id) FROM D_SaleInvoiceHeader "
      "WHERE Comp_Id = '1' AND C_Businessgroup_Id = '1')",
      "UPDATE D_SaleInvoiceLine SET Description = 'ЯВЕН' WHERE Master_Id IN "
      "(SELECT Id FROM D_SaleInvoiceHeader WHERE DocumentNo = 'ЯВЕН')",
      "UPDATE N_Contragent SET City = CASE WHEN rowid % 2 = 0 THEN 'Тайна' ELSE 'Явна' END WHERE Comp_Id = '1'",
      "UPDATE N_Contragent SET Code = 'ТАЕН' || rowid, Name = 'ТАЕН ' || rowid, Inactive = 0 WHERE City = 'Тайна'",
      "UPDATE N_Contragent SET Code = 'ЯВЕН', Inactive = 0 "
      "WHERE Id = (SELECT MIN(Id) FROM N_Contragent WHERE City = 'Явна')",
      "UPDATE S_Rights SET SecurityFilter = 'N_Contragent.City,=,Явна,' "
      "WHERE User_Id = 'CLERK' AND Form_Id IN (140, 141)"};
  for (const char* statement : statements) {
    if (database().execute(QString::fromUtf8(statement), {}) < 1) {
      return statement;
    }
  }
  ids = {databaseText("SELECT MIN(Id) FROM D_SaleInvoiceHeader WHERE Note = 'СКРИТ'"),
         databaseText("SELECT Id FROM D_SaleInvoiceHeader WHERE DocumentNo = 'ЯВЕН'"),
         databaseText("SELECT MIN(Id) FROM N_Contragent WHERE City = 'Тайна'")};
  return nullptr;
}

const QList<Way>& windowWays()
{
  static const QList<Way> ways{
      {"list", hiddenDocument, Shows::Something, [](Desk& desk) { return Windows{desk}.list(); }},
      {"list opened on the hidden rows' own value", hiddenDocument, Shows::Nothing,
       [](Desk& desk) { return Windows{desk}.list({row(group, "=", 2)}); }},
      {"list opened on the hidden row or all", hiddenDocument, Shows::Something,
       [](Desk& desk) { return Windows{desk}.list({row(id, "=", ids.hidden, "OR"), row(one, "=", 1)}); }},
      {"list opened with brackets of its own", hiddenDocument, Shows::Something,
       [](Desk& desk) { return Windows{desk}.list({row(one, "=", 2, "OR", "("), row(one, "=", 1, "", ")")}); }},
      {"list opened with brackets that close the filter", hiddenDocument, Shows::Nothing,
       [](Desk& desk) { return Windows{desk}.list({row(one, "=", 1, "OR", ")"), row(one, "=", 1, "", "(")}); }},
      {"field filter", hiddenDocument, Shows::Nothing,
       [](Desk& desk) { return Windows{desk}.fieldFilter("DocumentNo", hiddenDocument); }},
      {"field filter, every value", hiddenDocument, Shows::Something,
       [](Desk& desk) { return Windows{desk}.fieldFilter("DocumentNo", "*|<>0"); }},
      {"table filter on the hidden rows' own values", hiddenDocument, Shows::Something,
       [](Desk& desk) {
         return Windows{desk}.tableFilter({{"Код на обект", "=", "1", "ИЛИ"},
                                           {"Код на обект", "=", "2", "ИЛИ"},
                                           {"Номер", "Съдържа", "*СКРИТ*", ""}});
       }},
      {"table filter, several values", hiddenDocument, Shows::Something,
       [](Desk& desk) { return Windows{desk}.tableFilter({{"Код на обект", "=", "1|2|3", ""}}); }},
      {"table filter, empty or not", hiddenDocument, Shows::Something,
       [](Desk& desk) {
         return Windows{desk}.tableFilter({{"Забележка", "=", "", "ИЛИ"}, {"Забележка", "<>", "", ""}});
       }},
      {"filter removed", hiddenDocument, Shows::Something,
       [](Desk& desk) {
         auto* form = Windows{desk}.openList();
         form->SetPblFilter({row(group, "=", 2)}, {}, false);
         form->RemoveFilter();
         return recordsOf(form);
       }},
      {"sorted by the hidden rows' value", hiddenDocument, Shows::Something,
       [](Desk& desk) { return Windows{desk}.sorted("C_Businessgroup_Id DESC, DocumentNo DESC"); }},
      {"search", hiddenDocument, Shows::Nothing, [](Desk& desk) { return Windows{desk}.searched("КРИТ"); }},
      {"search of what may be seen", hiddenDocument, Shows::Something,
       [](Desk& desk) {
         return Windows{desk}.searched(seenRow);
       }},
      {"count of the marked rows", hiddenDocument, Shows::Something,
       [](Desk& desk) {
         return Windows{desk}.totals();
       }},
      {"refresh on a hidden row's condition", hiddenDocument, Shows::Nothing,
       [](Desk& desk) {
         auto* form = Windows{desk}.openList({row(id, "=", ids.hidden)});
         form->Refresh();
         return recordsOf(form);
       }},
      {"card of a hidden row", hiddenDocument, Shows::Nothing,
       [](Desk& desk) { return recordsOf(Windows{desk}.openCard({row(id, "=", ids.hidden)})); }},
      {"card of a hidden row or one's own", hiddenDocument, Shows::Something,
       [](Desk& desk) {
         return recordsOf(Windows{desk}.openCard({row(id, "=", ids.hidden, "OR"), row(id, "=", ids.own)}));
       }},
      {"lines of a hidden document", hiddenDocument, Shows::Nothing,
       [](Desk& desk) { return Windows{desk}.foreignLines({row("D_SaleInvoiceLine.Master_ID", "=", ids.hidden)}); }},
      {"lines of every document", hiddenDocument, Shows::Something,
       [](Desk& desk) { return Windows{desk}.foreignLines({row(one, "=", 1)}); }},
      {"lookup window", hiddenContragent, Shows::Something,
       [](Desk& desk) { return Windows{desk}.lookupWindow("N_Contragent.Code,LIKE,%,"); }},
      {"lookup window on the hidden rows", hiddenContragent, Shows::Nothing,
       [](Desk& desk) { return Windows{desk}.lookupWindow("N_Contragent.Code,LIKE,ТАЕН,"); }},
      {"lookup window, hidden or all", hiddenContragent, Shows::Something,
       [](Desk& desk) { return Windows{desk}.lookupWindow("N_Contragent.City,=,Тайна,|1,=,1,"); }},
      {"typed code of a hidden row", hiddenContragent, Shows::Nothing,
       [](Desk& desk) {
         return Windows{desk}.typedExactly(
             databaseText(QString("SELECT Code FROM N_Contragent WHERE Id = '%1'").arg(ids.contragent)));
       }},
      {"typed code of what may be seen", hiddenContragent, Shows::Something,
       [](Desk& desk) { return Windows{desk}.typedExactly(seenRow); }},
      {"typing ahead", hiddenContragent, Shows::Nothing,
       [](Desk& desk) { return Windows{desk}.typedAhead("ТАЕ", {row(contragentCode, "LIKE", "ТАЕ")}); }},
      {"typing ahead, hidden or all", hiddenContragent, Shows::Something,
       [](Desk& desk) {
         return Windows{desk}.typedAhead("ЯВ", {row(contragentCode, "LIKE", "ЯВ", "OR"),
                                                    row("N_Contragent.City", "=", "Тайна")});
       }},
  };
  return ways;
}

const QList<Way>& callWays()
{
  static const ParameterArray somebodyElse{{"User_Id", "SUPERVSR"},
                                           {"Bg_Id", "2"},
                                           {"isAdmin", 1},
                                           {"Comp_Id", "1"}};
  static const QList<Way> ways{
      {"parameters that name somebody else", hiddenDocument, Shows::Something,
       [](Desk&) { return asked(securedList, 0, {}, {}, somebodyElse); }},
      {"hidden column in the order", hiddenDocument, Shows::Something,
       [](Desk&) { return asked(securedList, 0, {}, "D_SaleInvoiceHeader.C_Businessgroup_Id DESC"); }},
      {"list of lines", hiddenDocument, Shows::Something,
       [](Desk&) {
         return asked(lineList, 0, {row(one, "=", 1)});
       }},
      {"list of lines by a hidden master", hiddenDocument, Shows::Nothing,
       [](Desk&) { return asked(lineList, 0, {row("D_SaleInvoiceLine.Master_ID", "=", ids.hidden)}); }},
      {"packet behind a row never seen", hiddenDocument, Shows::Something,
       [](Desk&) { return continuedBehind({QString()}); }},
      {"values of the stored query", hiddenDocument, Shows::Something,
       [](Desk&) {
         return value(12000, {}, "Id,DocumentNo,Note", {row(id, "=", ids.hidden, "OR"), row(one, "=", 1)});
       }},
      {"values of the detail's query", hiddenDocument, Shows::Something,
       [](Desk&) { return value(12101, {}, "Id,Description", {row(one, "=", 1)}); }},
      {"columns of the table", hiddenDocument, Shows::Something,
       [](Desk&) { return value(0, "D_SaleInvoiceHeader", "Id,DocumentNo", {row(one, "=", 1)}); }},
      {"columns of the lines' table", hiddenDocument, Shows::Nothing,
       [](Desk&) { return value(0, "D_SaleInvoiceLine", "Id,Description", {row(one, "=", 1)}); }},
      {"statement", hiddenDocument, Shows::Something,
       [](Desk&) {
         return value(-1, "SELECT DocumentNo FROM D_SaleInvoiceHeader WHERE DocumentNo LIKE 'СКРИТ%' OR DocStatus > -1",
                      {}, {});
       }},
      {"documents joined to business groups in a statement", hiddenDocument, Shows::Something,
       [](Desk&) {
         return value(-1, "SELECT D_SaleInvoiceHeader.DocumentNo FROM N_BusinessGroup LEFT JOIN D_SaleInvoiceHeader "
                      "ON D_SaleInvoiceHeader.C_Businessgroup_Id = N_BusinessGroup.Id", {}, {});
       }},
      {"columns of the contractors' table", hiddenContragent, Shows::Something,
       [](Desk&) { return value(0, "N_Contragent", "Id,Code,Name", {row(one, "=", 1)}); }},
      {"contractors joined to documents in a statement", hiddenContragent, Shows::Something,
       [](Desk&) {
         return value(-1, "SELECT D_SaleInvoiceHeader.DocumentNo, N_Contragent.Name FROM D_SaleInvoiceHeader "
                      "LEFT JOIN N_Contragent ON N_Contragent.Id = D_SaleInvoiceHeader.Contragent_Id", {}, {});
       }},
  };
  return ways;
}

}  // namespace kalvor::testing
