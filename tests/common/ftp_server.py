"""An FTP server for one folder that writes down what it is asked and cuts one download short.

ftp_server.py FOLDER LOG CUT_AFTER: serves FOLDER to user "user" with password "тайна 1". Prints its port. Commands go
to LOG, one a line, passwords never; "had NAME ..." lists the folder after each piece that arrived of an upload. The
first download that passes CUT_AFTER bytes (0 = none) loses its data connection. Passive answers name an address that
nobody answers at, which a careful client does not follow.
"""
import os
import sys

from pyftpdlib.authorizers import DummyAuthorizer
from pyftpdlib.handlers import DTPHandler, FTPHandler
from pyftpdlib.servers import FTPServer

folder, log_name, cut_after = sys.argv[1], sys.argv[2], int(sys.argv[3])
log = open(log_name, "w", encoding="utf-8", buffering=1)
cuts_left = 1 if cut_after else 0


class Data(DTPHandler):
    def handle_read(self):
        super().handle_read()
        if self.receive:
            print("had", *sorted(os.listdir(folder)), file=log)

    handle_read_event = handle_read

    def send(self, data):
        global cuts_left
        if cuts_left and self.tot_bytes_sent + len(data) > cut_after:
            cuts_left -= 1
            self._resp = ("426 Connection closed; transfer aborted.", lambda *_: None)
            self.close()
            return 0
        return super().send(data)


class Control(FTPHandler):
    dtp_handler = Data
    use_sendfile = False
    masquerade_address = "192.0.2.1"
    proto_cmds = {name: value for name, value in FTPHandler.proto_cmds.items() if name != "EPSV"}

    def pre_process_command(self, line, cmd, arg):
        if cmd != "PASS":
            print(line, file=log)
        super().pre_process_command(line, cmd, arg)


authorizer = DummyAuthorizer()
authorizer.add_user("user", "тайна 1", folder, perm="elradfmw")
Control.authorizer = authorizer
server = FTPServer(("127.0.0.1", 0), Control)
print(server.address[1], flush=True)
server.serve_forever(handle_exit=False)
