-- What forms are made of, and what a user may do with them. All of it is data that an administrator edits.

CREATE TABLE S_QueryList (
  Id            INTEGER NOT NULL PRIMARY KEY,
  Description   VARCHAR(200),
  Form_Id       INTEGER NOT NULL,
  Ds_Index      INTEGER NOT NULL,      -- 0 master, 1.. details, -1 asked for without a form
  Comment       TEXT,
  SqlText       TEXT NOT NULL,         -- one SELECT without outer WHERE or ORDER BY; WHERE only over :Parameters
  BaseTable     VARCHAR(64),           -- the table that updates go to
  KeyField      VARCHAR(130),          -- qualified, breaks ties in every order
  CompanyField  VARCHAR(130),          -- qualified; null: not company data
  DefaultOrder  VARCHAR(500)
);
CREATE UNIQUE INDEX UX_S_QueryList_Form ON S_QueryList (Form_Id, Ds_Index);

CREATE TABLE S_FieldList (
  SQL_ID          INTEGER NOT NULL,
  FieldName       VARCHAR(64) NOT NULL,
  Caption         VARCHAR(200),
  FieldType       VARCHAR(2),
  Required        VARCHAR(1),
  Updatable       VARCHAR(1),
  Visible         VARCHAR(1),
  Filterable      VARCHAR(1),
  ReadOnly        VARCHAR(1),
  CopyField       VARCHAR(1),
  CaptionML       VARCHAR(500),
  DisplayFormat   VARCHAR(50),
  Origin          VARCHAR(64),
  FieldIndex      INTEGER NOT NULL,
  FieldFilter     VARCHAR(130),
  DefaultValue    VARCHAR(200),
  OptionCaption   VARCHAR(1000),
  SelectorDesc    TEXT,
  OptionCaptionML TEXT,
  FlowFieldDescr  TEXT,
  PRIMARY KEY (SQL_ID, FieldIndex)
);
CREATE UNIQUE INDEX UX_S_FieldList_Name ON S_FieldList (SQL_ID, FieldName);

-- One row a dataset of a form; the row of dataset 0 describes the form itself.
CREATE TABLE S_Forms (
  ID            INTEGER NOT NULL,
  Caption       VARCHAR(200) NOT NULL,
  ClassName     VARCHAR(64),
  CaptionFields VARCHAR(200),
  IntegerValue  INTEGER,
  TextValue     VARCHAR(200),
  BaseTable     VARCHAR(64),
  Ds_Index      INTEGER NOT NULL,
  FormFilter    TEXT,
  OrderBy       VARCHAR(500),
  LineColors    TEXT,
  PRIMARY KEY (ID, Ds_Index)
);

CREATE TABLE S_Rights (
  User_Id        VARCHAR(50) NOT NULL,
  Comp_Id        VARCHAR(10) NOT NULL,
  Form_Id        INTEGER NOT NULL,
  ReadRight      INTEGER NOT NULL DEFAULT 0,
  EditRight      INTEGER NOT NULL DEFAULT 0,
  InsertRight    INTEGER NOT NULL DEFAULT 0,
  DeleteRight    INTEGER NOT NULL DEFAULT 0,
  FinishRight    INTEGER NOT NULL DEFAULT 0,
  PrintRight     INTEGER NOT NULL DEFAULT 0,
  ExportRight    INTEGER NOT NULL DEFAULT 0,
  EditPropsRight INTEGER NOT NULL DEFAULT 0,
  AnnulRight     INTEGER NOT NULL DEFAULT 0,
  SecurityFilter TEXT,
  PRIMARY KEY (User_Id, Comp_Id, Form_Id)
);

-- The order of the columns is part of the interface: the client's insert names none of the first six.
CREATE TABLE s_UserSettings (
  Id                 VARCHAR(50) NOT NULL,
  Comp_Id            VARCHAR(10) NOT NULL,
  Settings           TEXT,
  C_Businessgroup_Id VARCHAR(32),
  C_User_Id          VARCHAR(50),
  C_dateTime         TIMESTAMP,
  UserActions        TEXT,
  PRIMARY KEY (Id, Comp_Id)
);

-- The objects (business groups) that a user may log in to.
CREATE TABLE S_UserGroups (
  User_Id          VARCHAR(50) NOT NULL,
  Comp_Id          VARCHAR(10) NOT NULL,
  BusinessGroup_Id VARCHAR(32) NOT NULL,
  PRIMARY KEY (User_Id, Comp_Id, BusinessGroup_Id)
);
CREATE INDEX IX_S_UserGroups_Group ON S_UserGroups (Comp_Id, BusinessGroup_Id, User_Id);

CREATE TABLE S_AppPrintForms (
  Id           VARCHAR(32) NOT NULL PRIMARY KEY,
  PrintForm_Id VARCHAR(32) NOT NULL,
  Form_Id      INTEGER NOT NULL,       -- always even: the list's form id
  Comp_Id      VARCHAR(10) NOT NULL,
  PF_Type      INTEGER NOT NULL DEFAULT 0,
  DefaultPF    INTEGER NOT NULL DEFAULT 0,
  SubDoc_Id    VARCHAR(32),            -- null: every document sub-type
  Name         VARCHAR(200),
  PrintForm    BLOB
);
CREATE INDEX IX_S_AppPrintForms_Form ON S_AppPrintForms (Comp_Id, Form_Id, PF_Type);

CREATE TABLE S_PrintDocuments (
  Id             VARCHAR(32) NOT NULL PRIMARY KEY,
  PF_Id          VARCHAR(32) NOT NULL,
  Form_id        INTEGER NOT NULL,
  Copies         INTEGER NOT NULL DEFAULT 1,
  PF_Type        INTEGER NOT NULL DEFAULT 0,
  Doc_Type       INTEGER NOT NULL,
  SaleOrPurchase INTEGER NOT NULL,
  SubDoc_Id      VARCHAR(32),
  Comp_Id        VARCHAR(10) NOT NULL
);
CREATE INDEX IX_S_PrintDocuments_Kind ON S_PrintDocuments (Comp_Id, SaleOrPurchase, SubDoc_Id);

CREATE TABLE S_DataPort (
  Id          VARCHAR(32) NOT NULL PRIMARY KEY,
  Form_Id     INTEGER NOT NULL,
  DataPort    TEXT,
  Description VARCHAR(200),
  DPSchema    TEXT
);
CREATE INDEX IX_S_DataPort_Form ON S_DataPort (Form_Id);

CREATE TABLE S_TransferList (
  Id          VARCHAR(32) NOT NULL PRIMARY KEY,
  Form_Id     INTEGER NOT NULL,
  Dataport    TEXT,
  DPSchema    TEXT
);

CREATE TABLE S_FiscalPrinterSetup (
  ID          VARCHAR(32) NOT NULL PRIMARY KEY,
  PrinterType VARCHAR(64) NOT NULL
);

CREATE TABLE S_ReferenceTable (
  PK_Table VARCHAR(64) NOT NULL,
  FK_Table VARCHAR(64) NOT NULL,
  PRIMARY KEY (PK_Table, FK_Table)
);
