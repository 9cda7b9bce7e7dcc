#!/usr/bin/env python3
"""A year of invoices comes in by files: the real retail journal, imported by the client without a display, as transfers
of the command line, into a company that has its items and customers and nothing else. The same 66 documents and 999
lines to the cent from every form of the file; what is not found is in the log row by row; and what each import action
promises.

Exits 77 (skipped) where the journal is not there."""
import collections, hashlib, os, shutil, sqlite3, subprocess, sys, tempfile, time, zipfile
from xml.sax.saxutils import escape

from client_tour import expect, run, served

SKIPPED = 77
bin_dir, source_dir = sys.argv[1], sys.argv[2]
to_sheet = sys.argv[3] if len(sys.argv) > 3 else None
sample = os.path.join(source_dir, "..", "shared", "samples", "retail.py")
if not os.path.exists(sample):
    print("skipped: the retail journal is not here")
    sys.exit(SKIPPED)

MICRO = 1_000_000
FALLBACK = ("[DEFAULT_SELECTOR]1=2|0|||1|ClientSource;ClientTarget|14000|N_Contragent|N_Contragent.Code#=#8#@0"
            "[##DEFAULT_SELECTOR]")
work = tempfile.mkdtemp()
transfer = os.path.join(bin_dir, f"import{os.getpid()}")


def connected(db):
    connection = sqlite3.connect(db)
    connection.create_collation("KALVOR", lambda a, b: (a.lower() > b.lower()) - (a.lower() < b.lower()))
    return connection


def imported(db, item, data, extra="", action=None, key=False, kill_after=0):
    """Runs the transfer of one file; gives the info file's text and the two logs' texts. kill_after: the client is
    killed when so many documents are there."""
    name = "data" + os.path.splitext(data)[1]
    with connected(db) as connection:
        text, = connection.execute("SELECT DataPort FROM S_DataPort WHERE Id = ?", (item,)).fetchone()
        if action is not None:
            text = text.replace("IMPORT_ACTION=3", f"IMPORT_ACTION={action}")
        if key:
            # Every cell of a key entry is a key: the item's name is not, the lines have descriptions of their own.
            text = (text.replace("4=2|0|", "4=2|1|").replace("ItemSource=Type,Name,", "ItemSource=Type,")
                    .replace("ItemTarget=Type,Description,", "ItemTarget=Type,"))
        connection.execute("UPDATE S_TransferList SET Dataport = ? WHERE Id = ?", (text + extra, item))
    shutil.rmtree(transfer, ignore_errors=True)
    os.makedirs(transfer)
    shutil.copy(data, os.path.join(transfer, name))
    with open(data, "rb") as file:
        check = sum(hashlib.md5(file.read()).digest())
    info = os.path.join(transfer, f"Info_{os.path.basename(transfer)}.xml")
    with open(info, "w", encoding="utf-8") as file:
        file.write(f"<Info><Table><Id>{item}</Id><FileName>{name}</FileName><Status>0</Status><CheckSum>{check}</CheckSum>"
                   "<Error/></Table></Info>")
    documents = tempfile.mkdtemp(dir=work)
    with served(bin_dir, db, os.path.join(work, "server.log")) as address:
        client = subprocess.Popen(
            [os.path.join(bin_dir, "kalvor"), "--server", address, "-u", "SUPERVSR", "-p", "demo", "-b", "5", "-c", "3",
             "-a", "xmlTransfer", "-f", os.path.basename(transfer)],
            env=dict(os.environ, QT_QPA_PLATFORM="offscreen", KALVOR_DOCUMENTS=documents), stderr=subprocess.DEVNULL)
        while kill_after and client.poll() is None and totals(db)[0] < kill_after:
            time.sleep(0.01)
        if kill_after:
            client.kill()
        code = client.wait(280)
    expect(f"{item}: the client ends by itself", kill_after or code == 0)
    logs = {"Info_": "", "": ""}
    folder = os.path.join(documents, "Kalvor", "ImportLog")
    for file in os.listdir(folder) if os.path.isdir(folder) else []:
        with open(os.path.join(folder, file), "rb") as log:
            logs["Info_" if file.startswith("Info_") else ""] += log.read().decode("utf-8", "replace")
    with open(info, encoding="utf-8") as file:
        return file.read(), logs["Info_"], logs[""]


def totals(db):
    """Documents, lines, and the sum of the line totals in millionths."""
    with connected(db) as connection:
        documents, = connection.execute("SELECT COUNT(*) FROM D_SaleInvoiceHeader WHERE Comp_Id = '3'").fetchone()
        lines, total = connection.execute(
            "SELECT COUNT(*), TOTAL(TotalPrice) FROM D_SaleInvoiceLine WHERE Comp_Id = '3'").fetchone()
    return documents, lines, int(total)


def fresh(name, remove_item=None):
    db = os.path.join(work, name + ".db")
    shutil.copy(base, db)
    if remove_item:
        with connected(db) as connection:
            connection.execute("DELETE FROM N_Item WHERE Comp_Id = '3' AND Code = ?", (remove_item,))
    return db


def write_xlsx(path, rows):
    """Every figure as a number cell, every other cell as an inline text."""
    def cell(value):
        try:
            return f"<c><v>{float(value.replace(',', '.')):.15g}</v></c>" if "." not in value else None
        except ValueError:
            return None
    def text(value):
        return f'<c t="inlineStr"><is><t xml:space="preserve">{escape(value)}</t></is></c>'
    body = "".join("<row>" + "".join((cell(v) if i in (5, 6) else None) or text(v) for i, v in enumerate(row)) + "</row>"
                   for row in rows)
    main = "http://schemas.openxmlformats.org/spreadsheetml/2006/main"
    relation = "http://schemas.openxmlformats.org/officeDocument/2006/relationships"
    package = "http://schemas.openxmlformats.org/package/2006"
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as file:
        file.writestr("[Content_Types].xml",
                      f'<Types xmlns="{package}/content-types"><Default Extension="rels" '
                      'ContentType="application/vnd.openxmlformats-package.relationships+xml"/>'
                      '<Default Extension="xml" ContentType="application/xml"/></Types>')
        file.writestr("_rels/.rels", f'<Relationships xmlns="{package}/relationships"><Relationship Id="rId1" '
                                     f'Type="{relation}/officeDocument" Target="xl/workbook.xml"/></Relationships>')
        file.writestr("xl/workbook.xml", f'<workbook xmlns="{main}" xmlns:r="{relation}"><sheets><sheet name="Данни" '
                                         'sheetId="1" r:id="rId1"/></sheets></workbook>')
        file.writestr("xl/_rels/workbook.xml.rels",
                      f'<Relationships xmlns="{package}/relationships"><Relationship Id="rId1" Type="{relation}/worksheet" '
                      'Target="worksheets/sheet1.xml"/></Relationships>')
        file.writestr("xl/worksheets/sheet1.xml", f'<worksheet xmlns="{main}"><sheetData>{body}</sheetData></worksheet>')


def write_xml(path, rows):
    with open(path, "w", encoding="utf-8") as file:
        file.write("<journal>")
        for row in rows:
            file.write("<line>" + "".join(f"<f>{escape(value)}</f>" for value in row) + "</line>")
        file.write("</journal>")


try:
    text, fixed, tables = (os.path.join(work, name) for name in ("text.txt", "fixed.txt", "tables"))
    run(sys.executable, sample, "--text", text, "--fixed", fixed, "--tables", tables)
    with open(text, encoding="cp1251", newline="") as file:
        rows = [line.rstrip("\r\n").split(";") for line in file]
    xlsx, xml, xls = (os.path.join(work, "journal" + kind) for kind in (".xlsx", ".xml", ".xls"))
    write_xlsx(xlsx, rows)
    write_xml(xml, rows[1:])
    cents = sum(round(int(r[5]) * round(float(r[6].replace(",", ".")) * 1000) / 10) for r in rows[1:]) * 10_000
    without_customer = [number for number, r in enumerate(rows[1:], 2) if not r[2]]

    base = os.path.join(work, "base.db")
    server = os.path.join(bin_dir, "kalvor-server")
    run(server, "init", "--db", base)
    run(server, "load", "N_Item", os.path.join(tables, "items.csv"), "--db", base, "--company", "3")
    run(server, "load", "N_Contragent", os.path.join(tables, "customers.csv"), "--db", base, "--company", "3")

    sources = [("INVOICES_TEXT", text), ("INVOICES_FIXED", fixed), ("INVOICES_SHEET", xlsx), ("INVOICES_SHEET", xml)]
    if to_sheet:
        run(to_sheet, text, xls)
        sources.append(("INVOICES_SHEET", xls))
    for item, source in sources:
        db = fresh(os.path.basename(source))
        info, _, _ = imported(db, item, source, FALLBACK)
        expect(f"{os.path.basename(source)}: status 1", "<Status>1</Status>" in info)
        expect(f"{os.path.basename(source)}: 66 documents, 999 lines, {cents / MICRO:.2f}", totals(db) == (66, 999, cents))

    db = fresh("strict")
    imported(db, "INVOICES_TEXT", text)
    documents, lines, _ = totals(db)
    info, handled, errors = imported(db, "INVOICES_TEXT", text)
    expect("a row without customer fails its document, and is in the log by its number",
           all(f"Ред No: {number - 1}\r\n" in errors or f"Ред No: {number}\r\n" in errors for number in without_customer[:1]))
    print(f"without the fallback: {documents} documents, {lines} lines")

    for action, key, expected in [(0, False, (132, 1998)), (1, True, (66, 999)), (2, True, (66, 999)), (3, True, (66, 999)),
                                  (4, False, (132, 1998))]:
        db = fresh(f"again{action}")
        imported(db, "INVOICES_TEXT", text, FALLBACK)
        _, handled, _ = imported(db, "INVOICES_TEXT", text, FALLBACK, action, key)
        documents, lines, _ = totals(db)
        print(f"imported again with action {action}: {documents} documents, {lines} lines")
        expect(f"as the action promises: {expected}", (documents, lines) == expected)
        if action == 3:
            expect("66 are passed over", handled.count("Пропускане на запис ") == 66)
    db = fresh("nothing")
    _, handled, _ = imported(db, "INVOICES_TEXT", text, FALLBACK, 1)
    expect("action 1 into an empty company passes over all", totals(db)[0] == 0 and handled.count("Пропускане") == 66)

    db = fresh("missing", rows[1][3])
    _, handled, errors = imported(db, "INVOICES_TEXT", text, FALLBACK)
    expect("an item that does not exist is named in the log", rows[1][3] in errors and f"536365 -> Неуспешна" in handled)

    # The file as it came from the till: commas, some of them inside quotes, which mean nothing here.
    raw = os.path.join(os.path.dirname(sample), "online-retail-999.csv")
    with open(raw, encoding="latin-1") as file:
        quoted = [(number, line.split(",")[0]) for number, line in enumerate(file, 1) if line.count(",") > 7]
    db = fresh("raw")
    with connected(db) as connection:
        text_filter, = connection.execute("SELECT DataPort FROM S_DataPort WHERE Id = 'INVOICES_TEXT'").fetchone()
        for old, new in [("SEMICOLON", "COMMA"), ("dd.mm.yyyy", "m/d/yy"), ("DATE_SEPARATOR=.", "DATE_SEPARATOR=/"),
                         ("DECIMAL_SEPARATOR=,", "DECIMAL_SEPARATOR=."), ("2=1|0|VATDate", "9=1|0|VATDate"),
                         ("2=1|0|DocumentDate", "5=1|0|DocumentDate"), ("#8#3", "#8#7"), ("4=2|0", "2=2|0"), ("#8#4", "#8#2"),
                         ("5=1|0|Description", "3=1|0|Description"), ("6=1|0|Quantity", "4=1|0|Quantity"),
                         ("7=1|0|UnitPrice", "6=1|0|UnitPrice")]:
            text_filter = text_filter.replace(old, new)
        connection.execute("UPDATE S_DataPort SET DataPort = ? WHERE Id = 'INVOICES_TEXT'", (text_filter,))
    _, handled, errors = imported(db, "INVOICES_TEXT", raw, FALLBACK)
    for number, invoice in quoted:
        expect(f"row {number} with a comma in quotes fails invoice {invoice} and is told by its number",
               f"Обработка на запис: {invoice} -> Неуспешна" in handled and "Ред No: " in errors)
    print(f"raw file: {totals(db)[0]} documents, {handled.count('Неуспешна')} refused")

    db = fresh("killed")
    imported(db, "INVOICES_TEXT", text, FALLBACK, kill_after=10)
    whole = collections.Counter(r[0] for r in rows[1:])
    with connected(db) as connection:
        there = connection.execute("SELECT DocumentNo, (SELECT COUNT(*) FROM D_SaleInvoiceLine WHERE Master_Id = h.Id) "
                                   "FROM D_SaleInvoiceHeader h WHERE Comp_Id = '3'").fetchall()
    expect(f"the {len(there)} documents of a killed client are whole",
           10 <= len(there) < 66 and all(whole[number] == lines for number, lines in there))
    imported(db, "INVOICES_TEXT", text, FALLBACK)
    expect("a second run with action 3 completes them", totals(db) == (66, 999, cents))
finally:
    shutil.rmtree(work, ignore_errors=True)
    shutil.rmtree(transfer, ignore_errors=True)
