#!/usr/bin/env python3
"""A nightly run of the client against a server with TLS: it trusts what it was told to trust, refuses everything else with
a reason and an exit code, and never waits for a person."""
import os, re, shutil, subprocess, sys, tempfile

from client_tour import expect, run, served

bin_dir = sys.argv[1]
work = tempfile.mkdtemp()
UNTRUSTED, BAD_ARGUMENTS = 255, 2
LOG_IN = "event=log_in "


def client(address, *options):
    """Exit code, stderr and what is kept of servers, of a client that was never here before."""
    documents = tempfile.mkdtemp(dir=work)
    ended = subprocess.run(
        [os.path.join(bin_dir, "kalvor"), "--server", address, *options, "-u", "SUPERVSR", "-p", "demo", "-b", "1", "-c", "1",
         "-a", "xmlTransfer", "-f", "nothing"],
        env=dict(os.environ, QT_QPA_PLATFORM="offscreen", KALVOR_DOCUMENTS=documents), stderr=subprocess.PIPE, text=True,
        timeout=30)
    kept = os.path.join(documents, "Kalvor", "kalvor.ini")
    if not os.path.exists(kept):
        return ended.returncode, ended.stderr, ""
    with open(kept, encoding="utf-8") as file:
        return ended.returncode, ended.stderr, file.read()


try:
    database, log = os.path.join(work, "a.db"), os.path.join(work, "server.log")
    server = os.path.join(bin_dir, "kalvor-server")
    with served(bin_dir, database, log, "--tls") as address:
        fingerprint = run(server, "fingerprint", "--db", database).strip()
        half = fingerprint[:23]
        logged = lambda: open(log, encoding="utf-8").read()
        expect("the log names the fingerprint", re.search(r"event=listening .*fingerprint=" + fingerprint, logged()))

        code, said, kept = client(address, "--tls")
        expect("an unknown server is refused, by its fingerprint", code == UNTRUSTED and half in said)
        code, said, kept = client(address, "--tls", "--fingerprint", "5A:" * 31 + "5A")
        expect("another one than was given is refused", code == UNTRUSTED and half in said and "5A:5A" in said)
        code, said, kept = client(address, "--tls", "--fingerprint", "AB:CD")
        expect("half a fingerprint is no fingerprint", code == BAD_ARGUMENTS and "--fingerprint" in said)
        code, said, kept = client(address)
        expect("who does not encrypt is told to", code == UNTRUSTED)
        expect("none of them has logged in", LOG_IN not in logged())
        code, said, kept = client(address, "--tls", "--fingerprint", fingerprint.lower().replace(":", ""))
        expect("the right one is let in", code == 0 and logged().count(LOG_IN) == 1 and "result=0" in logged())
        expect("that is kept for this server alone", f"[ServerEncryption]\n{address}=tls" in kept)
    code, said, kept = client(address, "--tls")
    expect("without a server it ends, too", code == UNTRUSTED and "Няма връзка" in said)
    again = run(server, "fingerprint", "--db", database).strip()
    expect("the certificate stays", again == fingerprint)
finally:
    shutil.rmtree(work, ignore_errors=True)
