#!/usr/bin/python3
"""Ends with 0 when some program has grabbed the key on the X server: key_is_taken.py XF86AudioRaiseVolume."""

import sys

import x11

sys.exit(0 if x11.is_taken(sys.argv[1]) else 1)
