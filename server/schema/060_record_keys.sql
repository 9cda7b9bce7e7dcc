-- One key for records that are known by several columns, so that forms can edit them.
ALTER TABLE S_Rights ADD COLUMN Row_Id VARCHAR(80);
UPDATE S_Rights SET Row_Id = User_Id || '_' || Comp_Id || '_' || Form_Id;
CREATE INDEX IX_S_Rights_Row ON S_Rights (Row_Id);
CREATE TRIGGER TR_S_Rights_Row AFTER INSERT ON S_Rights WHEN NEW.Row_Id IS NULL BEGIN
  UPDATE S_Rights SET Row_Id = NEW.User_Id || '_' || NEW.Comp_Id || '_' || NEW.Form_Id
  WHERE User_Id = NEW.User_Id AND Comp_Id = NEW.Comp_Id AND Form_Id = NEW.Form_Id;
END;

ALTER TABLE S_Forms ADD COLUMN Row_Id VARCHAR(40);
UPDATE S_Forms SET Row_Id = ID || '_' || Ds_Index;
CREATE INDEX IX_S_Forms_Row ON S_Forms (Row_Id);
CREATE TRIGGER TR_S_Forms_Row AFTER INSERT ON S_Forms WHEN NEW.Row_Id IS NULL BEGIN
  UPDATE S_Forms SET Row_Id = NEW.ID || '_' || NEW.Ds_Index WHERE ID = NEW.ID AND Ds_Index = NEW.Ds_Index;
END;

ALTER TABLE S_FieldList ADD COLUMN Row_Id VARCHAR(40);
UPDATE S_FieldList SET Row_Id = SQL_ID || '_' || FieldIndex;
CREATE INDEX IX_S_FieldList_Row ON S_FieldList (Row_Id);
CREATE TRIGGER TR_S_FieldList_Row AFTER INSERT ON S_FieldList WHEN NEW.Row_Id IS NULL BEGIN
  UPDATE S_FieldList SET Row_Id = NEW.SQL_ID || '_' || NEW.FieldIndex
  WHERE SQL_ID = NEW.SQL_ID AND FieldIndex = NEW.FieldIndex;
END;

ALTER TABLE S_UserGroups ADD COLUMN Row_Id VARCHAR(100);
UPDATE S_UserGroups SET Row_Id = User_Id || '_' || Comp_Id || '_' || BusinessGroup_Id;
CREATE INDEX IX_S_UserGroups_Row ON S_UserGroups (Row_Id);
CREATE TRIGGER TR_S_UserGroups_Row AFTER INSERT ON S_UserGroups WHEN NEW.Row_Id IS NULL BEGIN
  UPDATE S_UserGroups SET Row_Id = NEW.User_Id || '_' || NEW.Comp_Id || '_' || NEW.BusinessGroup_Id
  WHERE User_Id = NEW.User_Id AND Comp_Id = NEW.Comp_Id AND BusinessGroup_Id = NEW.BusinessGroup_Id;
END;
