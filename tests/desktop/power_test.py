# SPDX-License-Identifier: MIT
"""The Linux machine's power with the real upowerd and power-profiles-daemon on emulated hardware.

  power_test.py POWER_PROBE"""
import json
import os
import signal
import statistics
import subprocess
import sys
import threading
import time
import unittest

from desktop import Desktop, wait_for

PROBE = sys.argv.pop(1)
SYSTEM = 'DBUS_SYSTEM_BUS_ADDRESS'
# Two objects that other services have: one at the path of UPower's own battery, one elsewhere.
FOREIGN = '''
import dbus, dbus.lowlevel
bus = dbus.SystemBus()
for number in range(1000):
    for path, interface in (('/org/freedesktop/UPower/devices/battery_BAT0', 'org.freedesktop.UPower.Device'),
                            ('/org/freedesktop/NetworkManager', 'org.freedesktop.NetworkManager')):
        signal = dbus.lowlevel.SignalMessage(path, 'org.freedesktop.DBus.Properties', 'PropertiesChanged')
        signal.append(interface, dbus.Dictionary({'Percentage': dbus.Double(5.0)}, signature='sv'),
                      dbus.Array([], signature='s'), signature='sa{sv}as')
        bus.send_message(signal)
bus.list_names()
'''


class Probe:
    def __init__(self, desktop, *arguments):
        self.lines = []
        self.process = desktop.spawn('probe', ['umockdev-wrapper', PROBE, *arguments], stdout=subprocess.PIPE,
                                     env={'UMOCKDEV_DIR': desktop.hardware('dir')})
        threading.Thread(target=self._read, daemon=True).start()
        wait_for('the first line', lambda: self.lines)

    def _read(self):
        for line in self.process.stdout:
            self.lines.append((time.monotonic(), json.loads(line)))

    def now(self):
        return self.lines[-1][1]

    def shows(self, **wanted):
        """Waits until the description has these values (spaces as underscores); gives the moment."""
        wanted = {key.replace('_', ' '): value for key, value in wanted.items()}

        def matches():
            battery = self.now().get('battery')
            return battery and all(battery.get(key) == value for key, value in wanted.items())
        wait_for(f'{wanted}, last was {self.now()}', matches)
        return self.lines[-1][0]

    def switches(self):
        """How often its threads went to sleep or were put to sleep."""
        count = 0
        for task in os.listdir(f'/proc/{self.process.pid}/task'):
            with open(f'/proc/{self.process.pid}/task/{task}/status', encoding='ascii') as status:
                count += sum(int(line.split()[1]) for line in status if 'ctxt_switches' in line)
        return count


class PowerTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.desktop = cls.enterClassContext(Desktop(tray=None, compositor=False, notifications=False, sound=False))

    def start(self, *arguments):
        if not self.desktop.has_name(SYSTEM, 'org.freedesktop.UPower'):
            self.desktop.start_upower()
        self.desktop.plug_in()
        probe = Probe(self.desktop, *arguments)
        self.addCleanup(self.desktop.end, probe.process)
        probe.shows(Power_Source_State='AC Power', Is_Charging=True)
        return probe

    def test_the_first_answer_is_whole_and_changes_follow_at_once(self):
        probe = self.start()
        self.assertEqual([line.get('battery') is None for _, line in probe.lines], [True, False])
        self.assertEqual(probe.now()['health'], {'CycleCount': 217, 'DesignCapacity': 5405, 'InstantAmperage': 833,
                                                 'NominalChargeCapacity': 4505, 'Temperature': 3120,
                                                 'Voltage': 12000})
        delays = []
        for _ in range(10):
            moment = self.desktop.unplug()
            delays.append(probe.shows(Power_Source_State='Battery Power') - moment)
            probe.shows(Time_to_Empty=237)
            moment = self.desktop.plug_in()
            delays.append(probe.shows(Power_Source_State='AC Power') - moment)
            probe.shows(Is_Charging=True)
        print(f'adapter to callback: median {statistics.median(delays) * 1000:.1f} ms, '
              f'longest {max(delays) * 1000:.1f} ms')
        self.assertLess(statistics.median(delays), 0.2)

    def test_upowers_death_and_return_are_no_news(self):
        probe = self.start()
        count = len(probe.lines)
        for how in (signal.SIGTERM, signal.SIGKILL):
            self.desktop.end(self.desktop.upowerd, how)
            time.sleep(0.5)
            self.desktop.start_upower()
            time.sleep(0.5)
        self.assertEqual(len(probe.lines), count, probe.lines[count:])
        self.desktop.unplug()
        probe.shows(Power_Source_State='Battery Power')

    def test_foreign_signals_wake_nobody(self):
        probe = self.start()
        time.sleep(6)  # upowerd reads the battery again each second after its adapter changed
        before = probe.switches()
        subprocess.run(['/usr/bin/python3', '-c', FOREIGN], env=self.desktop.env, check=True)
        time.sleep(0.5)
        woken = probe.switches() - before
        print(f'2000 foreign signals: {woken} context switches')
        self.assertLessEqual(woken, 8)  # upowerd's own poll may fall in between

    def test_a_upower_that_hangs_holds_up_nobody(self):
        self.start()
        self.desktop.upowerd.send_signal(signal.SIGSTOP)
        self.addCleanup(self.desktop.upowerd.send_signal, signal.SIGCONT)
        probe = Probe(self.desktop, 'pulse')
        self.addCleanup(self.desktop.end, probe.process)
        wait_for('the kernel instead', lambda: probe.now().get('battery'))
        moment = self.desktop.unplug()
        print(f'from the kernel: {probe.shows(Power_Source_State="Battery Power") - moment:.3f} s, '
              f'main thread held up {probe.now()["heldUp"]:.3f} s')
        self.assertLess(probe.now()['heldUp'], 1)

    def test_the_kernel_tells_while_upower_is_gone(self):
        probe = self.start()
        self.desktop.end(self.desktop.upowerd)
        self.desktop.hardware('quiet', 'BAT0', {'capacity': '78', 'energy_now': '39000000'})
        self.addCleanup(self.desktop.hardware, 'set', 'BAT0', {'capacity': '79', 'energy_now': '39500000'})
        probe.shows(Current_Capacity=78)
        moment = self.desktop.unplug()
        self.assertLess(probe.shows(Power_Source_State='Battery Power', Is_Charging=False) - moment, 1)
        count = len(probe.lines)
        self.desktop.start_upower()
        time.sleep(1)
        self.desktop.plug_in()
        probe.shows(Power_Source_State='AC Power', Is_Charging=True)
        self.assertTrue(all(line['battery']['Current Capacity'] == 78 for _, line in probe.lines[count:]))

    def test_low_power_mode(self):
        probe = self.start()
        for profile in ('power-saver', 'balanced'):
            self.desktop.output(['powerprofilesctl', 'set', profile])
            wait_for(profile, lambda: probe.now()['isSaving'] == (profile == 'power-saver'))


if __name__ == '__main__':
    unittest.main()
