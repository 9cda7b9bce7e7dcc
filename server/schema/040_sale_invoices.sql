-- Sale invoices. Amounts of the header are the sums of its lines, VAT rounded once a VAT group.

-- Currency_Id null = local currency, CurrencyFactor = local currency for one unit of the document's.
-- DocStatus: 0 open, 1 finished, 2 cancelled.
CREATE TABLE D_SaleInvoiceHeader (
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
  C_Datetime         TIMESTAMP
);
CREATE INDEX IX_D_SaleInvoiceHeader_Date ON D_SaleInvoiceHeader (Comp_Id, DocumentDate, DocumentNo, Id);
CREATE INDEX IX_D_SaleInvoiceHeader_No ON D_SaleInvoiceHeader (Comp_Id, DocumentNo, Id);
CREATE INDEX IX_D_SaleInvoiceHeader_Contragent
  ON D_SaleInvoiceHeader (Comp_Id, Contragent_Id, DocumentDate, DocumentNo, Id);
CREATE INDEX IX_D_SaleInvoiceHeader_Group
  ON D_SaleInvoiceHeader (Comp_Id, C_Businessgroup_Id, DocumentDate, DocumentNo, Id);

CREATE TABLE D_SaleInvoiceLine (
  Id                  VARCHAR(32) NOT NULL PRIMARY KEY,
  Comp_Id             VARCHAR(10) NOT NULL,
  Master_Id           VARCHAR(32) NOT NULL
                      REFERENCES D_SaleInvoiceHeader (Id) ON DELETE CASCADE DEFERRABLE INITIALLY DEFERRED,
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
CREATE INDEX IX_D_SaleInvoiceLine_Master ON D_SaleInvoiceLine (Master_Id, Line_No);
