#!/usr/bin/env python3
"""By key events alone: an import filter is looked at, given a slip that is taken back, and tried on a sample file. Not a
row of the company is written. Usage: import_filters_tour.py BIN_DIR [PICTURES]"""
import os, sqlite3, sys, tempfile

from client_tour import expect, served, take_tour

bin_dir = sys.argv[1]


def contents(database):
    """Rows and the last used numbers, without what logging in and out writes."""
    with sqlite3.connect(database) as connection:
        connection.create_collation("KALVOR", lambda a, b: (a.lower() > b.lower()) - (a.lower() < b.lower()))
        tables = [name for name, in connection.execute("SELECT name FROM sqlite_master WHERE type = 'table'")
                  if not name.lower().startswith(("srv_", "sqlite_", "s_usersettings"))]
        counts = {name: connection.execute(f'SELECT COUNT(*) FROM "{name}"').fetchone()[0] for name in tables}
        return (counts, connection.execute("SELECT Id, LastNo FROM N_Series").fetchall(),
                connection.execute("SELECT Id, DataPort, DPSchema FROM S_DataPort").fetchall())


with tempfile.TemporaryDirectory() as work:
    pictures = sys.argv[2] if len(sys.argv) > 2 else os.path.join(work, "pictures")
    database = os.path.join(work, "demo.db")
    with served(bin_dir, database, os.path.join(work, "server.log")) as address:
        before = contents(database)
        expect("there are filters and invoices", before[0]["S_DataPort"] > 0 and before[0]["D_SaleInvoiceHeader"] > 0)
        take_tour(bin_dir, address, pictures, os.path.join(work, "documents"), "--import-filters")
        expect("nothing was written", contents(database) == before)
