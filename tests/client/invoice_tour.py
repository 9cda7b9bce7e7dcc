#!/usr/bin/env python3
"""An invoice of the demo company through every change that recalculates it, by key events: the tour expects the amounts
that follow. Usage: invoice_tour.py BIN_DIR [PICTURES]"""
import os, sys, tempfile

from client_tour import served, take_tour

bin_dir = sys.argv[1]
with tempfile.TemporaryDirectory() as work:
    pictures = sys.argv[2] if len(sys.argv) > 2 else os.path.join(work, "pictures")
    with served(bin_dir, os.path.join(work, "demo.db"), os.path.join(work, "server.log")) as address:
        take_tour(bin_dir, address, pictures, os.path.join(work, "documents"), "--invoice")
