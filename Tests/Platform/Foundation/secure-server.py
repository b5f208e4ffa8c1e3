# SPDX-License-Identifier: Apache-2.0
"""Waits on a port of 127.0.0.1 for one secure connection, with a certificate that the server signed itself.

Usage: secure-server.py FOLDER    prints the port; prints nothing without openssl
"""
import socket
import ssl
import subprocess
import sys

key, certificate = sys.argv[1] + '/key.pem', sys.argv[1] + '/certificate.pem'
try:
    subprocess.run(['openssl', 'req', '-x509', '-newkey', 'ec', '-pkeyopt', 'ec_paramgen_curve:prime256v1', '-nodes',
                    '-keyout', key, '-out', certificate, '-days', '2', '-subj', '/CN=127.0.0.1',
                    '-addext', 'subjectAltName=IP:127.0.0.1'], check=True, capture_output=True)
except (OSError, subprocess.CalledProcessError):
    sys.exit()
context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
context.load_cert_chain(certificate, key)
listener = socket.create_server(('127.0.0.1', 0))
listener.settimeout(20)
print(listener.getsockname()[1], flush=True)
try:
    connection = context.wrap_socket(listener.accept()[0], server_side=True)
    connection.settimeout(20)
    connection.recv(4096)
    connection.sendall(b'HTTP/1.0 200 OK\r\n\r\nsecret')
except OSError:
    pass
