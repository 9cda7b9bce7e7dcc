#include "server/integrity/references.h"

namespace kalvor::server {

namespace {

enum class Owner : quint8 {
  Company,  // the record that is referred to belongs to the same company
  Shared    // to all companies
};

struct Reference {
  const char* table;
  const char* column;
  const char* target;
  Owner owner = Owner::Company;
};

// By table. Authors of records (C_User_Id, C_Businessgroup_Id) are left out: they may be gone.
constexpr Reference references[] = {
    {"C_CompanySetup", "Id", "N_Company", Owner::Shared},
    {"C_CompanySetup", "Currency_LCY", "N_Currency", Owner::Shared},
    {"C_SalesSetup", "Id", "N_Company", Owner::Shared},
    {"D_GlobalSaleHeader", "DocSubType_Id", "N_SubDocument"},
    {"D_GlobalSaleHeader", "Contragent_Id", "N_Contragent"},
    {"D_GlobalSaleHeader", "Series_Id", "N_Series"},
    {"D_GlobalSaleHeader", "PostingSerie_Id", "N_Series"},
    {"D_GlobalSaleHeader", "InvToContragent_ID", "N_Contragent"},
    {"D_GlobalSaleHeader", "BusinessGroup_Id", "N_BusinessGroup"},
    {"D_GlobalSaleHeader", "Currency_Id", "N_Currency", Owner::Shared},
    {"D_GlobalSaleHeader", "PayTerm_Id", "N_PaymentTerms"},
    {"D_GlobalSaleHeader", "PayMethod_Id", "N_PaymentMethod"},
    {"D_GlobalSaleHeader", "VATBusPostGroup_Id", "N_VATBusPostGroup"},
    {"D_GlobalSaleHeader", "GenBusPostGroup_Id", "N_GenBusPostGroup"},
    {"D_GlobalSaleHeader", "ShipmentDoc_Id", "D_ShipmentHeader"},
    {"D_GlobalSaleLine", "Measure_Id", "N_Measure"},
    {"D_GlobalSaleLine", "VATProdPostGroup_Id", "N_VATProdPostGroup"},
    {"D_GlobalSaleLine", "VATBusPostGroup_Id", "N_VATBusPostGroup"},
    {"D_GlobalSaleLine", "GenProdPostGroup_Id", "N_GenProdPostGroup"},
    {"D_GlobalSaleLine", "GenBusPostGroup_Id", "N_GenBusPostGroup"},
    {"D_GlobalSaleLine", "Currency_Id", "N_Currency", Owner::Shared},
    {"D_GlobalSaleLine", "BusinessGroup_Id", "N_BusinessGroup"},
    {"D_SaleCrMemoHeader", "DocSubType_Id", "N_SubDocument"},
    {"D_SaleCrMemoHeader", "Series_Id", "N_Series"},
    {"D_SaleCrMemoHeader", "PostingSerie_Id", "N_Series"},
    {"D_SaleCrMemoHeader", "Contragent_Id", "N_Contragent"},
    {"D_SaleCrMemoHeader", "InvToContragent_ID", "N_Contragent"},
    {"D_SaleCrMemoHeader", "BusinessGroup_Id", "N_BusinessGroup"},
    {"D_SaleCrMemoHeader", "Currency_Id", "N_Currency", Owner::Shared},
    {"D_SaleCrMemoHeader", "PayTerm_Id", "N_PaymentTerms"},
    {"D_SaleCrMemoHeader", "PayMethod_Id", "N_PaymentMethod"},
    {"D_SaleCrMemoHeader", "VATBusPostGroup_Id", "N_VATBusPostGroup"},
    {"D_SaleCrMemoHeader", "GenBusPostGroup_Id", "N_GenBusPostGroup"},
    {"D_SaleCrMemoHeader", "GlobalDoc_Id", "D_GlobalSaleHeader"},
    {"D_SaleCrMemoLine", "Measure_Id", "N_Measure"},
    {"D_SaleCrMemoLine", "VATProdPostGroup_Id", "N_VATProdPostGroup"},
    {"D_SaleCrMemoLine", "VATBusPostGroup_Id", "N_VATBusPostGroup"},
    {"D_SaleCrMemoLine", "GenProdPostGroup_Id", "N_GenProdPostGroup"},
    {"D_SaleCrMemoLine", "GenBusPostGroup_Id", "N_GenBusPostGroup"},
    {"D_SaleCrMemoLine", "Currency_Id", "N_Currency", Owner::Shared},
    {"D_SaleCrMemoLine", "BusinessGroup_Id", "N_BusinessGroup"},
    {"D_SaleInvoiceHeader", "Comp_Id", "N_Company", Owner::Shared},
    {"D_SaleInvoiceHeader", "DocSubType_Id", "N_SubDocument"},
    {"D_SaleInvoiceHeader", "Series_Id", "N_Series"},
    {"D_SaleInvoiceHeader", "PostingSerie_Id", "N_Series"},
    {"D_SaleInvoiceHeader", "Contragent_Id", "N_Contragent"},
    {"D_SaleInvoiceHeader", "InvToContragent_ID", "N_Contragent"},
    {"D_SaleInvoiceHeader", "BusinessGroup_Id", "N_BusinessGroup"},
    {"D_SaleInvoiceHeader", "Currency_Id", "N_Currency", Owner::Shared},
    {"D_SaleInvoiceHeader", "PayTerm_Id", "N_PaymentTerms"},
    {"D_SaleInvoiceHeader", "PayMethod_Id", "N_PaymentMethod"},
    {"D_SaleInvoiceHeader", "VATBusPostGroup_Id", "N_VATBusPostGroup"},
    {"D_SaleInvoiceHeader", "GenBusPostGroup_Id", "N_GenBusPostGroup"},
    {"D_SaleInvoiceHeader", "GlobalDoc_Id", "D_GlobalSaleHeader"},
    {"D_SaleInvoiceLine", "Measure_Id", "N_Measure"},
    {"D_SaleInvoiceLine", "BusinessGroup_Id", "N_BusinessGroup"},
    {"D_SaleInvoiceLine", "Currency_Id", "N_Currency", Owner::Shared},
    {"D_SaleInvoiceLine", "VATProdPostGroup_Id", "N_VATProdPostGroup"},
    {"D_SaleInvoiceLine", "VATBusPostGroup_Id", "N_VATBusPostGroup"},
    {"D_SaleInvoiceLine", "GenProdPostGroup_Id", "N_GenProdPostGroup"},
    {"D_SaleInvoiceLine", "GenBusPostGroup_Id", "N_GenBusPostGroup"},
    {"D_ShipmentHeader", "Series_Id", "N_Series"},
    {"D_ShipmentHeader", "Contragent_Id", "N_Contragent"},
    {"D_ShipmentHeader", "BusinessGroup_Id", "N_BusinessGroup"},
    {"D_ShipmentHeader", "GlobalDoc_Id", "D_GlobalSaleHeader"},
    {"D_ShipmentLine", "Item_Id", "N_Item"},
    {"D_ShipmentLine", "Measure_Id", "N_Measure"},
    {"G_ContragentEntry", "Comp_Id", "N_Company", Owner::Shared},
    {"G_ContragentEntry", "Contragent_Id", "N_Contragent"},
    {"G_ContragentEntry", "Businessgroup_Id", "N_BusinessGroup"},
    {"G_ContragentEntry", "PaymentMethod_Id", "N_PaymentMethod"},
    {"G_ContragentEntry", "Currency_Id", "N_Currency", Owner::Shared},
    {"G_ContragentEntryDetail", "Businessgroup_Id", "N_BusinessGroup"},
    {"G_ContragentEntryDetail", "Entry_Id", "G_ContragentEntry"},
    {"G_ContragentEntryDetail", "AppliedToEntry_Id", "G_ContragentEntry"},
    {"G_ContragentEntryDetail", "Contragent_Id", "N_Contragent"},
    {"G_ContragentEntryDetail", "Currency_Id", "N_Currency", Owner::Shared},
    {"G_ContragentPostingSetup", "GenBus_PostingGroup", "N_GenBusPostGroup"},
    {"G_ContragentPostingSetup", "ReceivablesAccount_Id", "G_Account"},
    {"G_ContragentPostingSetup", "PayablesAccount_Id", "G_Account"},
    {"G_ContragentPostingSetup", "ExchangeGainAccount_Id", "G_Account"},
    {"G_ContragentPostingSetup", "ExchangeLossAccount_Id", "G_Account"},
    {"G_Entry", "Account_Id", "G_Account"},
    {"G_Entry", "Contragent_Id", "N_Contragent"},
    {"G_Entry", "Businessgroup_Id", "N_BusinessGroup"},
    {"G_Entry", "Currency_Id", "N_Currency", Owner::Shared},
    {"G_GenPostingSetup", "GenBus_PostingGroup", "N_GenBusPostGroup"},
    {"G_GenPostingSetup", "GenProd_PostingGroup", "N_GenProdPostGroup"},
    {"G_GenPostingSetup", "SalesAccount_Id", "G_Account"},
    {"G_GenPostingSetup", "SalesCrMemoAccount_Id", "G_Account"},
    {"G_GenPostingSetup", "CostAccount_Id", "G_Account"},
    {"G_GenPostingSetup", "InventoryAccount_Id", "G_Account"},
    {"G_ItemEntry", "Item_Id", "N_Item"},
    {"G_ItemEntry", "Businessgroup_Id", "N_BusinessGroup"},
    {"G_ItemEntry", "Contragent_Id", "N_Contragent"},
    {"G_ItemValueEntry", "Comp_Id", "N_Company", Owner::Shared},
    {"G_ItemValueEntry", "Item_Id", "N_Item"},
    {"G_ItemValueEntry", "Businessgroup_Id", "N_BusinessGroup"},
    {"G_ItemValueEntry", "ItemEntry_Id", "G_ItemEntry"},
    {"G_LBankAccountEntry", "Account_Id", "G_Account"},
    {"G_LBankAccountEntry", "PaymentMethod_Id", "N_PaymentMethod"},
    {"G_LBankAccountEntry", "Businessgroup_Id", "N_BusinessGroup"},
    {"G_LBankAccountEntry", "Contragent_Id", "N_Contragent"},
    {"G_LBankAccountEntry", "Currency_Id", "N_Currency", Owner::Shared},
    {"G_VATEntry", "Contragent_Id", "N_Contragent"},
    {"G_VATEntry", "Businessgroup_Id", "N_BusinessGroup"},
    {"G_VATEntry", "VATBus_PostingGroup", "N_VATBusPostGroup"},
    {"G_VATEntry", "VATProd_PostingGroup", "N_VATProdPostGroup"},
    {"G_VATEntry", "Currency_Id", "N_Currency", Owner::Shared},
    {"G_VATPostingSetup", "SalesVATAccount_Id", "G_Account"},
    {"G_VATPostingSetup", "VATBus_PostingGroup", "N_VATBusPostGroup"},
    {"G_VATPostingSetup", "VATProd_PostingGroup", "N_VATProdPostGroup"},
    {"G_VATPostingSetup", "PurchVATAccount_Id", "G_Account"},
    {"N_BusinessGroup", "Comp_Id", "N_Company", Owner::Shared},
    {"N_CashBankOperation", "BusinessGroup_Id", "N_BusinessGroup"},
    {"N_CashBankOperation", "PaymentMethod_Id", "N_PaymentMethod"},
    {"N_Contragent", "Comp_Id", "N_Company", Owner::Shared},
    {"N_Contragent", "PaymentTerms_Id", "N_PaymentTerms"},
    {"N_Contragent", "PaymentMethodCode", "N_PaymentMethod"},
    {"N_Contragent", "Currency_Id", "N_Currency", Owner::Shared},
    {"N_Contragent", "PriceGroup_Id", "N_PriceGroup"},
    {"N_Contragent", "VATBusPostGroup_Id", "N_VATBusPostGroup"},
    {"N_Contragent", "GenBusPostGroup_Id", "N_GenBusPostGroup"},
    {"N_Contragent", "Series_Id", "N_Series"},
    {"N_CurrencyRate", "Currency_Id", "N_Currency", Owner::Shared},
    {"N_Employee", "Comp_Id", "N_Company", Owner::Shared},
    {"N_Item", "Comp_Id", "N_Company", Owner::Shared},
    {"N_Item", "ItemGroup_Id", "N_ItemGroup"},
    {"N_Item", "Measure_Id", "N_Measure"},
    {"N_Item", "VATProdPostGroup_Id", "N_VATProdPostGroup"},
    {"N_Item", "GenProdPostGroup_Id", "N_GenProdPostGroup"},
    {"N_ItemCrossRef", "Item_Id", "N_Item"},
    {"N_ItemCrossRef", "Measure_Id", "N_Measure"},
    {"N_ItemDiscount", "Item_Id", "N_Item"},
    {"N_ItemDiscount", "ItemGroup_Id", "N_ItemGroup"},
    {"N_ItemDiscount", "Contragent_Id", "N_Contragent"},
    {"N_ItemDiscount", "PriceGroup_Id", "N_PriceGroup"},
    {"N_ItemDiscount", "SubDocument_Id", "N_SubDocument"},
    {"N_ItemDiscount", "Measure_Id", "N_Measure"},
    {"N_ItemGroup", "Comp_Id", "N_Company", Owner::Shared},
    {"N_ItemGroup", "Parent_Id", "N_ItemGroup"},
    {"N_ItemMeasure", "Item_Id", "N_Item"},
    {"N_ItemMeasure", "Measure_Id", "N_Measure"},
    {"N_ItemPrice", "Item_Id", "N_Item"},
    {"N_ItemPrice", "Contragent_Id", "N_Contragent"},
    {"N_ItemPrice", "PriceGroup_Id", "N_PriceGroup"},
    {"N_ItemPrice", "Measure_Id", "N_Measure"},
    {"N_ItemPrice", "Currency_Id", "N_Currency", Owner::Shared},
    {"N_PaymentMethod", "Account_Id", "G_Account"},
    {"N_Series", "Comp_Id", "N_Company", Owner::Shared},
    {"N_SubDocument", "Series_Id", "N_Series"},
    {"N_SubDocument", "Post_Series_Id", "N_Series"},
    {"N_SubDocument", "PaymentMethod", "N_PaymentMethod"},
    {"N_SubDocument", "Ship_Series_Id", "N_Series"},
    {"N_Users", "Comp_Id", "N_Company", Owner::Shared},
    {"N_Users", "Employee_Id", "N_Employee"},
    {"S_Rights", "User_Id", "N_Users"},
    {"S_UserGroups", "User_Id", "N_Users"},
    {"S_UserGroups", "BusinessGroup_Id", "N_BusinessGroup"},
};

QString orphans(const Reference& reference)
{
  const bool several = reference.table[0] == 'S';
  const QString sameCompany =
      reference.owner == Owner::Company ? QStringLiteral(" AND r.Comp_Id = t.Comp_Id") : QString();
  return QStringLiteral("SELECT '%2 ' || t.%4 AS Violation FROM %1 t WHERE t.%2 IS NOT NULL AND t.%2 <> '' "
                        "AND NOT EXISTS (SELECT 1 FROM %3 r WHERE r.Id = t.%2%5)")
      .arg(QLatin1StringView(reference.table), QLatin1StringView(reference.column), QLatin1StringView(reference.target),
           QLatin1StringView(several ? "Row_Id" : "Id"), sameCompany);
}

}  // namespace

QList<ConsistencyCheck> referenceChecks()
{
  QList<ConsistencyCheck> checks;
  QString last;
  for (const Reference& reference : references) {
    if (last == QLatin1StringView(reference.table)) {
      checks.last().sql += QStringLiteral(" UNION ALL ") + orphans(reference);
      continue;
    }
    last = QLatin1StringView(reference.table);
    checks.append({QStringLiteral("references_") + last, orphans(reference),
                   QStringLiteral("всяка препратка от %1 води до запис на същата фирма").arg(last)});
  }
  return checks;
}

}  // namespace kalvor::server
