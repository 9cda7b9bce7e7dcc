-- What posting leaves behind, as far as the checks before posting read it.

-- What a contractor owes (Gen_PostingType 1, sales) or is owed (0, purchases) by a document. Amounts of credit memos
-- and payments are negative on the sales side. Remaining is what is not settled yet; Opened 0 = settled.
-- DocumentType: 0 invoice, 1 credit memo, 2 store document, 3 journal entry. Currency_Id null = local currency.
CREATE TABLE G_ContragentEntry (
  Id               VARCHAR(32) NOT NULL PRIMARY KEY,
  Comp_Id          VARCHAR(10) NOT NULL,
  Businessgroup_Id VARCHAR(32),
  Contragent_Id    VARCHAR(32) NOT NULL,
  Gen_PostingType  INTEGER NOT NULL,
  DocumentType     INTEGER NOT NULL,
  Document_Id      VARCHAR(32),
  DocumentNo       VARCHAR(20),
  DocumentDate     DATE,
  PostingDate      DATE NOT NULL,
  DueDate          DATE,
  PaymentMethod_Id VARCHAR(32),
  Currency_Id      VARCHAR(10),
  Amount           AMOUNT NOT NULL,
  Amount_LCY       AMOUNT NOT NULL,
  Remaining        AMOUNT NOT NULL,
  Remaining_LCY    AMOUNT NOT NULL,
  Opened           INTEGER NOT NULL DEFAULT 1
);
CREATE INDEX IX_G_ContragentEntry_Open
  ON G_ContragentEntry (Comp_Id, Contragent_Id, Opened, Gen_PostingType, DueDate, Remaining_LCY);

-- What came in (positive) and went out (negative) of an item, in base units, and at what cost in local currency.
-- An opening balance has no document.
CREATE TABLE G_ItemValueEntry (
  Id               VARCHAR(32) NOT NULL PRIMARY KEY,
  Comp_Id          VARCHAR(10) NOT NULL,
  Businessgroup_Id VARCHAR(32),
  Item_Id          VARCHAR(32) NOT NULL,
  DocumentType     INTEGER,
  Document_Id      VARCHAR(32),
  DocumentNo       VARCHAR(20),
  PostingDate      DATE NOT NULL,
  Quantity         AMOUNT NOT NULL,
  CostAmount       AMOUNT NOT NULL
);
CREATE INDEX IX_G_ItemValueEntry_Item ON G_ItemValueEntry (Comp_Id, Item_Id, PostingDate, Quantity, CostAmount);

-- A discount is looked for by contractor too: an item may have one for each of thousands.
DROP INDEX IX_N_ItemDiscount_Item;
DROP INDEX IX_N_ItemDiscount_Group;
CREATE INDEX IX_N_ItemDiscount_Item ON N_ItemDiscount (Comp_Id, Item_Id, Side, Contragent_Id);
CREATE INDEX IX_N_ItemDiscount_Group ON N_ItemDiscount (Comp_Id, ItemGroup_Id, Side, Contragent_Id);
