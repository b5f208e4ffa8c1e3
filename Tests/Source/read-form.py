# SPDX-License-Identifier: Apache-2.0
"""Prints the parts of a form, a line each, as the MIME parser of Python reads them.

Usage: read-form.py CONTENT-TYPE FILE
"""
import email
import sys

with open(sys.argv[2], 'rb') as file:
    body = file.read()
for part in email.message_from_bytes(f'Content-Type: {sys.argv[1]}\n\n'.encode() + body).get_payload():
    name = part.get_param('name', header='content-disposition')
    print(name, part.get_filename(''), part.get_payload(decode=True).hex())
