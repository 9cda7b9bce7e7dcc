-- When a session began, for its absolute limit; from where users have logged in, for the throttling of log-ins.

ALTER TABLE srv_Session ADD COLUMN CreatedAt INTEGER NOT NULL DEFAULT 0;  -- seconds since 1970
UPDATE srv_Session SET CreatedAt = UsedAt;

CREATE TABLE srv_LogInFrom (
  Who    VARCHAR(200) NOT NULL PRIMARY KEY,
  LastAt INTEGER NOT NULL
);
