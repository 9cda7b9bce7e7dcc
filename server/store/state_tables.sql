-- Who is connected and what they prepared. In a database of its own beside the company's, so that a long
-- transaction over documents holds up nobody's log-in or list.

CREATE TABLE srv_Session (
  Token            VARCHAR(64) NOT NULL PRIMARY KEY,   -- hash of the session text
  User_Id          VARCHAR(50) NOT NULL,
  Comp_Id          VARCHAR(10) NOT NULL,
  BusinessGroup_Id VARCHAR(32) NOT NULL,
  UsedAt           INTEGER NOT NULL                    -- seconds since 1970
);
CREATE INDEX srv_Session_UsedAt ON srv_Session (UsedAt);

CREATE TABLE srv_Provider (
  Session    VARCHAR(64) NOT NULL REFERENCES srv_Session (Token) ON DELETE CASCADE,
  Name       VARCHAR(64) NOT NULL,
  Definition BLOB,                                     -- null: made, not readied yet
  PRIMARY KEY (Session, Name)
);

-- A document that a session edits. Void once the session has been silent for long.
CREATE TABLE srv_DocumentLock (
  Comp_Id     VARCHAR(10) NOT NULL,
  Document_Id VARCHAR(64) NOT NULL,
  Form_Id     INTEGER NOT NULL,
  Session     VARCHAR(64) NOT NULL REFERENCES srv_Session (Token) ON DELETE CASCADE,
  PRIMARY KEY (Comp_Id, Document_Id)
);
CREATE INDEX srv_DocumentLock_Session ON srv_DocumentLock (Session);

CREATE TABLE srv_LogInFailure (
  Who    VARCHAR(200) NOT NULL PRIMARY KEY,
  Count  INTEGER NOT NULL,
  LastAt INTEGER NOT NULL
);
