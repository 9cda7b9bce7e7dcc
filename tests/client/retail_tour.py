#!/usr/bin/env python3
"""A real retail journal, from its files to the saved change: loads its four tables into the empty company, drives the
client by key events through them (66 invoices listed, C* leaves the cancellations, invoice 536365 opens, a quantity
changes, it is saved), then looks into the database and asks as a second workstation would.

Exits 77 (skipped) where the journal is not there."""
import os, shutil, sqlite3, sys, tempfile

from client_tour import expect, run, served, take_tour

SKIPPED = 77
bin_dir, source_dir = sys.argv[1], sys.argv[2]
keep = sys.argv[3] if len(sys.argv) > 3 else None
sample = os.path.join(source_dir, "..", "shared", "samples", "retail.py")
if not os.path.exists(sample):
    print("skipped: the retail journal is not here")
    sys.exit(SKIPPED)


work = tempfile.mkdtemp()
try:
    server_program = os.path.join(bin_dir, "kalvor-server")
    db = os.path.join(work, "retail.db")
    tables = os.path.join(work, "tables")
    run(sys.executable, sample, "--tables", tables)
    run(server_program, "init", "--db", db)
    for table, name in [("N_Item", "items"), ("N_Contragent", "customers"), ("D_SaleInvoiceHeader", "invoices"),
                        ("D_SaleInvoiceLine", "lines")]:
        extra = ["--set", "Currency_Id=GBP"] if name == "invoices" else []
        print(run(server_program, "load", table, os.path.join(tables, name + ".csv"), "--db", db, "--company", "3", *extra).strip())
    documents = os.path.join(work, "documents")
    os.makedirs(os.path.join(documents, "Kalvor"))
    with open(os.path.join(documents, "Kalvor", "kalvor-tour.ini"), "w", encoding="utf-8") as ini:
        ini.write("[User]\nUser=SUPERVSR\nObject=5\nCompany=3\n")
    pictures = keep or os.path.join(work, "pictures")
    with served(bin_dir, db, os.path.join(work, "server.log")) as address:
        take_tour(bin_dir, address, pictures, documents, "--retail")

    with sqlite3.connect(db) as connection:
        connection.create_collation("KALVOR", lambda a, b: (a.lower() > b.lower()) - (a.lower() < b.lower()))
        header = connection.execute(
            "SELECT Id, C_User_Id, C_Datetime, C_Businessgroup_Id, TotalValue FROM D_SaleInvoiceHeader "
            "WHERE Comp_Id = '3' AND DocumentNo = '536365'").fetchone()
        lines = connection.execute("SELECT Quantity, UnitPrice, TotalPrice FROM D_SaleInvoiceLine WHERE Master_Id = ? "
                                   "ORDER BY Line_No", (header[0],)).fetchall()
    expect("one line has the new quantity 11", sum(quantity == 11_000_000 for quantity, _, _ in lines) == 1)
    expect("its total follows", all(total == round(quantity * price / 1_000_000 / 10_000) * 10_000
                                    for quantity, price, total in lines))
    expect("the document's value is the sum of its lines", header[4] == sum(total for _, _, total in lines))
    expect("the audit columns say who, when and where", header[1] == "SUPERVSR" and bool(header[2]) and header[3] == "5")
finally:
    shutil.rmtree(work, ignore_errors=True)
