// A document of 60 fields and two grids of lines, described as an administrator describes one.
#pragma once

#include <QStringList>

#include "server/catalogue/metadata.h"
#include "server/metadata/metadata_loader.h"

namespace kalvor::bench {

inline constexpr int benchForm = 991;
inline constexpr int benchLines = 40;

// "source kind", by table; kind 2 is a lookup.
inline const QList<std::pair<QString, QStringList>>& benchMasterFields()
{
  static const QList<std::pair<QString, QStringList>> fields{
      {"D_SaleInvoiceHeader", {"DocumentNo 0", "DocumentDate 7", "VATDate 7", "AbsoluteNo 0", "DocStatus 1", "DueDate 7",
                               "CurrencyFactor 0", "PriceIncludingVAT 4", "TotalValue 0", "VATValue 0", "TotalVAT 0",
                               "TotalValue_LCY 0", "VATValue_LCY 0", "TotalVAT_LCY 0", "CopiesPrinted 0", "Note 0",
                               "C_User_Id 0", "C_Datetime 0", "AppliesToDocId 0", "Currency_Id 2"}},
      {"N_Contragent", {"Code 2", "Name 0", "Bulstat 0", "VATNo 0", "City 0", "Address 0", "Country 0", "PostCode 0",
                        "Contact 0", "Phone 0", "Email 0", "BankAccount 0", "CreditLimit 0", "Inactive 4", "Note 0"}},
      {"InvTo", {"Code 2", "Name 0", "Bulstat 0", "VATNo 0", "City 0", "Address 0", "Contact 0", "Phone 0", "Email 0",
                 "CreditLimit 0"}},
      {"N_SubDocument", {"Code 2", "Name 0"}},
      {"N_PaymentTerms", {"Name 2", "Code 0", "DueDateCalculation 0"}},
      {"N_PaymentMethod", {"Name 2", "Code 0"}},
      {"N_BusinessGroup", {"Name 2", "City 0", "Address 0"}},
      {"N_VATBusPostGroup", {"Code 2", "Name 0"}},
      {"N_GenBusPostGroup", {"Code 2", "Name 0"}},
      {"N_Series", {"Code 0"}},
  };
  return fields;
}

inline QString fieldJson(const QString& name, const QString& source, const QString& kind)
{
  const QString extra = kind == u"1" ? R"(, "options": "Отворен,Приключен,Анулиран")"
                        : kind == u"2"
                            ? R"(, "selector": ";140;Id,Code;Contragent_Id,N_Contragent_Code;N_Contragent.Code,LIKE,<#Param(OwnerValue)#>,")"
                            : "";
  return QString(R"({"name": "%1", "caption": "Поле %1", "source": "%2", "kind": "%3", "flags": "visible filterable"%4})")
      .arg(name, source, kind, extra);
}

inline QByteArray benchFormJson()
{
  QStringList master{R"({"name": "Id"}, {"name": "Comp_Id"}, {"name": "Contragent_Id"})"};
  for (const auto& [table, fields] : benchMasterFields()) {
    for (const QString& field : fields) {
      const QString column = field.section(' ', 0, 0);
      const bool own = table == u"D_SaleInvoiceHeader";
      master += fieldJson(own ? column : table + '_' + column, table + '.' + column, field.section(' ', 1, 1));
    }
  }
  const QStringList lineColumns{"Line_No", "Code", "Description", "Quantity", "UnitPrice", "LineDiscount", "TotalPrice",
                                "VATPercent", "VATValue", "TotalVAT"};
  QStringList lines{R"({"name": "Id"}, {"name": "Comp_Id"}, {"name": "Master_Id"})"};
  for (const QString& column : lineColumns) {
    lines += fieldJson(column, "D_SaleInvoiceLine." + column, column == u"Code" ? "2" : "0");
  }
  const QString detail = QString(R"("table": "D_SaleInvoiceLine", "order": "D_SaleInvoiceLine.Line_No",
      "from": ["D_SaleInvoiceLine"], "fields": [%1])").arg(lines.join(",\n"));
  return QString(R"({"forms": [{"id": %1, "caption": "Документ", "class": "TfEdBench", "captionFields": "DocumentNo", "datasets": [
    {"index": 0, "query": 99100, "description": "Документ", "table": "D_SaleInvoiceHeader", "order": "D_SaleInvoiceHeader.Id",
      "from": ["D_SaleInvoiceHeader", "LEFT JOIN N_Contragent ON N_Contragent.Id = D_SaleInvoiceHeader.Contragent_Id",
        "LEFT JOIN N_Contragent AS InvTo ON InvTo.Id = D_SaleInvoiceHeader.InvToContragent_ID",
        "LEFT JOIN N_SubDocument ON N_SubDocument.Id = D_SaleInvoiceHeader.DocSubType_Id",
        "LEFT JOIN N_PaymentTerms ON N_PaymentTerms.Id = D_SaleInvoiceHeader.PayTerm_Id",
        "LEFT JOIN N_PaymentMethod ON N_PaymentMethod.Id = D_SaleInvoiceHeader.PayMethod_Id",
        "LEFT JOIN N_BusinessGroup ON N_BusinessGroup.Id = D_SaleInvoiceHeader.BusinessGroup_Id",
        "LEFT JOIN N_VATBusPostGroup ON N_VATBusPostGroup.Id = D_SaleInvoiceHeader.VATBusPostGroup_Id",
        "LEFT JOIN N_GenBusPostGroup ON N_GenBusPostGroup.Id = D_SaleInvoiceHeader.GenBusPostGroup_Id",
        "LEFT JOIN N_Series ON N_Series.Id = D_SaleInvoiceHeader.Series_Id"],
      "fields": [%2]},
    {"index": 1, "query": 99101, "description": "Редове", %3},
    {"index": 2, "query": 99102, "description": "Още редове", %3}]}]})")
      .arg(benchForm).arg(master.join(",\n"), detail).toUtf8();
}

// The form's description, and a document of company 1 with benchLines lines: its Id.
inline QString prepareBenchForm(server::Connection& db)
{
  server::DeclaredMetadata metadata;
  server::readMetadataFile(benchFormJson(), "bench", metadata);
  server::loadMetadata(db, metadata, server::ExistingRows::Replace);
  server::MetadataCache::touch(db);
  const QString id = db.value("SELECT MIN(Id) FROM D_SaleInvoiceHeader WHERE Comp_Id = '1'", {}).toString();
  db.execute("DELETE FROM D_SaleInvoiceLine WHERE Master_Id = ?", {id});
  for (int line = 1; line <= benchLines; ++line) {
    db.execute("INSERT INTO D_SaleInvoiceLine (Id, Comp_Id, Master_Id, Line_No, Code, Description) "
               "VALUES (?, '1', ?, ?, ?, ?)",
               {QString("BENCH%1").arg(line), id, line, QString("А%1").arg(line),
                QString("Хартия копирна А4 %1").arg(line)});
  }
  return id;
}

}  // namespace kalvor::bench
