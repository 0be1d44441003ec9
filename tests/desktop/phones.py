# SPDX-License-Identifier: MIT
"""iPhones without hardware: a multiplexer that speaks usbmuxd's protocol, with phones behind it that speak
lockdownd's and the diagnostics relay's, in the clear or over TLS with the client's certificate checked. The real
libimobiledevice talks to it, and each phone can be told to misbehave at any message.

    with Multiplexer('/absolute/path', tls=True) as multiplexer:
        phone = multiplexer.attach('00008110-000A1B2C3D4E5F60', name='Red phone', level=85)
        phone.faults['GetValue'] = 'silent'

Clients find it by USBMUXD_SOCKET_ADDRESS=UNIX:/absolute/path. A fault belongs to a request ('StartSession',
'GetValue:BatteryCurrentCapacity', 'IORegistry:IOPMPowerSource', 'Goodbye' …; 'RelayTls' for the relay's greeting,
'Connect', 'Listen', 'ListDevices' or 'ReadPairRecord' of the multiplexer itself) and is one of

  drop, drop-head, drop-body      hangs up before, inside the length of, inside the body of its answer
  silent, stall-head, stall-body  says no more from there on
  drip[:SECONDS]                  answers a byte at a time
  huge, flood[:MIB]               announces 4 GiB and is silent; announces 2 GiB and sends so many MiB
  empty, notplist, badxml         answers with something that is no property list
  deep[:LEVELS], bomb[:POWER]     XML nested so deep; a short binary list that unfolds to ten to so many nodes
  wrongtype, novalue, value:XML   a value of the wrong type, none, that one
  error:NAME                      the device's own error
  no-tls                          never answers the TLS greeting of the session
"""
import contextlib
import os
import plistlib
import socket
import ssl
import struct
import subprocess
import tempfile
import threading
import time
import uuid

LOCKDOWN_PORT = 62078
RELAY = 'com.apple.mobile.diagnostics_relay'
BUID = '30142955-444094379208051516'
MIB = 1 << 20


class HungUp(Exception):
    """This connection is to be closed."""


def received(connection, size):
    data = b''
    while len(data) < size:
        piece = connection.recv(size - len(data))
        if not piece:
            raise HungUp
        data += piece
    return data


def be_silent(connection):
    """Until the other side goes away."""
    connection.settimeout(600)
    try:
        while connection.recv(65536):
            pass
    except OSError:
        pass
    raise HungUp


def cut(connection):
    try:
        connection.shutdown(socket.SHUT_RDWR)
    except OSError:
        pass


def in_background(function, *arguments):
    threading.Thread(target=function, args=arguments, daemon=True).start()


def unfolding(power):
    """A binary property list of arrays that each hold the next one ten times."""
    objects = [bytes([0xAA]) + bytes([index + 1] * 10) for index in range(power)] + [b'\x55hello']
    body, offsets = b'bplist00', []
    for one in objects:
        offsets.append(len(body))
        body += one
    table = b''.join(struct.pack('>H', offset) for offset in offsets)
    return body + table + bytes(6) + struct.pack('>BBQQQ', 2, 1, len(objects), 0, len(body))


class Certificates:
    """What pairing leaves on both sides; made once and shared by all phones."""

    def __init__(self, folder):
        self.folder = folder
        self._openssl('req', '-x509', '-newkey', 'rsa:2048', '-nodes', '-days', '30', '-subj', '/CN=root', '-keyout',
                      'root.key', '-out', 'root.pem', '-addext', 'basicConstraints=critical,CA:TRUE')
        for name in ('host', 'device'):
            self._openssl('req', '-newkey', 'rsa:2048', '-nodes', '-subj', f'/CN={name}', '-keyout', f'{name}.key',
                          '-out', f'{name}.csr')
            self._openssl('x509', '-req', '-in', f'{name}.csr', '-CA', 'root.pem', '-CAkey', 'root.key',
                          '-CAcreateserial', '-days', '30', '-out', f'{name}.pem')
        self.context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        self.context.load_cert_chain(self._path('device.pem'), self._path('device.key'))
        self.context.load_verify_locations(self._path('root.pem'))
        self.context.verify_mode = ssl.CERT_REQUIRED  # only a holder of the pairing record gets in
        self.context.minimum_version = ssl.TLSVersion.TLSv1_2

    def _path(self, name):
        return os.path.join(self.folder, name)

    def _openssl(self, *arguments):
        subprocess.run(['openssl', *arguments], cwd=self.folder, check=True, capture_output=True)

    def read(self, name):
        with open(self._path(name), 'rb') as file:
            return file.read()


class Phone:
    """Its attributes are what it tells; `network` is a loopback address for a phone reached over Wi-Fi."""

    def __init__(self, multiplexer, identifier, network=''):
        self.multiplexer, self.identifier, self.network = multiplexer, identifier, network
        self.number, self.faults, self.connections, self.services, self.servers = 0, {}, set(), {}, []
        self.name, self.kind, self.version = 'iPhone', 'iPhone', '17.5.1'
        self.level, self.charging, self.cycles, self.design, self.nominal = 85, False, 214, 3227, 2951
        self.is_paired, self.is_locked = True, False
        self.battery_entry = 'AppleSmartBattery'
        self.host_id = str(uuid.uuid5(uuid.NAMESPACE_OID, identifier)).upper()

    def record(self):
        files = {'RootCertificate': 'root.pem', 'RootPrivateKey': 'root.key', 'HostCertificate': 'host.pem',
                 'HostPrivateKey': 'host.key', 'DeviceCertificate': 'device.pem'}
        tls = self.multiplexer.certificates
        return plistlib.dumps({'HostID': self.host_id, 'SystemBUID': BUID, 'WiFiMACAddress': '00:11:22:33:44:55',
                               'EscrowBag': bytes(32),
                               **{key: tls.read(name) if tls else b'-' for key, name in files.items()}})

    def attached(self):
        if self.network:
            # A BSD sockaddr_in: length, family, port, address.
            address = bytes([16, 2]) + struct.pack('>H', 0) + socket.inet_aton(self.network) + bytes(8)
            properties = {'ConnectionType': 'Network', 'NetworkAddress': address, 'InterfaceIndex': 1,
                          'EscapedFullServiceName': '00:11:22:33:44:55@fe80::1._apple-mobdev2._tcp.local.'}
        else:
            properties = {'ConnectionType': 'USB', 'ConnectionSpeed': 480000000, 'LocationID': 65542,
                          'ProductID': 0x12a8}
        return {'MessageType': 'Attached', 'DeviceID': self.number,
                'Properties': {**properties, 'DeviceID': self.number, 'SerialNumber': self.identifier}}

    def values(self, domain):
        if domain == 'com.apple.mobile.battery':
            return {'BatteryCurrentCapacity': self.level, 'BatteryIsCharging': self.charging, 'HasBattery': True,
                    'ExternalConnected': True, 'FullyCharged': self.level >= 100}
        return {'DeviceName': self.name, 'DeviceClass': self.kind, 'ProductVersion': self.version,
                'ProductType': 'iPhone14,5', 'UniqueDeviceID': self.identifier} if not domain else {}

    def registry(self, entry_name, entry_class):
        asked = entry_name or entry_class
        if asked != self.battery_entry and (entry_name or entry_class != 'IOPMPowerSource'):
            return {}  # what a device says of an entry that it has not got
        return {'CycleCount': self.cycles, 'DesignCapacity': self.design, 'NominalChargeCapacity': self.nominal,
                'MaxCapacity': 100, 'CurrentCapacity': self.level, 'InstantAmperage': -386, 'Voltage': 4210,
                'Temperature': 2970, 'Serial': 'F8Y0000000000', 'AdapterDetails': {'Watts': 20}}

    # What happens to it

    def trust(self):
        """The user taps Trust, and usbmuxd has paired."""
        self.is_paired = True
        self.multiplexer.tell({'MessageType': 'Paired', 'DeviceID': self.number})

    def detach(self):
        self.multiplexer.detach(self)

    # Conversations

    def _fault(self, *requests):
        for request in requests:
            if request in self.faults:
                self.multiplexer.say(self.identifier, 'fault', request)
                return self.faults[request]
        return None

    def open(self, serve):
        """A port for a service: a number for the multiplexer, a real one for a phone on the network."""
        if self.network:
            return self.listen(0, serve)
        port = 49152 + len(self.services)
        self.services[port] = serve
        return port

    def listen(self, port, serve):
        server = socket.create_server((self.network, port))
        self.servers.append(server)

        def accept():
            try:
                while True:
                    in_background(self.serve, server.accept()[0], serve)
            except OSError:
                pass
        in_background(accept)
        return server.getsockname()[1]

    def serve(self, connection, serve):
        handle = connection.dup()  # outlives the wrapping in TLS, so that a detach can cut the connection
        self.connections.add(handle)
        try:
            serve(connection)
        except HungUp:
            pass
        except (OSError, ValueError, plistlib.InvalidFileException) as error:
            self.multiplexer.say(self.identifier, type(error).__name__, error)
        finally:
            self.connections.discard(handle)
            cut(handle)
            handle.close()
            with contextlib.suppress(OSError):
                connection.close()

    def _requests(self, connection):
        size, = struct.unpack('>I', received(connection, 4))
        return plistlib.loads(received(connection, size))

    def _with_tls(self, connection):
        return self.multiplexer.certificates.context.wrap_socket(connection, server_side=True)

    def lockdown(self, connection):
        has_session, tls = False, self.multiplexer.certificates
        try:
            while True:
                request = self._requests(connection)
                name, key = request.get('Request', ''), request.get('Key')
                self.multiplexer.say(self.identifier, 'lockdown', name, request.get('Domain', ''), key or '')
                reply, faults, starts_tls = {'Request': name}, [name], False
                if name == 'QueryType':
                    reply['Type'] = 'com.apple.mobile.lockdown'
                elif name == 'GetValue':
                    domain = request.get('Domain', '')
                    faults = [f'GetValue:{key or domain}', name]
                    values = self.values(domain)
                    if domain and not has_session:
                        reply['Error'] = 'GetProhibited'
                    elif key is None:
                        reply['Value'] = values
                    elif key in values:
                        reply['Value'] = values[key]
                    else:
                        reply['Error'] = 'MissingValue'
                elif name in ('ValidatePair', 'StartSession'):
                    host = request.get('HostID') or request.get('PairRecord', {}).get('HostID')
                    if not self.is_paired or host != self.host_id:
                        reply['Error'] = 'InvalidHostID'
                    elif self.is_locked:
                        reply['Error'] = 'PasswordProtected'
                    elif name == 'StartSession':
                        has_session, starts_tls = True, tls is not None
                        reply.update(SessionID=str(uuid.uuid4()).upper(), EnableSessionSSL=starts_tls)
                elif name == 'StartService':
                    if not has_session:
                        reply['Error'] = 'SessionInactive'
                    elif request.get('Service') != RELAY:
                        reply['Error'] = 'InvalidService'
                    else:
                        reply.update(Service=RELAY, Port=self.open(self.relay), EnableServiceSSL=tls is not None)
                elif name == 'StopSession':
                    has_session = False
                elif name == 'Pair':
                    reply['Error'] = 'PairingDialogResponsePending'
                else:
                    reply['Error'] = 'InvalidRequest'
                fault = self._answer(connection, faults, reply)
                if starts_tls and fault == 'no-tls':
                    be_silent(connection)
                elif starts_tls and 'Error' not in reply:
                    connection = self._with_tls(connection)
                elif name == 'StopSession' and isinstance(connection, ssl.SSLSocket):
                    connection = connection.unwrap()
        finally:
            connection.close()  # which may be another one by now

    def relay(self, connection):
        if self.multiplexer.certificates:
            if self._fault('RelayTls'):
                be_silent(connection)
            connection = self._with_tls(connection)
        try:
            while True:
                request = self._requests(connection)
                name = request.get('Request', '')
                entry_name, entry_class = request.get('EntryName'), request.get('EntryClass')
                self.multiplexer.say(self.identifier, 'relay', name, entry_name or entry_class or '')
                reply = {'Status': 'Success' if name in ('IORegistry', 'Goodbye') else 'UnknownRequest'}
                if name == 'IORegistry':
                    reply['Diagnostics'] = {'IORegistry': self.registry(entry_name, entry_class)}
                self._answer(connection, [f'IORegistry:{entry_name or entry_class}', name], reply)
                if name == 'Goodbye':
                    raise HungUp
        finally:
            connection.close()  # which may be another one by now

    def _answer(self, connection, requests, reply):
        fault = self._fault(*requests)
        kind, _, argument = (fault or '').partition(':')
        if kind in ('', 'no-tls'):
            send(connection, plistlib.dumps(reply))
        elif kind == 'error':
            told = {'Request': reply['Request'], 'Error': argument} if 'Request' in reply else {'Status': argument}
            send(connection, plistlib.dumps(told))
        elif kind in ('novalue', 'wrongtype', 'value'):
            value = {'wrongtype': ['not', 'this']}.get(kind)
            if kind == 'value':
                value = plistlib.loads(b'<?xml version="1.0"?><plist version="1.0">' + argument.encode() + b'</plist>')
            told = {key: one for key, one in reply.items() if key not in ('Value', 'Diagnostics')}
            if value is not None:
                told['Value' if 'Request' in reply else 'Diagnostics'] = value
            send(connection, plistlib.dumps(told))
        else:
            misbehave(connection, kind, argument, plistlib.dumps(reply))
        return fault


def send(connection, body, claimed=None):
    connection.sendall(struct.pack('>I', len(body) if claimed is None else claimed) + body)


def misbehave(connection, kind, argument, body):
    head = struct.pack('>I', len(body))
    if kind in ('drop', 'drop-head', 'drop-body', 'silent', 'stall-head', 'stall-body'):
        what, _, where = kind.partition('-')
        connection.sendall({'': b'', 'head': head[:2], 'body': head + body[:len(body) // 2]}[where])
        if what == 'drop':
            raise HungUp
        be_silent(connection)
    elif kind == 'drip':
        connection.sendall(head)
        for index in range(len(body)):
            connection.sendall(body[index:index + 1])
            time.sleep(float(argument or 1))
    elif kind == 'huge':
        send(connection, b'<?xml', claimed=0xFFFFFFFF)
        be_silent(connection)
    elif kind == 'flood':
        connection.sendall(struct.pack('>I', 0x7FFFFFFF))
        piece = bytes(MIB)
        for _ in range(int(argument or 300)):
            connection.sendall(piece)
        be_silent(connection)
    elif kind == 'deep':
        levels = int(argument or 200000)
        send(connection, b'<?xml version="1.0"?><plist version="1.0">' + b'<array>' * levels + b'</array>' * levels +
             b'</plist>')
    else:
        send(connection, {'empty': b'', 'notplist': b'HTTP/1.1 400 no\r\n\r\n', 'badxml': body[:len(body) // 2],
                          'bomb': unfolding(int(argument or 8))}[kind])


class Multiplexer:
    """usbmuxd at a path or, for clients that shall see it come and go, at "127.0.0.1:PORT"."""

    def __init__(self, address, tls=False):
        self.address, self.faults, self.log = address, {}, []
        self.phones, self.known, self.listeners, self.last_number = {}, {}, [], 0
        self.lock = threading.RLock()
        self.folder = tempfile.TemporaryDirectory(prefix='kivo-phones') if tls else None
        self.certificates = Certificates(self.folder.name) if tls else None
        self.server = None

    def __enter__(self):
        self.start()
        return self

    def __exit__(self, *_):
        self.stop()
        if self.folder:
            self.folder.cleanup()

    def say(self, *words):
        self.log.append(' '.join(map(str, words)))

    def said(self, text):
        return any(text in line for line in list(self.log))

    def start(self):
        host, _, port = self.address.rpartition(':')
        if host:
            self.server = socket.create_server((host, int(port)))
        else:
            self.server = socket.socket(socket.AF_UNIX)
            self.server.bind(self.address)
            self.server.listen(64)
        in_background(self._accept, self.server)

    def stop_listening(self):
        cut(self.server)  # wakes the thread that accepts
        self.server.close()

    def stop(self):
        """As usbmuxd ends: every connection is closed, the socket is gone. Phones stay attached for the next start."""
        self.stop_listening()
        if os.path.exists(self.address):
            os.unlink(self.address)
        with self.lock:
            connections = list(self.listeners)
            for phone in self.phones.values():
                connections += list(phone.connections) + phone.servers
        for connection in connections:
            cut(connection)

    def attach(self, identifier, network='', **attributes):
        with self.lock:
            phone = self.known.setdefault((identifier, network), Phone(self, identifier, network))
            for key, value in attributes.items():
                setattr(phone, key, value)
            self.last_number += 1
            phone.number = self.last_number
            self.phones[phone.number] = phone
            if network:
                phone.listen(LOCKDOWN_PORT, phone.lockdown)
            self.tell(phone.attached())
        return phone

    def detach(self, phone):
        with self.lock:
            del self.phones[phone.number]
            self.tell({'MessageType': 'Detached', 'DeviceID': phone.number})
            for connection in list(phone.connections) + phone.servers:
                cut(connection)  # wakes whoever accepts there
            for server in phone.servers:
                server.close()
            phone.servers, phone.services = [], {}

    def tell(self, message):
        with self.lock:
            for listener in list(self.listeners):
                try:
                    self._send(listener, message)
                except OSError:
                    self.listeners.remove(listener)

    def _accept(self, server):
        try:
            while True:
                in_background(self._converse, server.accept()[0])
        except OSError:
            pass

    def _send(self, connection, message, tag=0):
        body = plistlib.dumps(message)
        connection.sendall(struct.pack('<IIII', 16 + len(body), 1, 8, tag) + body)

    def _converse(self, connection):
        try:
            while True:
                size, _, _, tag = struct.unpack('<IIII', received(connection, 16))
                request = plistlib.loads(received(connection, size - 16))
                name = request.get('MessageType')
                self.say('mux', name, request.get('PairRecordID', ''))
                fault = self.faults.get(name)
                if fault == 'drop':
                    raise HungUp
                if fault == 'silent':
                    be_silent(connection)
                if name == 'Connect':
                    return self._connect(connection, request, tag)
                if name == 'Listen':
                    with self.lock:
                        self._send(connection, {'MessageType': 'Result', 'Number': 0}, tag)
                        for phone in self.phones.values():
                            self._send(connection, phone.attached())
                        self.listeners.append(connection)
                    be_silent(connection)
                self._send(connection, self._reply(name, request), tag)
        except (HungUp, OSError, struct.error, plistlib.InvalidFileException):
            pass
        finally:
            with self.lock:
                if connection in self.listeners:
                    self.listeners.remove(connection)
            connection.close()

    def _reply(self, name, request):
        with self.lock:
            if name == 'ListDevices':
                return {'DeviceList': [phone.attached() for phone in self.phones.values()]}
            if name == 'ListListeners':
                return {'ListenerList': []}
            if name == 'ReadBUID':
                return {'BUID': BUID}
            if name == 'ReadPairRecord':
                paired = [phone for phone in self.phones.values()
                          if phone.identifier == request.get('PairRecordID') and phone.is_paired]
                if paired:
                    return {'PairRecordData': paired[0].record()}
                return {'MessageType': 'Result', 'Number': 2}  # ENOENT
            return {'MessageType': 'Result', 'Number': 1}  # no such command

    def _connect(self, connection, request, tag):
        phone = self.phones.get(request.get('DeviceID'))
        port = socket.ntohs(request.get('PortNumber', 0))
        service = phone and (phone.lockdown if port == LOCKDOWN_PORT else phone.services.get(port))
        if not service or phone.network:
            self._send(connection, {'MessageType': 'Result', 'Number': 3 if phone else 2}, tag)
            raise HungUp
        self._send(connection, {'MessageType': 'Result', 'Number': 0}, tag)
        phone.serve(connection, service)
