-- What posting works with and what it leaves behind: accounts and which of them a sale goes to, documents to be posted,
-- posted credit memos and store documents, and the entries. An entry is never changed but for what is still open of it.

ALTER TABLE C_CompanySetup ADD COLUMN ClosedPeriodTo DATE;                          -- null: nothing is closed
ALTER TABLE C_CompanySetup ADD COLUMN AllowNegativeStock INTEGER NOT NULL DEFAULT 0;

-- AccountType: 0 debit balance, 1 credit balance, 2 either.
CREATE TABLE G_Account (
  Id          VARCHAR(32) NOT NULL PRIMARY KEY,
  Comp_Id     VARCHAR(10) NOT NULL,
  Code        VARCHAR(20) NOT NULL,
  Name        VARCHAR(200) NOT NULL,
  AccountType INTEGER NOT NULL DEFAULT 2,
  Blocked     INTEGER NOT NULL DEFAULT 0
);
CREATE UNIQUE INDEX UX_G_Account_Code ON G_Account (Comp_Id, Code);

-- The accounts of a sale by the groups of the customer and of the item.
CREATE TABLE G_GenPostingSetup (
  Id                    VARCHAR(32) NOT NULL PRIMARY KEY,
  Comp_Id               VARCHAR(10) NOT NULL,
  GenBus_PostingGroup   VARCHAR(32) NOT NULL,
  GenProd_PostingGroup  VARCHAR(32) NOT NULL,
  SalesAccount_Id       VARCHAR(32),
  SalesCrMemoAccount_Id VARCHAR(32),
  CostAccount_Id        VARCHAR(32),
  InventoryAccount_Id   VARCHAR(32)
);
CREATE UNIQUE INDEX UX_G_GenPostingSetup ON G_GenPostingSetup (Comp_Id, GenBus_PostingGroup, GenProd_PostingGroup);

-- The accounts of contractors by their group.
CREATE TABLE G_ContragentPostingSetup (
  Id                     VARCHAR(32) NOT NULL PRIMARY KEY,
  Comp_Id                VARCHAR(10) NOT NULL,
  GenBus_PostingGroup    VARCHAR(32) NOT NULL,
  ReceivablesAccount_Id  VARCHAR(32),
  PayablesAccount_Id     VARCHAR(32),
  ExchangeGainAccount_Id VARCHAR(32),
  ExchangeLossAccount_Id VARCHAR(32)
);
CREATE UNIQUE INDEX UX_G_ContragentPostingSetup ON G_ContragentPostingSetup (Comp_Id, GenBus_PostingGroup);

ALTER TABLE G_VATPostingSetup ADD COLUMN SalesVATAccount_Id VARCHAR(32);
ALTER TABLE G_VATPostingSetup ADD COLUMN PurchVATAccount_Id VARCHAR(32);
ALTER TABLE N_PaymentMethod ADD COLUMN Account_Id VARCHAR(32);                      -- cash or bank
-- What a global document of the sub-type becomes: 0 invoice, 1 credit memo. Without a series of their own store
-- documents take the number of what they belong to.
ALTER TABLE N_SubDocument ADD COLUMN DocumentKind INTEGER NOT NULL DEFAULT 0;
ALTER TABLE N_SubDocument ADD COLUMN Ship_Series_Id VARCHAR(32);

-- Documents to be posted.
CREATE TABLE D_GlobalSaleHeader (
  Id                 VARCHAR(32) NOT NULL PRIMARY KEY,
  Comp_Id            VARCHAR(10) NOT NULL,
  DocumentNo         VARCHAR(20),
  DocumentDate       DATE NOT NULL,
  VATDate            DATE,
  AbsoluteNo         VARCHAR(20),
  DocStatus          INTEGER NOT NULL DEFAULT 0,
  DocSubType_Id      VARCHAR(32),
  Series_Id          VARCHAR(32),
  PostingSerie_Id    VARCHAR(32),
  Contragent_Id      VARCHAR(32),
  InvToContragent_ID VARCHAR(32),
  BusinessGroup_Id   VARCHAR(32),
  Currency_Id        VARCHAR(10),
  CurrencyFactor     AMOUNT DEFAULT 1000000,
  PriceIncludingVAT  INTEGER DEFAULT 0,
  PayTerm_Id         VARCHAR(32),
  PayMethod_Id       VARCHAR(32),
  DueDate            DATE,
  VATBusPostGroup_Id VARCHAR(32),
  GenBusPostGroup_Id VARCHAR(32),
  TotalValue         AMOUNT DEFAULT 0,
  VATValue           AMOUNT DEFAULT 0,
  TotalVAT           AMOUNT DEFAULT 0,
  TotalValue_LCY     AMOUNT DEFAULT 0,
  VATValue_LCY       AMOUNT DEFAULT 0,
  TotalVAT_LCY       AMOUNT DEFAULT 0,
  AppliesToDocId     VARCHAR(32),
  AppliesToDoc_Type  INTEGER,
  CopiesPrinted      INTEGER DEFAULT 0,
  Note               TEXT,
  C_Businessgroup_Id VARCHAR(32),
  C_User_Id          VARCHAR(50),
  C_Datetime         TIMESTAMP,
  Annul              INTEGER NOT NULL DEFAULT 0,
  GlobDocIsPosted    INTEGER NOT NULL DEFAULT 0,
  DirectPay          INTEGER,                      -- null: as the payment method says
  Print_Check        INTEGER NOT NULL DEFAULT 0,
  PostedDoc_Id       VARCHAR(32),
  PostedDoc_Type     INTEGER,                      -- 0 invoice, 1 credit memo
  PostedDocumentNo   VARCHAR(20),
  ShipmentDoc_Id     VARCHAR(32),
  PostedBy           VARCHAR(50),
  PostedAt           TIMESTAMP
);
CREATE INDEX IX_D_GlobalSaleHeader_Date ON D_GlobalSaleHeader (Comp_Id, DocumentDate, DocumentNo, Id);
CREATE INDEX IX_D_GlobalSaleHeader_No ON D_GlobalSaleHeader (Comp_Id, DocumentNo, Id);
CREATE INDEX IX_D_GlobalSaleHeader_Contragent
  ON D_GlobalSaleHeader (Comp_Id, Contragent_Id, DocumentDate, DocumentNo, Id);
CREATE INDEX IX_D_GlobalSaleHeader_Group
  ON D_GlobalSaleHeader (Comp_Id, C_Businessgroup_Id, DocumentDate, DocumentNo, Id);

CREATE TABLE D_GlobalSaleLine (
  Id                  VARCHAR(32) NOT NULL PRIMARY KEY,
  Comp_Id             VARCHAR(10) NOT NULL,
  Master_Id           VARCHAR(32) NOT NULL
                      REFERENCES D_GlobalSaleHeader (Id) ON DELETE CASCADE DEFERRABLE INITIALLY DEFERRED,
  Line_No             INTEGER NOT NULL,
  Type                INTEGER NOT NULL DEFAULT 1,  -- 1 item, 3 service, 6 set take a price; the others do not
  Code                VARCHAR(30),
  Description         VARCHAR(250),
  Measure_Id          VARCHAR(32),
  QtyPerUnitOfMeasure AMOUNT DEFAULT 1000000,
  Quantity            AMOUNT DEFAULT 0,
  Quantity_Base       AMOUNT DEFAULT 0,
  UnitPrice           AMOUNT DEFAULT 0,
  OriginalPrice       AMOUNT DEFAULT 0,
  OriginalDiscount    AMOUNT DEFAULT 0,
  LineDiscount        AMOUNT DEFAULT 0,
  LineDiscountAmount  AMOUNT DEFAULT 0,
  InvDiscAmount       AMOUNT DEFAULT 0,
  AllowInvoiceDisc    INTEGER DEFAULT 0,
  TotalPrice          AMOUNT DEFAULT 0,
  VATPercent          AMOUNT DEFAULT 0,
  VATCalculationType  INTEGER DEFAULT 0,
  VATLedger           INTEGER DEFAULT 0,
  VATProdPostGroup_Id VARCHAR(32),
  VATBusPostGroup_Id  VARCHAR(32),
  GenProdPostGroup_Id VARCHAR(32),
  GenBusPostGroup_Id  VARCHAR(32),
  Currency_Id         VARCHAR(10),
  BusinessGroup_Id    VARCHAR(32),
  PriceIncludingVAT   INTEGER DEFAULT 0,
  UnitCost_ACY        AMOUNT DEFAULT 0,
  UnitCost_LCY        AMOUNT DEFAULT 0,
  TotalValue          AMOUNT DEFAULT 0,
  VATBaseAmount       AMOUNT DEFAULT 0,
  VATValue            AMOUNT DEFAULT 0,
  TotalVAT            AMOUNT DEFAULT 0,
  TotalValue_LCY      AMOUNT DEFAULT 0,
  VatValue_LCY        AMOUNT DEFAULT 0,
  TotalVAT_LCY        AMOUNT DEFAULT 0,
  QtyToShip           AMOUNT DEFAULT 0,
  ShippedQty          AMOUNT DEFAULT 0,
  QtyToInvoice        AMOUNT DEFAULT 0,
  InvoicedQty         AMOUNT DEFAULT 0,
  ReturnedQty         AMOUNT DEFAULT 0,
  SrcLine_Id          VARCHAR(32)
);
CREATE INDEX IX_D_GlobalSaleLine_Master ON D_GlobalSaleLine (Master_Id, Line_No);

-- Posted documents. A posted invoice and its lines stand with the sale invoices; GlobalDoc_Id is what it was posted from.
-- Lines keep the Id of the line that they were posted from.
ALTER TABLE D_SaleInvoiceHeader ADD COLUMN GlobalDoc_Id VARCHAR(32);
CREATE INDEX IX_D_SaleInvoiceHeader_AppliesTo ON D_SaleInvoiceHeader (AppliesToDocId);

CREATE TABLE D_SaleCrMemoHeader (
  Id                 VARCHAR(32) NOT NULL PRIMARY KEY,
  Comp_Id            VARCHAR(10) NOT NULL,
  DocumentNo         VARCHAR(20),
  DocumentDate       DATE NOT NULL,
  VATDate            DATE,
  AbsoluteNo         VARCHAR(20),
  DocStatus          INTEGER NOT NULL DEFAULT 0,
  DocSubType_Id      VARCHAR(32),
  Series_Id          VARCHAR(32),
  PostingSerie_Id    VARCHAR(32),
  Contragent_Id      VARCHAR(32),
  InvToContragent_ID VARCHAR(32),
  BusinessGroup_Id   VARCHAR(32),
  Currency_Id        VARCHAR(10),
  CurrencyFactor     AMOUNT DEFAULT 1000000,
  PriceIncludingVAT  INTEGER DEFAULT 0,
  PayTerm_Id         VARCHAR(32),
  PayMethod_Id       VARCHAR(32),
  DueDate            DATE,
  VATBusPostGroup_Id VARCHAR(32),
  GenBusPostGroup_Id VARCHAR(32),
  TotalValue         AMOUNT DEFAULT 0,
  VATValue           AMOUNT DEFAULT 0,
  TotalVAT           AMOUNT DEFAULT 0,
  TotalValue_LCY     AMOUNT DEFAULT 0,
  VATValue_LCY       AMOUNT DEFAULT 0,
  TotalVAT_LCY       AMOUNT DEFAULT 0,
  AppliesToDocID     VARCHAR(32),
  AppliesToDoc_Type  INTEGER,
  CopiesPrinted      INTEGER DEFAULT 0,
  Note               TEXT,
  C_Businessgroup_Id VARCHAR(32),
  C_User_Id          VARCHAR(50),
  C_Datetime         TIMESTAMP,
  GlobalDoc_Id       VARCHAR(32)
);
CREATE INDEX IX_D_SaleCrMemoHeader_Date ON D_SaleCrMemoHeader (Comp_Id, DocumentDate, DocumentNo, Id);
CREATE INDEX IX_D_SaleCrMemoHeader_AppliesTo ON D_SaleCrMemoHeader (AppliesToDocID);

CREATE TABLE D_SaleCrMemoLine (
  Id                  VARCHAR(32) NOT NULL PRIMARY KEY,
  Comp_Id             VARCHAR(10) NOT NULL,
  Master_Id           VARCHAR(32) NOT NULL
                      REFERENCES D_SaleCrMemoHeader (Id) ON DELETE CASCADE DEFERRABLE INITIALLY DEFERRED,
  Line_No             INTEGER NOT NULL,
  Type                INTEGER NOT NULL DEFAULT 1,  -- 1 item, 3 service, 6 set take a price; the others do not
  Code                VARCHAR(30),
  Description         VARCHAR(250),
  Measure_Id          VARCHAR(32),
  QtyPerUnitOfMeasure AMOUNT DEFAULT 1000000,
  Quantity            AMOUNT DEFAULT 0,
  Quantity_Base       AMOUNT DEFAULT 0,
  UnitPrice           AMOUNT DEFAULT 0,
  OriginalPrice       AMOUNT DEFAULT 0,
  OriginalDiscount    AMOUNT DEFAULT 0,
  LineDiscount        AMOUNT DEFAULT 0,
  LineDiscountAmount  AMOUNT DEFAULT 0,
  InvDiscAmount       AMOUNT DEFAULT 0,
  AllowInvoiceDisc    INTEGER DEFAULT 0,
  TotalPrice          AMOUNT DEFAULT 0,
  VATPercent          AMOUNT DEFAULT 0,
  VATCalculationType  INTEGER DEFAULT 0,
  VATLedger           INTEGER DEFAULT 0,
  VATProdPostGroup_Id VARCHAR(32),
  VATBusPostGroup_Id  VARCHAR(32),
  GenProdPostGroup_Id VARCHAR(32),
  GenBusPostGroup_Id  VARCHAR(32),
  Currency_Id         VARCHAR(10),
  BusinessGroup_Id    VARCHAR(32),
  PriceIncludingVAT   INTEGER DEFAULT 0,
  UnitCost_ACY        AMOUNT DEFAULT 0,
  UnitCost_LCY        AMOUNT DEFAULT 0,
  TotalValue          AMOUNT DEFAULT 0,
  VATBaseAmount       AMOUNT DEFAULT 0,
  VATValue            AMOUNT DEFAULT 0,
  TotalVAT            AMOUNT DEFAULT 0,
  TotalValue_LCY      AMOUNT DEFAULT 0,
  VatValue_LCY        AMOUNT DEFAULT 0,
  TotalVAT_LCY        AMOUNT DEFAULT 0,
  QtyToShip           AMOUNT DEFAULT 0,
  ShippedQty          AMOUNT DEFAULT 0,
  QtyToInvoice        AMOUNT DEFAULT 0,
  InvoicedQty         AMOUNT DEFAULT 0,
  ReturnedQty         AMOUNT DEFAULT 0,
  SrcLine_Id          VARCHAR(32)
);
CREATE INDEX IX_D_SaleCrMemoLine_Master ON D_SaleCrMemoLine (Master_Id, Line_No);
CREATE INDEX IX_D_SaleCrMemoLine_Source ON D_SaleCrMemoLine (SrcLine_Id);

-- What left the store with an invoice; quantities that came back with a credit memo are negative.
CREATE TABLE D_ShipmentHeader (
  Id                 VARCHAR(32) NOT NULL PRIMARY KEY,
  Comp_Id            VARCHAR(10) NOT NULL,
  DocumentNo         VARCHAR(20),
  DocumentDate       DATE NOT NULL,
  Series_Id          VARCHAR(32),
  Contragent_Id      VARCHAR(32),
  BusinessGroup_Id   VARCHAR(32),
  AppliesToDoc_Id    VARCHAR(32),
  AppliesToDoc_Type  INTEGER,
  GlobalDoc_Id       VARCHAR(32),
  CopiesPrinted      INTEGER DEFAULT 0,
  C_Businessgroup_Id VARCHAR(32),
  C_User_Id          VARCHAR(50),
  C_Datetime         TIMESTAMP
);
CREATE INDEX IX_D_ShipmentHeader_Date ON D_ShipmentHeader (Comp_Id, DocumentDate, DocumentNo, Id);
CREATE INDEX IX_D_ShipmentHeader_AppliesTo ON D_ShipmentHeader (AppliesToDoc_Id);

CREATE TABLE D_ShipmentLine (
  Id                  VARCHAR(32) NOT NULL PRIMARY KEY,
  Comp_Id             VARCHAR(10) NOT NULL,
  Master_Id           VARCHAR(32) NOT NULL
                      REFERENCES D_ShipmentHeader (Id) ON DELETE CASCADE DEFERRABLE INITIALLY DEFERRED,
  Line_No             INTEGER NOT NULL,
  Item_Id             VARCHAR(32) NOT NULL,
  Code                VARCHAR(30),
  Description         VARCHAR(250),
  Measure_Id          VARCHAR(32),
  QtyPerUnitOfMeasure AMOUNT,
  Quantity            AMOUNT NOT NULL,
  Quantity_Base       AMOUNT NOT NULL
);
CREATE INDEX IX_D_ShipmentLine_Master ON D_ShipmentLine (Master_Id, Line_No);

-- Entries. Transaction_Id joins what one posting left behind. DocumentType: 0 invoice, 1 credit memo, 2 store document,
-- 3 journal entry; null: an opening balance. Amounts are in local currency unless their name ends in _ACY.
CREATE TABLE G_Entry (
  Id               VARCHAR(32) NOT NULL PRIMARY KEY,
  Comp_Id          VARCHAR(10) NOT NULL,
  Businessgroup_Id VARCHAR(32),
  Transaction_Id   VARCHAR(32) NOT NULL,
  Line_No          INTEGER NOT NULL,
  Account_Id       VARCHAR(32) NOT NULL,
  DocumentType     INTEGER,
  Document_Id      VARCHAR(32),
  DocumentNo       VARCHAR(20),
  PostingDate      DATE NOT NULL,
  Contragent_Id    VARCHAR(32),
  Description      VARCHAR(250),
  DebitAmount      AMOUNT NOT NULL DEFAULT 0,
  CreditAmount     AMOUNT NOT NULL DEFAULT 0,
  Currency_Id      VARCHAR(10),
  Amount_ACY       AMOUNT NOT NULL DEFAULT 0,      -- debit positive, credit negative
  C_User_Id        VARCHAR(50),
  C_Datetime       TIMESTAMP
);
CREATE INDEX IX_G_Entry_Account ON G_Entry (Comp_Id, Account_Id, PostingDate, DebitAmount, CreditAmount);
CREATE INDEX IX_G_Entry_Document ON G_Entry (Document_Id);
CREATE INDEX IX_G_Entry_Transaction ON G_Entry (Transaction_Id, Line_No);

-- One row a VAT group of a document; of a credit memo negative. Gen_PostingType: 1 sales, 0 purchases. VATLedger as in
-- the set-up.
CREATE TABLE G_VATEntry (
  Id                   VARCHAR(32) NOT NULL PRIMARY KEY,
  Comp_Id              VARCHAR(10) NOT NULL,
  Businessgroup_Id     VARCHAR(32),
  Transaction_Id       VARCHAR(32),
  Gen_PostingType      INTEGER NOT NULL,
  DocumentType         INTEGER,
  Document_Id          VARCHAR(32),
  DocumentNo           VARCHAR(20),
  DocumentDate         DATE,
  VATDate              DATE NOT NULL,
  PostingDate          DATE NOT NULL,
  Contragent_Id        VARCHAR(32),
  VATBus_PostingGroup  VARCHAR(32),
  VATProd_PostingGroup VARCHAR(32),
  VATPercent           AMOUNT NOT NULL DEFAULT 0,
  VATCalculationType   INTEGER NOT NULL DEFAULT 0,
  VATLedger            INTEGER NOT NULL DEFAULT 0,
  BaseAmount           AMOUNT NOT NULL,
  VATAmount            AMOUNT NOT NULL,
  Currency_Id          VARCHAR(10),
  BaseAmount_ACY       AMOUNT NOT NULL DEFAULT 0,
  VATAmount_ACY        AMOUNT NOT NULL DEFAULT 0
);
CREATE INDEX IX_G_VATEntry_Ledger ON G_VATEntry (Comp_Id, Gen_PostingType, VATLedger, VATDate);
CREATE INDEX IX_G_VATEntry_Document ON G_VATEntry (Document_Id);

-- Quantities in base units, out of the store negative; Document_Id is the store document.
CREATE TABLE G_ItemEntry (
  Id               VARCHAR(32) NOT NULL PRIMARY KEY,
  Comp_Id          VARCHAR(10) NOT NULL,
  Businessgroup_Id VARCHAR(32),
  Transaction_Id   VARCHAR(32),
  Item_Id          VARCHAR(32) NOT NULL,
  DocumentType     INTEGER,
  Document_Id      VARCHAR(32),
  DocumentNo       VARCHAR(20),
  DocLine_Id       VARCHAR(32),
  Contragent_Id    VARCHAR(32),
  PostingDate      DATE NOT NULL,
  Quantity         AMOUNT NOT NULL
);
CREATE INDEX IX_G_ItemEntry_Item ON G_ItemEntry (Comp_Id, Item_Id, PostingDate);
CREATE INDEX IX_G_ItemEntry_Document ON G_ItemEntry (Document_Id);

-- Of a value entry Document_Id is the invoice or the credit memo, DocLine_Id its line.
ALTER TABLE G_ItemValueEntry ADD COLUMN Transaction_Id VARCHAR(32);
ALTER TABLE G_ItemValueEntry ADD COLUMN ItemEntry_Id VARCHAR(32);
ALTER TABLE G_ItemValueEntry ADD COLUMN DocLine_Id VARCHAR(32);
ALTER TABLE G_ItemValueEntry ADD COLUMN SalesAmount AMOUNT NOT NULL DEFAULT 0;
CREATE INDEX IX_G_ItemValueEntry_Document ON G_ItemValueEntry (Document_Id);

-- What became of a contractor's entry; the sums of its rows are its Remaining and Remaining_LCY. EntryType: 0 the entry
-- itself, 1 settled with AppliedToEntry_Id, 2 difference of rates.
CREATE TABLE G_ContragentEntryDetail (
  Id                VARCHAR(40) NOT NULL PRIMARY KEY,
  Comp_Id           VARCHAR(10) NOT NULL,
  Businessgroup_Id  VARCHAR(32),
  Transaction_Id    VARCHAR(32),
  Entry_Id          VARCHAR(32) NOT NULL,
  EntryType         INTEGER NOT NULL,
  AppliedToEntry_Id VARCHAR(32),
  Contragent_Id     VARCHAR(32) NOT NULL,
  DocumentType      INTEGER,
  Document_Id       VARCHAR(32),
  DocumentNo        VARCHAR(20),
  PostingDate       DATE NOT NULL,
  Currency_Id       VARCHAR(10),
  Amount            AMOUNT NOT NULL,
  Amount_LCY        AMOUNT NOT NULL
);
CREATE INDEX IX_G_ContragentEntryDetail_Entry ON G_ContragentEntryDetail (Entry_Id);
CREATE INDEX IX_G_ContragentEntryDetail_Document ON G_ContragentEntryDetail (Document_Id);
INSERT INTO G_ContragentEntryDetail (Id, Comp_Id, Businessgroup_Id, Entry_Id, EntryType, Contragent_Id, DocumentType,
  Document_Id, DocumentNo, PostingDate, Currency_Id, Amount, Amount_LCY)
  SELECT Id, Comp_Id, Businessgroup_Id, Id, 0, Contragent_Id, DocumentType, Document_Id, DocumentNo, PostingDate,
    Currency_Id, Amount, Amount_LCY FROM G_ContragentEntry;
INSERT INTO G_ContragentEntryDetail (Id, Comp_Id, Businessgroup_Id, Entry_Id, EntryType, Contragent_Id, DocumentType,
  Document_Id, DocumentNo, PostingDate, Currency_Id, Amount, Amount_LCY)
  SELECT Id || '-1', Comp_Id, Businessgroup_Id, Id, 1, Contragent_Id, DocumentType, Document_Id, DocumentNo, PostingDate,
    Currency_Id, Remaining - Amount, Remaining_LCY - Amount_LCY FROM G_ContragentEntry
  WHERE Remaining <> Amount OR Remaining_LCY <> Amount_LCY;

ALTER TABLE G_ContragentEntry ADD COLUMN Transaction_Id VARCHAR(32);
CREATE INDEX IX_G_ContragentEntry_Document ON G_ContragentEntry (Document_Id);

-- Money in (positive) and out of the cash desk and the bank.
CREATE TABLE G_LBankAccountEntry (
  Id               VARCHAR(32) NOT NULL PRIMARY KEY,
  Comp_Id          VARCHAR(10) NOT NULL,
  Businessgroup_Id VARCHAR(32),
  Transaction_Id   VARCHAR(32),
  PaymentMethod_Id VARCHAR(32) NOT NULL,
  Account_Id       VARCHAR(32) NOT NULL,
  DocumentType     INTEGER,
  Document_Id      VARCHAR(32),
  DocumentNo       VARCHAR(20),
  PostingDate      DATE NOT NULL,
  Contragent_Id    VARCHAR(32),
  Description      VARCHAR(250),
  Currency_Id      VARCHAR(10),
  Amount           AMOUNT NOT NULL,
  Amount_LCY       AMOUNT NOT NULL
);
CREATE INDEX IX_G_LBankAccountEntry_Method ON G_LBankAccountEntry (Comp_Id, PaymentMethod_Id, PostingDate);
CREATE INDEX IX_G_LBankAccountEntry_Document ON G_LBankAccountEntry (Document_Id);

-- What the navigation of posted documents lists.
CREATE VIEW dv_Entry AS
  SELECT G_Entry.Id AS Id, G_Entry.Comp_Id AS Comp_Id, G_Entry.Businessgroup_Id AS Businessgroup_Id,
    G_Entry.Transaction_Id AS Transaction_Id, G_Entry.Line_No AS Line_No, G_Entry.Account_Id AS Account_Id,
    G_Entry.DocumentType AS DocumentType, G_Entry.Document_Id AS Document_Id, G_Entry.DocumentNo AS DocumentNo,
    G_Entry.PostingDate AS PostingDate, G_Entry.Contragent_Id AS Contragent_Id, G_Entry.Description AS Description,
    G_Entry.DebitAmount AS DebitAmount, G_Entry.CreditAmount AS CreditAmount, G_Entry.Currency_Id AS Currency_Id,
    G_Entry.Amount_ACY AS Amount_ACY, G_Entry.C_User_Id AS C_User_Id, G_Entry.C_Datetime AS C_Datetime,
    G_Account.Code AS AccountCode, G_Account.Name AS AccountName FROM G_Entry LEFT JOIN G_Account ON G_Account.Id =
    G_Entry.Account_Id;
CREATE VIEW dv_VATEntry AS
  SELECT G_VATEntry.Id AS Id, G_VATEntry.Comp_Id AS Comp_Id, G_VATEntry.Businessgroup_Id AS Businessgroup_Id,
    G_VATEntry.Transaction_Id AS Transaction_Id, G_VATEntry.Gen_PostingType AS Gen_PostingType,
    G_VATEntry.DocumentType AS DocumentType, G_VATEntry.Document_Id AS Document_Id,
    G_VATEntry.DocumentNo AS DocumentNo, G_VATEntry.DocumentDate AS DocumentDate, G_VATEntry.VATDate AS VATDate,
    G_VATEntry.PostingDate AS PostingDate, G_VATEntry.Contragent_Id AS Contragent_Id,
    G_VATEntry.VATBus_PostingGroup AS VATBus_PostingGroup, G_VATEntry.VATProd_PostingGroup AS VATProd_PostingGroup,
    G_VATEntry.VATPercent AS VATPercent, G_VATEntry.VATCalculationType AS VATCalculationType,
    G_VATEntry.VATLedger AS VATLedger, G_VATEntry.BaseAmount AS BaseAmount, G_VATEntry.VATAmount AS VATAmount,
    G_VATEntry.Currency_Id AS Currency_Id, G_VATEntry.BaseAmount_ACY AS BaseAmount_ACY,
    G_VATEntry.VATAmount_ACY AS VATAmount_ACY FROM G_VATEntry;
CREATE VIEW dv_ItemValueEntry AS
  SELECT G_ItemValueEntry.Id AS Id, G_ItemValueEntry.Comp_Id AS Comp_Id,
    G_ItemValueEntry.Businessgroup_Id AS Businessgroup_Id, G_ItemValueEntry.Item_Id AS Item_Id,
    G_ItemValueEntry.DocumentType AS DocumentType, G_ItemValueEntry.Document_Id AS Document_Id,
    G_ItemValueEntry.DocumentNo AS DocumentNo, G_ItemValueEntry.PostingDate AS PostingDate,
    G_ItemValueEntry.Quantity AS Quantity, G_ItemValueEntry.CostAmount AS CostAmount,
    G_ItemValueEntry.Transaction_Id AS Transaction_Id, G_ItemValueEntry.ItemEntry_Id AS ItemEntry_Id,
    G_ItemValueEntry.DocLine_Id AS DocLine_Id, G_ItemValueEntry.SalesAmount AS SalesAmount FROM G_ItemValueEntry;
CREATE VIEW dv_ContragentEntry AS
  SELECT G_ContragentEntry.Id AS Id, G_ContragentEntry.Comp_Id AS Comp_Id,
    G_ContragentEntry.Businessgroup_Id AS Businessgroup_Id, G_ContragentEntry.Contragent_Id AS Contragent_Id,
    G_ContragentEntry.Gen_PostingType AS Gen_PostingType, G_ContragentEntry.DocumentType AS DocumentType,
    G_ContragentEntry.Document_Id AS Document_Id, G_ContragentEntry.DocumentNo AS DocumentNo,
    G_ContragentEntry.DocumentDate AS DocumentDate, G_ContragentEntry.PostingDate AS PostingDate,
    G_ContragentEntry.DueDate AS DueDate, G_ContragentEntry.PaymentMethod_Id AS PaymentMethod_Id,
    G_ContragentEntry.Currency_Id AS Currency_Id, G_ContragentEntry.Amount AS Amount,
    G_ContragentEntry.Amount_LCY AS Amount_LCY, G_ContragentEntry.Remaining AS Remaining,
    G_ContragentEntry.Remaining_LCY AS Remaining_LCY, G_ContragentEntry.Opened AS Opened,
    G_ContragentEntry.Transaction_Id AS Transaction_Id FROM G_ContragentEntry;
CREATE VIEW dv_ContragentEntryDetail AS
  SELECT G_ContragentEntryDetail.Id AS Id, G_ContragentEntryDetail.Comp_Id AS Comp_Id,
    G_ContragentEntryDetail.Businessgroup_Id AS Businessgroup_Id,
    G_ContragentEntryDetail.Transaction_Id AS Transaction_Id, G_ContragentEntryDetail.Entry_Id AS Entry_Id,
    G_ContragentEntryDetail.EntryType AS EntryType, G_ContragentEntryDetail.AppliedToEntry_Id AS AppliedToEntry_Id,
    G_ContragentEntryDetail.Contragent_Id AS Contragent_Id, G_ContragentEntryDetail.DocumentType AS DocumentType,
    G_ContragentEntryDetail.Document_Id AS Document_Id, G_ContragentEntryDetail.DocumentNo AS DocumentNo,
    G_ContragentEntryDetail.PostingDate AS PostingDate, G_ContragentEntryDetail.Currency_Id AS Currency_Id,
    G_ContragentEntryDetail.Amount AS Amount, G_ContragentEntryDetail.Amount_LCY AS Amount_LCY FROM
    G_ContragentEntryDetail;
CREATE VIEW dv_ItemEntryAndShipmentHeader AS
  SELECT G_ItemEntry.Id AS Id, G_ItemEntry.Comp_Id AS Comp_Id, G_ItemEntry.Businessgroup_Id AS Businessgroup_Id,
    G_ItemEntry.Transaction_Id AS Transaction_Id, G_ItemEntry.Item_Id AS Item_Id,
    G_ItemEntry.DocumentType AS DocumentType, G_ItemEntry.Document_Id AS Document_Id,
    G_ItemEntry.DocumentNo AS DocumentNo, G_ItemEntry.DocLine_Id AS DocLine_Id,
    G_ItemEntry.Contragent_Id AS Contragent_Id, G_ItemEntry.PostingDate AS PostingDate,
    G_ItemEntry.Quantity AS Quantity, D_ShipmentHeader.AppliesToDoc_Id AS AppliesToDoc_Id,
    D_ShipmentHeader.AppliesToDoc_Type AS AppliesToDoc_Type FROM G_ItemEntry JOIN D_ShipmentHeader ON
    D_ShipmentHeader.Id = G_ItemEntry.Document_Id;
