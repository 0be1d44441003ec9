# SPDX-License-Identifier: MIT
"""iPhones by way of the real libimobiledevice and the real helper: phones that behave, phones that do not at every
message there is, and a multiplexer that comes and goes."""
import concurrent.futures
import contextlib
import json
import os
import signal
import time

from desktop import Desktop, Failure, Messages, wait_for
from kivo import Kivo, KivoTest, rule, run, settings
from phones import Multiplexer, cut

RED = '00008110-000A1B2C3D4E5F60'
DEADLINE = 2.5  # seconds for one reading; a good one takes a tenth of that, but not on a busy machine
GROWTH = 5 * 1024  # KiB

BATTERY = 'GetValue:com.apple.mobile.battery'
RELAY = 'IORegistry:IOPMPowerSource'
# Where a phone misbehaves and how, and whether its level is known by then.
FAULTS = [
    *((request, fault, False) for request in ('QueryType', 'StartSession', BATTERY)
      for fault in ('drop', 'drop-head', 'drop-body')),
    *((BATTERY, fault, False) for fault in (
        'empty', 'notplist', 'badxml', 'wrongtype', 'novalue', 'value:<integer>85</integer>', 'value:<dict/>',
        'value:<dict><key>BatteryCurrentCapacity</key><integer>5000</integer></dict>', 'error:GetProhibited',
        'deep', 'bomb', 'flood', 'huge', 'stall-head', 'stall-body', 'drip:0.1')),
    ('StartSession', 'error:InvalidHostID', False), ('StartSession', 'error:PasswordProtected', False),
    ('GetValue:DeviceName', 'novalue', True), ('GetValue:DeviceClass', 'wrongtype', True),
    ('StartService', 'error:InvalidService', True), ('StartService', 'drop', True), ('StopSession', 'drop', True),
    (RELAY, 'drop-body', True), (RELAY, 'wrongtype', True), (RELAY, 'notplist', True), (RELAY, 'deep', True),
]
# It says nothing more, at any message.
SILENCES = [
    *((request, 'silent', False) for request in ('QueryType', 'GetValue:ProductVersion', 'StartSession', BATTERY)),
    ('StartSession', 'no-tls', False),
    *((request, 'silent', True) for request in ('GetValue:DeviceName', 'GetValue:DeviceClass', 'StartService', 'RelayTls',
                                                RELAY, 'Goodbye', 'StopSession')),
]


class Bench:
    """A Kivo on a desktop of its own that finds phones at `mux`."""

    def __init__(self, stored=None, notifications=False, **environment):
        self.desktop = Desktop(tray=None, compositor=False, sound=False, notifications=notifications)
        self.stored, self.environment = stored or settings(), environment

    def __enter__(self):
        self.desktop.__enter__()
        self.mux = self.desktop.path('usbmuxd')
        self.desktop.env.update({'QT_QPA_PLATFORM': 'offscreen', 'KIVO_LOG': 'debug',
                                 'USBMUXD_SOCKET_ADDRESS': 'UNIX:' + self.mux,
                                 'KIVO_IOS_DEADLINE': str(int(DEADLINE * 1000)), **self.environment})
        self.kivo = Kivo(self.desktop, self.stored, tray=False)
        wait_for('the first list', self.stored_list, 20)
        return self

    def __exit__(self, *problem):
        status = self.kivo.quit()
        self.desktop.__exit__(*problem)
        if not problem[0] and status != 0:
            raise Failure(f'Kivo ended with status {status}')

    def stored_list(self):
        with contextlib.suppress(FileNotFoundError, KeyError), \
                open(self.desktop.path('home', 'data', 'kivo', 'widgets.json'), encoding='utf-8') as file:
            return json.load(file)['devices.v1']
        return None

    def listed(self, connected=True):
        """{name: level} of the phones that are connected, or that are remembered."""
        return {one['name']: one['level'] for one in self.stored_list() or []
                if one['category'] in ('iphone', 'ipad') and ('connection' in one) == connected}

    def await_listed(self, name, level, seconds=20):
        wait_for(f'{name} at {level}%', lambda: self.listed().get(name) == level, seconds)

    def log(self):
        return self.desktop.log('kivo')

    def helpers(self):
        """{process: its mode} of the helpers that run, dead ones not yet buried included."""
        result = {}
        for process in filter(str.isdigit, os.listdir('/proc')):
            with contextlib.suppress(OSError):
                with open(f'/proc/{process}/stat', encoding='utf-8') as file:
                    name, _, rest = file.read().rpartition(')')
                with open(f'/proc/{process}/cmdline', encoding='utf-8') as file:
                    words = file.read().split('\0')
                if name.endswith('(kivo-ios') and int(rest.split()[1]) == self.kivo.process.pid:
                    result[int(process)] = words[1] if len(words) > 1 else 'dead'
        return result

    def memory(self):
        """KiB that are its own; the minute's other work maps some files meanwhile."""
        with open(f'/proc/{self.kivo.process.pid}/status', encoding='utf-8') as file:
            return int(next(line for line in file if line.startswith('RssAnon')).split()[1])

    def descriptors(self):
        return len(os.listdir(f'/proc/{self.kivo.process.pid}/fd'))


def survive(faults, tls):
    """What went wrong, a line a fault."""
    wrong, level = [], 40
    with Bench() as bench, Multiplexer(bench.mux, tls=tls) as multiplexer:
        healthy = multiplexer.attach(RED, name='Healthy', level=level)
        bench.await_listed('Healthy', level)
        healthy.detach()
        wait_for('its end', lambda: not bench.listed())
        memory, descriptors = bench.memory(), bench.descriptors()
        most = memory
        for number, (request, fault, is_read) in enumerate(faults):
            what = f'{"TLS" if tls else "clear"} {request}={fault}'
            name = f'Phone {number}'
            phone = multiplexer.attach(f'F{number}', name=name, level=20, faults={request: fault})
            try:
                wait_for(f'{what} to happen', lambda: multiplexer.said(f'F{number} fault {request}'), 20)
                level = level % 90 + 1
                multiplexer.attach(RED, level=level)
                bench.await_listed('Healthy', level)
                shown = set(bench.listed()) - {'Healthy'}
                expected = {'iPhone' if request == 'GetValue:DeviceName' else name} if is_read else set()
                if shown != expected:
                    wrong.append(f'{what}: shown are {shown}')
            except Failure as failure:
                wrong.append(f'{what}: {failure}')
            if bench.kivo.process.poll() is not None:
                return wrong + [f'{what}: Kivo ended with {bench.kivo.process.returncode}']
            most = max(most, bench.memory())
            if bench.memory() - memory > GROWTH:
                wrong.append(f'{what}: {bench.memory() - memory} KiB more')
            phone.detach()
            if healthy.number in multiplexer.phones:
                healthy.detach()
            wait_for('the end of both', lambda: not bench.listed())
        if multiplexer.said('lockdown Pair'):
            wrong.append('a dialog on a phone')
        with contextlib.suppress(Failure):
            wait_for('the readers to be gone', lambda: list(bench.helpers().values()) == ['watch'])
        if list(bench.helpers().values()) != ['watch'] or bench.descriptors() > descriptors + 2:
            wrong.append(f'left behind: {bench.helpers()}, {descriptors} descriptors, now {bench.descriptors()}')
        print(f'{number + 1} faults {"over TLS" if tls else "in the clear"}: {memory} KiB at first, '
              f'at most {most - memory:+} KiB, {len(wrong)} wrong')
    return wrong


class PhoneTest(KivoTest):
    @classmethod
    def setUpClass(cls):
        # Mostly waiting for deadlines, which the other tests need not wait for.
        pool = cls.enterClassContext(concurrent.futures.ThreadPoolExecutor())
        cls.faults = [pool.submit(survive, *how) for how in ((FAULTS, False), (FAULTS, True), (SILENCES, True))]

    def bench(self, **how):
        return self.enterContext(Bench(**how))

    def multiplexer(self, bench, **how):
        return self.enterContext(Multiplexer(bench.mux, **how))

    def test_a_phone_is_told_of_by_its_user_alone(self):
        bench = self.bench()
        multiplexer = self.multiplexer(bench, tls=True)
        phone = multiplexer.attach(RED, name='Red phone', level=41, is_paired=False)
        wait_for('a hint', lambda: 'unlock it and tap Trust' in bench.log())
        self.assertEqual(bench.log().count('Device not paired/trusted; skipping'), 1)
        phone.is_locked = True
        phone.trust()
        wait_for('another hint', lambda: 'unlock it once' in bench.log())
        self.assertEqual(bench.listed(), {})
        phone.is_locked = False
        phone.trust()
        bench.await_listed('Red phone', 41)
        self.assertFalse(multiplexer.said('lockdown Pair'), 'a dialog on the phone')
        # What an older phone answers differs in the entry's name only.
        old = multiplexer.attach('0' * 40, name='Old iPad', kind='iPad', battery_entry='AppleARMPMUCharger', level=9)
        bench.await_listed('Old iPad', 9)
        record = next(one for one in bench.stored_list() if one['name'] == 'Old iPad')
        self.assertEqual((record['category'], record['healthPercent'], record['cycleCount'], record['connection']),
                         ('ipad', 91, 214, 'USB'))
        old.detach()
        wait_for('it to be remembered', lambda: bench.listed(connected=False) == {'Old iPad': 9})

    def test_a_cable_counts_before_the_network(self):
        bench = self.bench()
        multiplexer = self.multiplexer(bench)

        def connection():
            return [one.get('connection') for one in bench.stored_list() if one['name'] == 'Red phone']
        wifi = multiplexer.attach(RED, network='127.0.0.2', name='Red phone')
        wait_for('the network', lambda: connection() == ['Wi\u2011Fi'])
        usb = multiplexer.attach(RED, name='Red phone')
        wait_for('the cable', lambda: connection() == ['USB'])
        usb.detach()
        wait_for('the network again', lambda: connection() == ['Wi\u2011Fi'])
        wifi.detach()
        wait_for('the memory', lambda: connection() == [None])

    def test_usbmuxd_comes_and_goes_with_the_phone(self):
        bench = self.bench()
        self.assertEqual(bench.helpers(), {})
        multiplexer = Multiplexer(bench.mux)
        for level in (50, 60):
            multiplexer.start()
            phone = multiplexer.attach(RED, name='Red phone', level=level)
            bench.await_listed('Red phone', level)
            phone.detach()
            multiplexer.stop()
            wait_for('the helper to end', lambda: not bench.helpers())
            wait_for('the memory', lambda: bench.listed(connected=False) == {'Red phone': level})
        # Its restart connects nothing anew, and its crash leaves a socket that nobody listens on.
        multiplexer.start()
        multiplexer.attach(RED, level=70)
        bench.await_listed('Red phone', 70)
        published = bench.log().count('Published')
        multiplexer.stop()
        multiplexer.start()
        wait_for('the second greeting', lambda: sum(line.startswith('mux Listen') for line in multiplexer.log) == 4)
        multiplexer.stop_listening()
        cut(multiplexer.listeners[-1])
        wait_for('the memory', lambda: bench.listed(connected=False) == {'Red phone': 70}, 20)
        self.assertEqual(bench.log().count('Published'), published + 1)
        os.unlink(bench.mux)
        multiplexer.start()
        bench.await_listed('Red phone', 70)
        multiplexer.stop()

    def test_a_multiplexer_that_hangs_up_or_hangs(self):
        bench = self.bench()
        multiplexer = self.multiplexer(bench)
        multiplexer.faults = {'Listen': 'drop'}
        began = time.monotonic()
        # A new attempt comes after a half, one, five … seconds, not without a pause.
        wait_for('three attempts', lambda: sum('Listen' in line for line in multiplexer.log) == 3, 30)
        self.assertGreater(time.monotonic() - began, 5)
        multiplexer.faults = {}
        multiplexer.stop()
        multiplexer.start()
        phone = multiplexer.attach(RED, name='Red phone', level=30)
        bench.await_listed('Red phone', 30)
        watcher, = bench.helpers()
        for fault in ('ReadPairRecord', 'Connect', 'ListDevices'):
            multiplexer.faults = {fault: 'silent'}
            heard = len(multiplexer.log)
            phone.level += 1
            phone.trust()
            wait_for(fault, lambda: any(fault in line for line in multiplexer.log[heard:]))
            wait_for('the reading to be given up', lambda: list(bench.helpers()) == [watcher])
            multiplexer.faults = {}
            phone.trust()
            bench.await_listed('Red phone', phone.level)

    def test_what_a_phone_can_do_wrong_costs_one_reading(self):
        self.assertEqual(sum((faults.result() for faults in self.faults), []), [])

    def test_without_the_library(self):
        bench = self.bench(KIVO_IOS_LIBRARY='libnothing.so.1')
        multiplexer = self.multiplexer(bench)
        multiplexer.attach(RED)
        wait_for('a word about it', lambda: 'libimobiledevice is missing' in bench.log())
        wait_for('the helper to end', lambda: not bench.helpers())
        self.assertEqual(bench.listed(), {})

    def test_a_helper_that_is_killed_is_replaced_and_ends_with_kivo(self):
        bench = self.bench()
        multiplexer = self.multiplexer(bench)
        phone = multiplexer.attach(RED, name='Red phone', level=30)
        bench.await_listed('Red phone', 30)
        watcher, = bench.helpers()
        os.kill(watcher, signal.SIGSEGV)
        wait_for('another watcher', lambda: bench.helpers() and watcher not in bench.helpers())
        phone.level = 31
        wait_for('its greeting', lambda: len(multiplexer.listeners) == 1)
        phone.trust()
        bench.await_listed('Red phone', 31)

        # Quitting does not wait for a phone, and leaves nothing behind.
        phone.faults['QueryType'] = 'silent'
        phone.trust()
        wait_for('a reading that hangs', lambda: multiplexer.said('fault QueryType'))
        self.assertEqual(len(bench.helpers()), 2)
        both = list(bench.helpers())
        began = time.monotonic()
        self.assertEqual(bench.kivo.quit(), 0)
        self.assertLess(time.monotonic() - began, DEADLINE)
        wait_for('their end', lambda: not any(os.path.exists(f'/proc/{process}') for process in both))

        # A Kivo that is killed takes its watcher along.
        phone.faults.clear()
        bench.kivo.process = bench.kivo.launch()
        watcher = wait_for('a watcher', lambda: list(bench.helpers()))
        bench.desktop.end(bench.kivo.process, how=signal.SIGKILL)
        wait_for('its end', lambda: not any(os.path.exists(f'/proc/{process}') for process in watcher))
        bench.kivo.process = bench.kivo.launch()
        wait_for('the next watcher', bench.helpers)

    def test_a_phone_that_is_full_is_told_once(self):
        bench = self.bench(stored=settings(rule('deviceReached', notifies=True, threshold=100), showsOverlay=False,
                                           playsSound=False), notifications=True)
        messages = Messages(bench.desktop, 'DBUS_SESSION_BUS_ADDRESS', "interface='org.freedesktop.Notifications'")
        phone = self.multiplexer(bench, tls=True).attach(RED, name='Red phone', level=99, charging=True)
        bench.await_listed('Red phone', 99)
        for level in (100, 100):
            phone.level = level
            phone.trust()
            bench.await_listed('Red phone', level)
        told = wait_for('a notification', messages.notifications)
        self.assertEqual([(title, body) for _, _, title, body in told], [('Red phone', 'Fully charged')])

    def test_waiting_costs_nothing(self):
        bench = self.bench()
        multiplexer = self.multiplexer(bench)
        multiplexer.attach(RED, name='Red phone')
        bench.await_listed('Red phone', 85)
        (watcher, mode), = wait_for('one helper', lambda: len(bench.helpers()) == 1 and bench.helpers().items())
        self.assertEqual(mode, 'watch')

        def status(key):
            with open(f'/proc/{watcher}/status', encoding='utf-8') as file:
                return int(next(line for line in file if line.startswith(key)).split()[1])
        before = status('voluntary_ctxt_switches')
        time.sleep(2)
        print(f'the watcher: {status("VmRSS")} KiB, {status("RssAnon")} KiB of its own')
        self.assertEqual(status('voluntary_ctxt_switches'), before)
        self.assertLess(status('RssAnon'), 1024)


if __name__ == '__main__':
    run()
