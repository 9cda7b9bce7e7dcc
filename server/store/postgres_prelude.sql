-- What the tables stand on in PostgreSQL. Texts are citext, which compares lower case; the collation orders what it
-- compares by character, as SQLite's collation KALVOR does, so that a range finds every text with a beginning.
CREATE EXTENSION IF NOT EXISTS citext;
CREATE COLLATION IF NOT EXISTS kalvor (provider = libc, lc_collate = 'C', lc_ctype = 'C.UTF-8');
CREATE OR REPLACE FUNCTION unicode(text) RETURNS integer LANGUAGE sql IMMUTABLE STRICT AS 'SELECT ascii($1)';
