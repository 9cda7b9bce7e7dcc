-- What documents refer to. Keys are 32 upper-case hex digits unless said otherwise; users know records by Code.

CREATE TABLE N_Measure (
  Id       VARCHAR(32) NOT NULL PRIMARY KEY,
  Comp_Id  VARCHAR(10) NOT NULL,
  Code     VARCHAR(10) NOT NULL,
  Name     VARCHAR(100) NOT NULL,
  Decimals INTEGER NOT NULL DEFAULT 0
);
CREATE INDEX IX_N_Measure_Code ON N_Measure (Comp_Id, Code);

-- Shared by all companies; Id is the ISO 4217 code.
CREATE TABLE N_Currency (
  Id          VARCHAR(10) NOT NULL PRIMARY KEY,
  Name        VARCHAR(100) NOT NULL,
  NumericCode VARCHAR(3),
  Decimals    INTEGER NOT NULL DEFAULT 2
);

-- Rate: local currency for one unit. Kind 0 = central bank.
CREATE TABLE N_CurrencyRate (
  Id          VARCHAR(32) NOT NULL PRIMARY KEY,
  Comp_Id     VARCHAR(10) NOT NULL,
  Currency_Id VARCHAR(10) NOT NULL,
  RateDate    DATE NOT NULL,
  Kind        INTEGER NOT NULL DEFAULT 0,
  Rate        AMOUNT NOT NULL
);
CREATE UNIQUE INDEX UX_N_CurrencyRate ON N_CurrencyRate (Comp_Id, Currency_Id, Kind, RateDate);

CREATE TABLE N_VATBusPostGroup (
  Id      VARCHAR(32) NOT NULL PRIMARY KEY,
  Comp_Id VARCHAR(10) NOT NULL,
  Code    VARCHAR(20) NOT NULL,
  Name    VARCHAR(100) NOT NULL
);
CREATE INDEX IX_N_VATBusPostGroup_Code ON N_VATBusPostGroup (Comp_Id, Code);

CREATE TABLE N_VATProdPostGroup (
  Id      VARCHAR(32) NOT NULL PRIMARY KEY,
  Comp_Id VARCHAR(10) NOT NULL,
  Code    VARCHAR(20) NOT NULL,
  Name    VARCHAR(100) NOT NULL
);
CREATE INDEX IX_N_VATProdPostGroup_Code ON N_VATProdPostGroup (Comp_Id, Code);

CREATE TABLE N_GenBusPostGroup (
  Id      VARCHAR(32) NOT NULL PRIMARY KEY,
  Comp_Id VARCHAR(10) NOT NULL,
  Code    VARCHAR(20) NOT NULL,
  Name    VARCHAR(100) NOT NULL
);
CREATE INDEX IX_N_GenBusPostGroup_Code ON N_GenBusPostGroup (Comp_Id, Code);

CREATE TABLE N_GenProdPostGroup (
  Id      VARCHAR(32) NOT NULL PRIMARY KEY,
  Comp_Id VARCHAR(10) NOT NULL,
  Code    VARCHAR(20) NOT NULL,
  Name    VARCHAR(100) NOT NULL
);
CREATE INDEX IX_N_GenProdPostGroup_Code ON N_GenProdPostGroup (Comp_Id, Code);

-- VATCalculationType: 0 charged, 1 reverse charge, 2 not subject to VAT.
-- The ledgers say whether the entry goes into the sales or the purchase VAT ledger (1) or into none (0).
CREATE TABLE G_VATPostingSetup (
  Id                   VARCHAR(32) NOT NULL PRIMARY KEY,
  Comp_Id              VARCHAR(10) NOT NULL,
  VATBus_PostingGroup  VARCHAR(32) NOT NULL,
  VATProd_PostingGroup VARCHAR(32) NOT NULL,
  VATPercent           AMOUNT NOT NULL DEFAULT 0,
  VATCalculationType   INTEGER NOT NULL DEFAULT 0,
  SalesVATLedger       INTEGER NOT NULL DEFAULT 1,
  PurchVATLedger       INTEGER NOT NULL DEFAULT 1
);
CREATE UNIQUE INDEX UX_G_VATPostingSetup ON G_VATPostingSetup (Comp_Id, VATBus_PostingGroup, VATProd_PostingGroup);

CREATE TABLE N_PaymentTerms (
  Id                 VARCHAR(32) NOT NULL PRIMARY KEY,
  Comp_Id            VARCHAR(10) NOT NULL,
  Code               VARCHAR(20) NOT NULL,
  Name               VARCHAR(100) NOT NULL,
  DueDateCalculation INTEGER NOT NULL DEFAULT 0   -- days
);
CREATE INDEX IX_N_PaymentTerms_Code ON N_PaymentTerms (Comp_Id, Code);

CREATE TABLE N_PaymentMethod (
  Id      VARCHAR(32) NOT NULL PRIMARY KEY,
  Comp_Id VARCHAR(10) NOT NULL,
  Code    VARCHAR(20) NOT NULL,
  Name    VARCHAR(100) NOT NULL
);
CREATE INDEX IX_N_PaymentMethod_Code ON N_PaymentMethod (Comp_Id, Code);

CREATE TABLE N_CashBankOperation (
  Id               VARCHAR(32) NOT NULL PRIMARY KEY,
  Comp_Id          VARCHAR(10) NOT NULL,
  BusinessGroup_Id VARCHAR(32) NOT NULL,
  PaymentMethod_Id VARCHAR(32) NOT NULL,
  Name             VARCHAR(100),
  DirectPay        INTEGER NOT NULL DEFAULT 0    -- 1 = paid in cash at once
);
CREATE UNIQUE INDEX UX_N_CashBankOperation ON N_CashBankOperation (Comp_Id, BusinessGroup_Id, PaymentMethod_Id);

-- A number is Prefix and then LastNo + 1, filled with zeros to as many digits as MaxNo has.
-- ManualNo 0: automatic numbers only. Kind 0 = documents, 1 = absolute numbers.
CREATE TABLE N_Series (
  Id       VARCHAR(32) NOT NULL PRIMARY KEY,
  Comp_Id  VARCHAR(10) NOT NULL,
  Code     VARCHAR(20) NOT NULL,
  Name     VARCHAR(100) NOT NULL,
  Prefix   VARCHAR(10),
  LastNo   INTEGER NOT NULL DEFAULT 0,
  MaxNo    INTEGER NOT NULL,
  ManualNo INTEGER NOT NULL DEFAULT 0,
  Kind     INTEGER NOT NULL DEFAULT 0
);
CREATE INDEX IX_N_Series_Code ON N_Series (Comp_Id, Code);
CREATE INDEX IX_N_Series_Kind ON N_Series (Comp_Id, Kind);

CREATE TABLE N_SubDocument (
  Id             VARCHAR(32) NOT NULL PRIMARY KEY,
  Comp_Id        VARCHAR(10) NOT NULL,
  Code           VARCHAR(20) NOT NULL,
  Name           VARCHAR(100) NOT NULL,
  SaleOrPurchase INTEGER NOT NULL DEFAULT 0,     -- 0 sales, 1 purchases
  Series_Id      VARCHAR(32),
  Post_Series_Id VARCHAR(32),
  PaymentMethod  VARCHAR(32)                     -- N_PaymentMethod.Id
);
CREATE INDEX IX_N_SubDocument_Code ON N_SubDocument (Comp_Id, Code);

CREATE TABLE N_PriceGroup (
  Id      VARCHAR(32) NOT NULL PRIMARY KEY,
  Comp_Id VARCHAR(10) NOT NULL,
  Code    VARCHAR(20) NOT NULL,
  Name    VARCHAR(100) NOT NULL
);
CREATE INDEX IX_N_PriceGroup_Code ON N_PriceGroup (Comp_Id, Code);

CREATE TABLE N_Contragent (
  Id                 VARCHAR(32) NOT NULL PRIMARY KEY,
  Comp_Id            VARCHAR(10) NOT NULL,
  Code               VARCHAR(20) NOT NULL,
  Name               VARCHAR(200),
  Bulstat            VARCHAR(13),
  VATNo              VARCHAR(20),
  Country            VARCHAR(100),
  City               VARCHAR(100),
  PostCode           VARCHAR(10),
  Address            VARCHAR(250),
  Contact            VARCHAR(100),
  Phone              VARCHAR(50),
  Email              VARCHAR(100),
  BankAccount        VARCHAR(34),
  PaymentTerms_Id    VARCHAR(32),
  PaymentMethodCode  VARCHAR(32),                -- N_PaymentMethod.Id
  CreditLimit        AMOUNT,
  Currency_Id        VARCHAR(10),
  PriceGroup_Id      VARCHAR(32),
  VATBusPostGroup_Id VARCHAR(32),
  GenBusPostGroup_Id VARCHAR(32),
  Series_Id          VARCHAR(32),
  Inactive           INTEGER NOT NULL DEFAULT 0,
  Note               TEXT,
  C_Businessgroup_Id VARCHAR(32),
  C_User_Id          VARCHAR(50),
  C_Datetime         TIMESTAMP
);
CREATE INDEX IX_N_Contragent_Code ON N_Contragent (Comp_Id, Code, Id);
CREATE INDEX IX_N_Contragent_Name ON N_Contragent (Comp_Id, Name, Id);
CREATE INDEX IX_N_Contragent_Bulstat ON N_Contragent (Comp_Id, Bulstat);

CREATE TABLE N_ItemGroup (
  Id        VARCHAR(32) NOT NULL PRIMARY KEY,
  Comp_Id   VARCHAR(10) NOT NULL,
  Code      VARCHAR(20) NOT NULL,
  Name      VARCHAR(100) NOT NULL,
  Parent_Id VARCHAR(32),                         -- null: a root
  SubIndex  INTEGER NOT NULL DEFAULT 0           -- order among its brothers
);
CREATE INDEX IX_N_ItemGroup_Parent ON N_ItemGroup (Comp_Id, Parent_Id, SubIndex);
CREATE INDEX IX_N_ItemGroup_Code ON N_ItemGroup (Comp_Id, Code);

CREATE TABLE N_Item (
  Id                  VARCHAR(32) NOT NULL PRIMARY KEY,
  Comp_Id             VARCHAR(10) NOT NULL,
  Code                VARCHAR(30) NOT NULL,
  Name                VARCHAR(250),
  ItemGroup_Id        VARCHAR(32),
  Type                INTEGER NOT NULL DEFAULT 1,  -- as the type of a document line
  Measure_Id          VARCHAR(32),                 -- the base measure
  VATProdPostGroup_Id VARCHAR(32),
  GenProdPostGroup_Id VARCHAR(32),
  UnitPrice           AMOUNT,                      -- list price, local currency, VAT excluded, base measure
  UnitCost            AMOUNT,
  MinQuantity         AMOUNT,
  Inactive            INTEGER NOT NULL DEFAULT 0,
  Note                TEXT,
  C_Businessgroup_Id  VARCHAR(32),
  C_User_Id           VARCHAR(50),
  C_Datetime          TIMESTAMP
);
CREATE INDEX IX_N_Item_Code ON N_Item (Comp_Id, Code, Id);
CREATE INDEX IX_N_Item_Name ON N_Item (Comp_Id, Name, Id);
CREATE INDEX IX_N_Item_Group ON N_Item (Comp_Id, ItemGroup_Id, Code);

CREATE TABLE N_ItemMeasure (
  Id                  VARCHAR(32) NOT NULL PRIMARY KEY,
  Comp_Id             VARCHAR(10) NOT NULL,
  Item_Id             VARCHAR(32) NOT NULL,
  Measure_Id          VARCHAR(32) NOT NULL,
  QtyPerUnitOfMeasure AMOUNT NOT NULL DEFAULT 1000000   -- base units in one of these; 1
);
CREATE UNIQUE INDEX UX_N_ItemMeasure ON N_ItemMeasure (Comp_Id, Item_Id, Measure_Id);

-- The nearest row wins: contractor, price group, everybody (both null); then the greatest MinQuantity not
-- above the line's; then the latest start. Side 0 = purchase, 1 = sale. Currency null = local.
CREATE TABLE N_ItemPrice (
  Id                VARCHAR(32) NOT NULL PRIMARY KEY,
  Comp_Id           VARCHAR(10) NOT NULL,
  Side              INTEGER NOT NULL DEFAULT 1,
  Item_Id           VARCHAR(32) NOT NULL,
  Contragent_Id     VARCHAR(32),
  PriceGroup_Id     VARCHAR(32),
  Measure_Id        VARCHAR(32) NOT NULL,
  Currency_Id       VARCHAR(10),
  MinQuantity       AMOUNT NOT NULL DEFAULT 0,
  StartDate         DATE,
  EndDate           DATE,
  UnitPrice         AMOUNT NOT NULL,
  PriceIncludingVAT INTEGER NOT NULL DEFAULT 0,
  AllowInvoiceDisc  INTEGER NOT NULL DEFAULT 1
);
CREATE INDEX IX_N_ItemPrice ON N_ItemPrice (Comp_Id, Item_Id, Side, Measure_Id, Contragent_Id, StartDate);

-- As prices; an item or a whole group. SpecialPrice above 0 replaces the price instead.
CREATE TABLE N_ItemDiscount (
  Id              VARCHAR(32) NOT NULL PRIMARY KEY,
  Comp_Id         VARCHAR(10) NOT NULL,
  Side            INTEGER NOT NULL DEFAULT 1,
  Item_Id         VARCHAR(32),
  ItemGroup_Id    VARCHAR(32),
  Contragent_Id   VARCHAR(32),
  PriceGroup_Id   VARCHAR(32),
  SubDocument_Id  VARCHAR(32),
  Measure_Id      VARCHAR(32),
  MinQuantity     AMOUNT NOT NULL DEFAULT 0,
  StartDate       DATE,
  EndDate         DATE,
  DiscountPercent AMOUNT NOT NULL DEFAULT 0,
  SpecialPrice    AMOUNT
);
CREATE INDEX IX_N_ItemDiscount_Item ON N_ItemDiscount (Comp_Id, Item_Id, Side);
CREATE INDEX IX_N_ItemDiscount_Group ON N_ItemDiscount (Comp_Id, ItemGroup_Id, Side);

-- Cross_Ref_Type 1 = a bar code of ours; 2 = the number that contractor Cross_Ref_TypeNo (a code) uses.
CREATE TABLE N_ItemCrossRef (
  Id               VARCHAR(32) NOT NULL PRIMARY KEY,
  Comp_Id          VARCHAR(10) NOT NULL,
  Item_Id          VARCHAR(32) NOT NULL,
  Measure_Id       VARCHAR(32),
  Cross_Ref_Type   INTEGER NOT NULL,
  Cross_Ref_No     VARCHAR(30) NOT NULL,
  Cross_Ref_TypeNo VARCHAR(20)
);
CREATE INDEX IX_N_ItemCrossRef_No ON N_ItemCrossRef (Comp_Id, Cross_Ref_No, Cross_Ref_Type);
CREATE INDEX IX_N_ItemCrossRef_Item ON N_ItemCrossRef (Comp_Id, Item_Id);
