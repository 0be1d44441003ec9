# SPDX-License-Identifier: MIT
"""kivo-updates as a whole: real keys, real signatures, a real server on this computer.

  feed_test.py KIVO-UPDATES SIGN-FEED [unittest arguments]
"""
import http.server
import json
import os
import ssl
import subprocess
import sys
import tempfile
import threading
import time
import unittest

FEED = {'application': 'io.github.kivo.Kivo', 'serial': 3,
        'releases': [{'version': '1.1.0', 'page': 'https://example.org/kivo', 'notes': ['Quieter “nights”.']}]}


class Server(http.server.ThreadingHTTPServer):
    """Answers each path with what `pages` has for it: bytes, or a function that gets the request."""
    daemon_threads = True

    def __init__(self, certificate=None):
        super().__init__(('127.0.0.1', 0), Handler)
        self.pages, self.requests = {}, []
        self.scheme = 'https' if certificate else 'http'
        if certificate:
            context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
            context.load_cert_chain(certificate)
            self.socket = context.wrap_socket(self.socket, server_side=True)
        threading.Thread(target=self.serve_forever, daemon=True).start()

    def address(self, path='/feed'):
        return f'{self.scheme}://127.0.0.1:{self.server_address[1]}{path}'

    def handle_error(self, request, client_address):
        pass  # a client that hangs up is what some tests want


class Handler(http.server.BaseHTTPRequestHandler):
    def do_GET(self):
        self.server.requests.append(dict(self.headers))
        page = self.server.pages.get(self.path)
        if page is None:
            self.send_error(404)
        elif callable(page):
            page(self)
        else:
            self.send_response(200)
            self.send_header('Content-Length', str(len(page)))
            self.end_headers()
            self.wfile.write(page)

    def log_message(self, *_):
        pass


class FeedTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = cls.enterClassContext(tempfile.TemporaryDirectory())
        cls.pem = os.path.join(cls.folder, 'key.pem')
        cls.key = cls.sign_feed('--new-key', cls.pem).strip()
        cls.server = Server()
        cls.signed = cls.sign(FEED)

    @classmethod
    def sign_feed(cls, *arguments):
        return subprocess.run([SIGN_FEED, *arguments], check=True, capture_output=True, text=True).stdout

    @classmethod
    def sign(cls, feed, pem=None):
        path = os.path.join(cls.folder, 'feed.json')
        with open(path, 'w', encoding='utf-8') as file:
            file.write(feed if isinstance(feed, str) else json.dumps(feed, ensure_ascii=False))
        return cls.sign_feed(pem or cls.pem, path).encode()

    def ask(self, address, deadline=20, key=None, **environment):
        """The program's answer as (kind, value)."""
        done = subprocess.run([PROGRAM, address, key or self.key, '--deadline', str(deadline)], check=False,
                              capture_output=True, text=True, timeout=60, env={**os.environ, **environment})
        answer = json.loads(done.stdout)
        self.assertEqual(len(answer), 1)
        kind, value = answer.popitem()
        self.assertEqual(done.returncode, 0 if kind == 'feed' else 1)
        return kind, value

    def serve(self, page):
        self.server.pages['/feed'] = page
        return self.server.address()

    def file(self, content):
        path = os.path.join(self.folder, 'feed.signed')
        with open(path, 'wb') as file:
            file.write(content)
        return 'file://' + path

    def test_a_signed_feed_from_everywhere(self):
        self.assertEqual(self.ask(self.file(self.signed)), ('feed', FEED))
        self.assertEqual(self.ask(self.serve(self.signed)), ('feed', FEED))
        self.assertEqual(self.sign_feed('--public', self.pem).strip(), self.key)

    def test_nothing_tells_who_asks(self):
        self.server.requests.clear()
        home = os.path.join(self.folder, 'home')
        os.makedirs(home, exist_ok=True)
        with open(os.path.join(home, '.curlrc'), 'w', encoding='utf-8') as file:
            file.write('header = "X-Who: me"\n')
        self.assertEqual(self.ask(self.serve(self.signed), HOME=home, http_proxy='http://127.0.0.1:1')[0], 'feed')
        self.assertEqual(set(self.server.requests[-1]), {'Host', 'User-Agent', 'Accept'})
        self.assertEqual(self.server.requests[-1]['User-Agent'], 'Kivo')

    def test_what_is_not_signed_by_the_key_is_refused(self):
        other = os.path.join(self.folder, 'other.pem')
        if not os.path.exists(other):
            self.sign_feed('--new-key', other)
        head, _, text = self.signed.partition(b'\n')
        for label, content, reason in [
                ('plain', json.dumps(FEED).encode(), 'not signed'),
                ('by another key', self.sign(FEED, other), 'signature is wrong'),
                ('changed', self.signed.replace(b'1.1.0', b'9.1.0'), 'signature is wrong'),
                ('another signature', self.sign({**FEED, 'serial': 4}).split(b'\n')[0] + b'\n' + text, 'signature is wrong'),
                ('cut off', self.signed[:-5], 'signature is wrong'),
                ('empty', b'', 'not signed'),
                ('zeros', bytes(5000), 'not signed'),
                ('signed, but no JSON', self.sign('<xml/>'), ''),
                ('signed, but deep', self.sign('[' * 100000), ''),
                ('signed, but no feed', self.sign([1]), 'feed'),
                ("signed, but another program's", self.sign({**FEED, 'application': 'org.example'}), 'org.example')]:
            with self.subTest(label):
                kind, why = self.ask(self.serve(content))
                self.assertEqual(kind, 'refused')
                self.assertIn(reason, why)
        self.assertEqual(self.ask(self.serve(self.signed), key='AAAA')[0], 'refused')

    def test_a_huge_feed_is_refused_without_being_read(self):
        sent = []

        def endless(request):
            request.send_response(200)
            request.end_headers()
            while True:
                request.wfile.write(bytes(65536))
                sent.append(65536)
        self.assertEqual(self.ask(self.serve(endless))[0], 'refused')
        self.assertLess(sum(sent), 30_000_000)  # what fits into sockets and pipes
        limit = 1_000_000
        padded = self.sign(json.dumps(FEED) + ' ' * (limit - len(self.signed) - 20))
        self.assertLessEqual(len(padded), limit)
        self.assertEqual(self.ask(self.file(padded + b' ' * (limit - len(padded))))[1], 'its signature is wrong')
        self.assertEqual(self.ask(self.file(padded))[0], 'feed')
        self.assertIn('larger', self.ask(self.file(padded + b' ' * (limit + 1 - len(padded))))[1])
        self.assertEqual(self.ask('file:///dev/zero')[0], 'refused')

    def test_a_slow_server_is_given_up(self):
        def trickle(request):
            request.send_response(200)
            request.end_headers()
            while True:
                request.wfile.write(b'k')
                request.wfile.flush()
                time.sleep(0.2)
        started = time.monotonic()
        self.assertEqual(self.ask(self.serve(trickle), deadline=2), ('unreachable', 'it took longer than 2 s'))
        self.assertLess(time.monotonic() - started, 30)

    def test_servers_that_fail(self):
        def moved(request):
            request.send_response(302)
            request.send_header('Location', self.server.address('/other'))
            request.end_headers()

        def cut(request):
            request.send_response(200)
            request.send_header('Content-Length', str(len(self.signed)))
            request.end_headers()
            request.wfile.write(self.signed[:100])
        self.server.pages['/other'] = self.signed
        self.assertEqual(self.ask(self.serve(moved))[0], 'refused')  # an empty answer: redirections are not followed
        self.assertEqual(self.ask(self.serve(cut))[0], 'unreachable')
        self.assertIn('404', self.ask(self.server.address('/none'))[1])
        self.assertEqual(self.ask('https://127.0.0.1:1/feed')[0], 'unreachable')
        self.assertEqual(self.ask('file:///nonexistent/feed')[0], 'unreachable')
        self.assertEqual(self.ask('http://example.org/feed')[0], 'refused')
        self.assertIn('curl cannot be run', self.ask(self.serve(self.signed), PATH='/nonexistent')[1])

    def test_https_only_with_a_known_certificate(self):
        certificate = os.path.join(self.folder, 'certificate.pem')
        subprocess.run(['openssl', 'req', '-x509', '-newkey', 'ec', '-pkeyopt', 'ec_paramgen_curve:prime256v1', '-nodes',
                        '-keyout', certificate + '.key', '-out', certificate + '.crt', '-days', '2', '-subj',
                        '/CN=127.0.0.1', '-addext', 'subjectAltName=IP:127.0.0.1'], check=True, capture_output=True)
        with open(certificate, 'wb') as both:
            for part in ('.key', '.crt'):
                with open(certificate + part, 'rb') as file:
                    both.write(file.read())
        server = Server(certificate)
        server.pages['/feed'] = self.signed
        self.assertEqual(self.ask(server.address(), CURL_CA_BUNDLE=certificate + '.crt'), ('feed', FEED))
        kind, why = self.ask(server.address())
        self.assertEqual(kind, 'unreachable')
        self.assertIn('certificate', why)
        # From there nothing leads to an unprotected connection.
        def moved(request):
            request.send_response(302)
            request.send_header('Location', self.serve(self.signed))
            request.end_headers()
        server.pages['/moved'] = moved
        self.assertEqual(self.ask(server.address('/moved'), CURL_CA_BUNDLE=certificate + '.crt')[0], 'unreachable')


if __name__ == '__main__':
    PROGRAM, SIGN_FEED = map(os.path.abspath, sys.argv[1:3])
    del sys.argv[1:3]
    unittest.main()
