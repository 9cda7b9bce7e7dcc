-- What the server itself keeps beside the company's data and must change together with it.

-- Answers of calls that wrote, so that a call repeated with the same request id is answered and not run again.
CREATE TABLE srv_Request (
  User_Id VARCHAR(40) NOT NULL,
  Comp_Id VARCHAR(40) NOT NULL,
  Request_Id VARCHAR(64) NOT NULL,
  Operation VARCHAR(64) NOT NULL,
  Answer BLOB NOT NULL,
  CreatedAt TIMESTAMP NOT NULL,
  PRIMARY KEY (User_Id, Comp_Id, Request_Id)
);
CREATE INDEX srv_Request_CreatedAt ON srv_Request (CreatedAt);

-- Generations by name: one that grew tells every server to read what it keeps in memory again.
CREATE TABLE srv_Generation (
  Name VARCHAR(40) NOT NULL PRIMARY KEY,
  Number INTEGER NOT NULL
);
INSERT INTO srv_Generation (Name, Number) VALUES ('metadata', 1);
