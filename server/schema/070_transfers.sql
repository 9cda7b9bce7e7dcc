-- Which transfers were imported: the info files that hold what became of their data files.
CREATE TABLE S_TransferLog (
  Id                 VARCHAR(32) NOT NULL PRIMARY KEY,
  Comp_Id            VARCHAR(10) NOT NULL,
  FileName           VARCHAR(255) NOT NULL,
  C_Businessgroup_Id VARCHAR(32),
  C_User_Id          VARCHAR(20),
  C_Datetime         TIMESTAMP
);
CREATE INDEX IX_S_TransferLog_Company ON S_TransferLog (Comp_Id, C_Datetime);
