-- Companies, who works in them and the settings they work with.

CREATE TABLE N_Company (
  Id       VARCHAR(10) NOT NULL PRIMARY KEY,
  Name     VARCHAR(200) NOT NULL,
  Bulstat  VARCHAR(13),
  VATNo    VARCHAR(20),
  City     VARCHAR(100),
  Address  VARCHAR(250),
  Manager  VARCHAR(100)
);

-- An object: a store, an office, a warehouse. Id is unique over all companies.
CREATE TABLE N_BusinessGroup (
  Id      VARCHAR(32) NOT NULL PRIMARY KEY,
  Comp_Id VARCHAR(10) NOT NULL,
  Code    VARCHAR(20) NOT NULL,
  Name    VARCHAR(200) NOT NULL,
  City    VARCHAR(100),
  Address VARCHAR(250)
);
CREATE INDEX IX_N_BusinessGroup_Code ON N_BusinessGroup (Comp_Id, Code);

CREATE TABLE N_Employee (
  Id       VARCHAR(32) NOT NULL PRIMARY KEY,
  Comp_Id  VARCHAR(10) NOT NULL,
  Code     VARCHAR(20) NOT NULL,
  Name     VARCHAR(200) NOT NULL,
  Position VARCHAR(100),
  Phone    VARCHAR(50)
);
CREATE INDEX IX_N_Employee_Code ON N_Employee (Comp_Id, Code);

-- Id is the user code. PasswordHash is made over the digest that the client sends, never over the password.
CREATE TABLE N_Users (
  Id           VARCHAR(50) NOT NULL,
  Comp_Id      VARCHAR(10) NOT NULL,
  Employee_Id  VARCHAR(32),
  Active       INTEGER NOT NULL DEFAULT 1,
  PasswordHash VARCHAR(200),
  PRIMARY KEY (Id, Comp_Id)
);
CREATE INDEX IX_N_Users_Company ON N_Users (Comp_Id, Id);

CREATE TABLE C_CompanySetup (
  Id              VARCHAR(10) NOT NULL PRIMARY KEY,   -- the company
  CheckBulstat    INTEGER NOT NULL DEFAULT 1,
  CheckTaxNo      INTEGER NOT NULL DEFAULT 1,
  PrecisionAmount INTEGER NOT NULL DEFAULT 2,
  PrecisionPrice  INTEGER NOT NULL DEFAULT 5,
  Currency_LCY    VARCHAR(10) NOT NULL
);

-- The groups and the measure are what a record without its own takes.
CREATE TABLE C_SalesSetup (
  Id                  VARCHAR(10) NOT NULL PRIMARY KEY,   -- the company
  ChangeCalculation   INTEGER NOT NULL DEFAULT 0,
  BusinessGroup_Id    VARCHAR(32),
  VATBusPostGroup_Id  VARCHAR(32),
  VATProdPostGroup_Id VARCHAR(32),
  GenBusPostGroup_Id  VARCHAR(32),
  GenProdPostGroup_Id VARCHAR(32),
  Measure_Id          VARCHAR(32),
  PaymentTerms_Id     VARCHAR(32),
  PaymentMethod_Id    VARCHAR(32),
  SubDocument_Id      VARCHAR(32)
);
