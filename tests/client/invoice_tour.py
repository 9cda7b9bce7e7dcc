#!/usr/bin/env python3
"""By key events alone: an invoice of the demo company through every change that recalculates it, where the tour expects
the amounts that follow; then from log-in to a saved new invoice of five lines. Usage: invoice_tour.py BIN_DIR [PICTURES]"""
import os, sys, tempfile

from client_tour import served, take_tour

bin_dir = sys.argv[1]
with tempfile.TemporaryDirectory() as work:
    pictures = sys.argv[2] if len(sys.argv) > 2 else os.path.join(work, "pictures")
    with served(bin_dir, os.path.join(work, "demo.db"), os.path.join(work, "server.log")) as address:
        take_tour(bin_dir, address, pictures, os.path.join(work, "documents"), "--invoice")
        take_tour(bin_dir, address, pictures, os.path.join(work, "documents"), "--new-invoice")
